// Jumps, calls and returns: the operands that are forward references most often. Each handler emits
// its own bytes and files its own patch.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint32_t relativeKind = PF_RELATIVE | PF_8BIT;

// Emits the word of an absolute target and files its patch. Result: as a handler's.
std::int32_t EmitTarget(CAssembler* assembler, CStatement* statement, const lsArg& target) {
    const std::uint32_t position = assembler->EmitWord(target.value);
    return FinishOperand(assembler, statement, target, position, PF_16BIT);
}

// The distance from the statement to an address that is known.
std::int32_t OffsetTo(const CStatement& statement, std::int32_t target) {
    return RelativeOffset(target, static_cast<std::int32_t>(statement.address));
}

}  // namespace

std::int32_t HandleJp(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOrTwoOperands);
        result != 0) {
        return result;
    }
    const lsArg& first = *statement->args.Arg(1);
    const bool isConditional = statement->args.Count() == 2;
    if (!isConditional) {
        switch (first.reg) {
            case REG_IX_INDIRECT:
            case REG_IY_INDIRECT:
                assembler->EmitByte(IndexPrefix(first.reg));
                [[fallthrough]];
            case REG_HL_INDIRECT:
                assembler->EmitByte(0xE9);
                return 0;
            default:
                break;
        }
    }
    std::int32_t opcode = 0xC3;
    if (isConditional) {
        if (!first.IsCondition()) {  // the statement goes on, with the number -1
            assembler->ReportError(statement, MSG_ILLEGAL_CONDITION, first.Text());
        }
        opcode = 0xC2 | (first.IsCondition() ? first.condition : -1) * 8;
    }
    const lsArg& target = isConditional ? *statement->args.Arg(2) : first;
    if (!target.IsPlainValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(opcode);
    WarnIfOutside(assembler, statement, target, wordRange);
    return EmitTarget(assembler, statement, target);
}

std::int32_t HandleCall(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOrTwoOperands);
        result != 0) {
        return result;
    }
    const lsArg& first = *statement->args.Arg(1);
    const bool isConditional = statement->args.Count() == 2;
    const lsArg& target = isConditional ? *statement->args.Arg(2) : first;
    if ((isConditional && first.condition < 0) || !target.IsPlainValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(isConditional ? 0xC4 + 8 * first.condition : 0xCD);
    return EmitTarget(assembler, statement, target);
}

std::int32_t HandleJr(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOrTwoOperands);
        result != 0) {
        return result;
    }
    const lsArg& first = *statement->args.Arg(1);
    const bool isConditional = statement->args.Count() == 2;
    if (isConditional && (first.condition < 0 || first.condition > 3)) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    const lsArg& target = isConditional ? *statement->args.Arg(2) : first;
    if (!target.IsPlainValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(isConditional ? 0x20 + 8 * first.condition : 0x18);
    if (target.status == 0) {
        const std::int32_t offset = OffsetTo(*statement, target.value);
        if (!signedByteRange.Holds(offset)) {
            return MSG_OFFSET_TOO_BIG;
        }
        assembler->EmitByte(offset);
        return 0;
    }
    if (target.status != MSG_UNRESOLVED) {
        return target.status;
    }
    const std::uint32_t position = assembler->EmitByte(0);
    return FilePatch(assembler, statement, target, position, relativeKind);
}

// Scans its operand as text, so that it knows no registers: DJNZ A goes to the label A.
std::int32_t HandleDjnz(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const lsArg& target = *statement->args.Arg(1);
    assembler->EmitByte(0x10);
    std::int32_t value = 0;
    std::string_view unresolved;
    const std::int32_t status = assembler->ScanExpression(target.Text(), &value, &unresolved);
    if (status == MSG_UNRESOLVED) {
        FileCopiedPatch(assembler, statement, target.Text(), unresolved,
                        assembler->binary.Position(), relativeKind);
        assembler->EmitByte(0);
        return 0;
    }
    if (status != 0) {
        return status;
    }
    const std::int32_t offset = OffsetTo(*statement, value);
    if (!signedByteRange.Holds(offset)) {
        return MSG_NOT_BYTE;  // not the message of JR
    }
    assembler->EmitByte(offset);
    return 0;
}

std::int32_t HandleRet(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, {0, 1}); result != 0) {
        return result;
    }
    if (statement->args.Count() == 0) {
        assembler->EmitByte(0xC9);
        return 0;
    }
    const std::int32_t condition = statement->args.Arg(1)->condition;
    if (condition < 0) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(0xC0 + 8 * condition);
    return 0;
}

std::int32_t HandleRst(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const lsArg& target = *statement->args.Arg(1);
    if (target.status != 0) {  // the address lies in the opcode: it cannot be patched
        return target.status == MSG_UNRESOLVED ? MSG_NOT_IMMEDIATE : MSG_BAD_EXPRESSION;
    }
    constexpr std::int32_t addressBits = 0x38;
    if (!target.IsPlainValue() || (target.value & ~addressBits) != 0) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(0xC7 + target.value);
    return 0;
}

}  // namespace korv
