// Jumps, calls and returns. Their operands are forward references more often than any others.

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

// The condition in bits 5 to 3 of an opcode.
constexpr std::int32_t ConditionField(const lsArg& condition) {
    return condition.condition * 8;
}

// JP, CALL and JR have a target. If there are two operands, the first is a condition.
bool IsConditional(const CStatement& statement) {
    return statement.args.Count() == 2;
}

}  // namespace

Status AssembleJp(CAssembler* assembler, CStatement* statement) {
    const lsArg& first = statement->args.First();
    const lsArg& target = statement->args.Last();
    const bool isConditional = IsConditional(*statement);
    if (!isConditional && (first.reg == REG_HL_INDIRECT || first.reg == REG_IX_INDIRECT ||
                           first.reg == REG_IY_INDIRECT)) {
        return assembler->EmitOpcode(IndexPrefix(first.reg), 0xE9);
    }
    if (isConditional && !first.IsCondition()) {  // the jump is still assembled, with condition -1
        assembler->ReportError(statement, MSG_ILLEGAL_CONDITION, first.text);
    }
    if (!target.IsPlainValue()) {
        return Refuse(statement, target, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(isConditional ? 0xC2 | ConditionField(first) : 0xC3);
    return EmitChecked<wordKind>(assembler, statement, target, PatchText::operand);
}

Status AssembleCall(CAssembler* assembler, CStatement* statement) {
    const lsArg& first = statement->args.First();
    const lsArg& target = statement->args.Last();
    const bool isConditional = IsConditional(*statement);
    const bool isRefused = isConditional && first.condition < 0;
    if (isRefused || !target.IsPlainValue()) {
        return Refuse(statement, isRefused ? first : target, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(isConditional ? 0xC4 + ConditionField(first) : 0xCD);
    // A known value outside 16 bits is truncated without a warning.
    return EmitValue<wordKind>(assembler, statement, target, PatchText::operand);
}

Status AssembleJr(CAssembler* assembler, CStatement* statement) {
    const lsArg& first = statement->args.First();
    const lsArg& target = statement->args.Last();
    const bool isConditional = IsConditional(*statement);
    const bool isRefused = isConditional && (first.condition < 0 || first.condition > 3);
    if (isRefused || !target.IsPlainValue()) {
        return Refuse(statement, isRefused ? first : target, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(isConditional ? 0x20 + ConditionField(first) : 0x18);
    return EmitRelative(assembler, statement, target, MSG_OFFSET_TOO_BIG);
}

// DJNZ treats every operand as an expression: DJNZ A jumps to the label A. So a register, a
// condition or an operand in parentheses is scanned again.
Status AssembleDjnz(CAssembler* assembler, CStatement* statement) {
    lsArg& target = statement->args.First();
    if (!target.IsValue() || target.reg != REG_NONE) {
        target.status = assembler->ScanExpression(target.text, &target.value, &target.fault);
    }
    assembler->EmitByte(0x10);
    return EmitRelative(assembler, statement, target, MSG_NOT_BYTE);  // not the message of JR
}

Status AssembleRet(CAssembler* assembler, CStatement* statement) {
    if (statement->args.Count() == 0) {
        return assembler->EmitOpcode(PREFIX_NONE, 0xC9);
    }
    const lsArg& condition = statement->args.First();
    if (condition.condition < 0) {
        return Refuse(statement, condition, MSG_ILLEGAL_ARGUMENT);
    }
    return assembler->EmitOpcode(PREFIX_NONE, 0xC0 + ConditionField(condition));
}

Status AssembleRst(CAssembler* assembler, CStatement* statement) {
    const lsArg& target = statement->args.First();
    if (target.status != 0) {  // the address is part of the opcode and cannot be patched
        return Refuse(statement, target,
                      target.status == MSG_UNRESOLVED ? MSG_NOT_IMMEDIATE : MSG_BAD_EXPRESSION);
    }
    constexpr std::int32_t addressBits = 0x38;
    if (!target.IsPlainValue() || (target.value & ~addressBits) != 0) {
        return Refuse(statement, target, MSG_ILLEGAL_ARGUMENT);
    }
    return assembler->EmitOpcode(PREFIX_NONE, 0xC7 + target.value);
}

}  // namespace korv
