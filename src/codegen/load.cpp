// LD: one mnemonic for the whole load group. The destination decides; its source then has the
// shapes that the processor's load group lists for it.

#include <array>

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "codegen/operand_forms.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint8_t storeOpcode = 0x70;  // LD (HL),r and LD (IX+d),r
constexpr std::uint8_t storeImmediateOpcode = 0x36;

constexpr OperandForm toAccumulator{0, 0x78,        0x3E,
                                    0, ALLOW_FIELD, FORM_IMM8 | FORM_IX | FORM_IY | FORM_DIRECT};
constexpr OperandForm toMemory{
    0, storeOpcode, storeImmediateOpcode, 0, ALLOW_A | ALLOW_B_TO_L, FORM_IMM8};

// By the number of the register.
constexpr auto toRegister = [] {
    std::array<OperandForm, 8> forms{};
    for (std::uint8_t reg = 0; reg < forms.size(); ++reg) {
        forms[reg] = {0,
                      static_cast<std::uint8_t>(0x40 + 8 * reg),
                      static_cast<std::uint8_t>(0x06 + 8 * reg),
                      0,
                      ALLOW_FIELD,
                      FORM_IMM8 | FORM_IX | FORM_IY};
    }
    return forms;
}();

// The shapes in which only A may be the source.
Status LoadFromAccumulator(CAssembler* assembler, const lsArg& src, std::uint8_t prefix,
                           std::int32_t opcode) {
    if (src.reg != REG_A) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    return assembler->EmitOpcode(prefix, opcode);
}

Status LoadAccumulator(CAssembler* assembler, CStatement* statement, const lsArg& src) {
    switch (src.reg) {
        case REG_BC_INDIRECT:
            return assembler->EmitOpcode(PREFIX_NONE, 0x0A);
        case REG_DE_INDIRECT:
            return assembler->EmitOpcode(PREFIX_NONE, 0x1A);
        case REG_I:
            return assembler->EmitOpcode(PREFIX_ED, 0x57);
        case REG_R:
            return assembler->EmitOpcode(PREFIX_ED, 0x5F);
        default:
            return EncodeOperand(assembler, statement, src, toAccumulator);
    }
}

// The pairs, from an immediate word or from memory. A value outside 16 bits is cut without a word.
Status LoadPair(CAssembler* assembler, CStatement* statement, const lsArg& dst, const lsArg& src) {
    if (!src.IsPlainValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    const bool isMemory = src.reg == REG_DIRECT;
    const bool isIndex = dst.reg == REG_IX || dst.reg == REG_IY;
    if (isIndex) {
        assembler->EmitByte(IndexPrefix(dst.reg));
    }
    if (isMemory && (isIndex || dst.reg == REG_HL)) {
        assembler->EmitByte(0x2A);
    } else if (isMemory) {
        assembler->EmitOpcode(PREFIX_ED, 0x4B + PairField(dst.reg));
    } else {
        assembler->EmitByte(0x01 + PairField(dst.reg));
    }
    return EmitValue<wordKind>(assembler, statement, src, PatchText::operand);
}

Status LoadStackPointer(CAssembler* assembler, CStatement* statement, const lsArg& dst,
                        const lsArg& src) {
    constexpr std::int32_t opcode = 0xF9;
    switch (src.reg) {
        case REG_HL:
            return assembler->EmitOpcode(PREFIX_NONE, opcode);
        case REG_IX:
        case REG_IY:
            return assembler->EmitOpcode(IndexPrefix(src.reg), opcode);
        default:
            return LoadPair(assembler, statement, dst, src);
    }
}

Status StoreIndexed(CAssembler* assembler, CStatement* statement, const lsArg& dst,
                    const lsArg& src) {
    assembler->EmitByte(IndexPrefix(dst.reg));
    const bool isImmediate = src.reg == REG_NONE && src.IsValue();
    if (IsByteRegister(src.reg)) {
        assembler->EmitByte(storeOpcode + src.reg);
    } else if (isImmediate) {
        assembler->EmitByte(storeImmediateOpcode);
    } else {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, src.text);
        return 0;
    }
    if (const Status result =
            EmitChecked<displacementKind>(assembler, statement, dst, PatchText::expression);
        result != 0 || !isImmediate) {
        return result;
    }
    if (!byteRange.Holds(src.value)) {  // an error here, a warning everywhere else
        return byteRange.message;
    }
    if (EmitValue<byteKind>(assembler, statement, src, PatchText::operand) != 0) {
        ReportFailedOperand(assembler, statement, src);
    }
    return 0;
}

Status StoreDirect(CAssembler* assembler, CStatement* statement, const lsArg& dst,
                   const lsArg& src) {
    switch (src.reg) {
        case REG_A:
            assembler->EmitOpcode(PREFIX_NONE, 0x32);
            break;
        case REG_HL:
            assembler->EmitOpcode(PREFIX_NONE, 0x22);
            break;
        case REG_IX:
        case REG_IY:
            assembler->EmitOpcode(IndexPrefix(src.reg), 0x22);
            break;
        case REG_BC:
        case REG_DE:
        case REG_SP:
            assembler->EmitOpcode(PREFIX_ED, 0x43 + PairField(src.reg));
            break;
        default:
            return MSG_ILLEGAL_ARGUMENT;
    }
    return EmitChecked<wordKind>(assembler, statement, dst, PatchText::operand);
}

}  // namespace

Status AssembleLd(CAssembler* assembler, CStatement* statement) {
    const lsArg& dst = statement->args[1];
    const lsArg& src = statement->args[2];
    if (dst.reg == REG_A) {
        return LoadAccumulator(assembler, statement, src);
    }
    if (IsByteRegister(dst.reg)) {
        return EncodeOperand(assembler, statement, src,
                             toRegister[static_cast<std::size_t>(dst.reg)]);
    }
    switch (dst.reg) {
        case REG_HL_INDIRECT:
            return EncodeOperand(assembler, statement, src, toMemory);
        case REG_R:
            return LoadFromAccumulator(assembler, src, PREFIX_ED, 0x4F);
        case REG_I:
            return LoadFromAccumulator(assembler, src, PREFIX_ED, 0x47);
        case REG_BC_INDIRECT:
            return LoadFromAccumulator(assembler, src, PREFIX_NONE, 0x02);
        case REG_DE_INDIRECT:
            return LoadFromAccumulator(assembler, src, PREFIX_NONE, 0x12);
        case REG_BC:
        case REG_DE:
        case REG_HL:
        case REG_IX:
        case REG_IY:
            return LoadPair(assembler, statement, dst, src);
        case REG_SP:
            return LoadStackPointer(assembler, statement, dst, src);
        case REG_IX_INDEXED:
        case REG_IY_INDEXED:
            return StoreIndexed(assembler, statement, dst, src);
        case REG_DIRECT:
            return StoreDirect(assembler, statement, dst, src);
        default:
            return MSG_ILLEGAL_ARGUMENT;
    }
}

}  // namespace korv
