// LD: one mnemonic for the whole load group. The destination determines which sources are allowed.

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "codegen/operand_forms.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint8_t storeOpcode = 0x70;  // LD (HL),r and LD (IX+d),r
constexpr std::uint8_t storeImmediateOpcode = 0x36;

constexpr OperandForm toAccumulator =
    ByteForm(0x78, 0x3E, ALLOW_FIELD, FORM_IMM8 | FORM_IX | FORM_IY | FORM_DIRECT);
constexpr OperandForm toMemory =
    ByteForm(storeOpcode, storeImmediateOpcode, ALLOW_A | ALLOW_B_TO_L, FORM_IMM8);

// The forms in which only A may be the source.
Status LoadFromAccumulator(CAssembler* assembler, CStatement* statement, const lsArg& src,
                           std::uint8_t prefix, std::int32_t opcode) {
    if (src.reg != REG_A) {
        return Refuse(statement, src, MSG_ILLEGAL_ARGUMENT);
    }
    return assembler->EmitOpcode(prefix, opcode);
}

Status LoadAccumulator(CAssembler* assembler, CStatement* statement, const lsArg& src) {
    switch (src.reg) {
        case REG_BC_INDIRECT:
        case REG_DE_INDIRECT:
            return assembler->EmitOpcode(PREFIX_NONE, 0x0A + PairField(src.reg));
        case REG_I:
            return assembler->EmitOpcode(PREFIX_ED, 0x57);
        case REG_R:
            return assembler->EmitOpcode(PREFIX_ED, 0x5F);
        default:
            return EncodeOperand(assembler, statement, src, toAccumulator);
    }
}

// Loads a pair from an immediate word or memory, and SP also from HL, IX or IY. A known value
// outside 16 bits is truncated without warning.
Status LoadPair(CAssembler* assembler, CStatement* statement, const lsArg& dst, const lsArg& src) {
    if (dst.reg == REG_SP && IsHlOrIndex(src.reg)) {
        return assembler->EmitOpcode(IndexPrefix(src.reg), 0xF9);
    }
    if (!src.IsPlainValue()) {
        return Refuse(statement, src, MSG_ILLEGAL_ARGUMENT);
    }
    if (src.reg != REG_DIRECT) {
        assembler->EmitOpcode(IndexPrefix(dst.reg), 0x01 + PairField(dst.reg));
    } else if (IsHlOrIndex(dst.reg)) {
        assembler->EmitOpcode(IndexPrefix(dst.reg), 0x2A);
    } else {
        assembler->EmitOpcode(PREFIX_ED, 0x4B + PairField(dst.reg));
    }
    return EmitValue<wordKind>(assembler, statement, src, PatchText::operand);
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
    if (!byteRange.Holds(src.value)) {  // an error here, a warning for other immediate bytes
        return Refuse(statement, src, byteRange.message);
    }
    if (EmitValue<byteKind>(assembler, statement, src, PatchText::operand) != 0) {
        ReportFailedOperand(assembler, statement, src);
    }
    return 0;
}

Status StoreDirect(CAssembler* assembler, CStatement* statement, const lsArg& dst,
                   const lsArg& src) {
    if (src.reg == REG_A) {
        assembler->EmitByte(0x32);
    } else if (IsHlOrIndex(src.reg)) {
        assembler->EmitOpcode(IndexPrefix(src.reg), 0x22);
    } else if (IsPair(src.reg) && src.reg != REG_AF) {
        assembler->EmitOpcode(PREFIX_ED, 0x43 + PairField(src.reg));
    } else {
        return Refuse(statement, src, MSG_ILLEGAL_ARGUMENT);
    }
    return EmitChecked<wordKind>(assembler, statement, dst, PatchText::operand);
}

}  // namespace

Status AssembleLd(CAssembler* assembler, CStatement* statement) {
    const lsArg& dst = statement->args.First();
    const lsArg& src = statement->args.Second();
    if (dst.reg == REG_A) {
        return LoadAccumulator(assembler, statement, src);
    }
    if (IsByteRegister(dst.reg)) {
        return EncodeOperand(assembler, statement, src,
                             ByteForm(0x40 + 8 * dst.reg, 0x06 + 8 * dst.reg));
    }
    if (IsPair(dst.reg) && dst.reg != REG_AF) {
        return LoadPair(assembler, statement, dst, src);
    }
    switch (dst.reg) {
        case REG_HL_INDIRECT:
            return EncodeOperand(assembler, statement, src, toMemory);
        case REG_R:
            return LoadFromAccumulator(assembler, statement, src, PREFIX_ED, 0x4F);
        case REG_I:
            return LoadFromAccumulator(assembler, statement, src, PREFIX_ED, 0x47);
        case REG_BC_INDIRECT:
        case REG_DE_INDIRECT:
            return LoadFromAccumulator(assembler, statement, src, PREFIX_NONE,
                                       0x02 + PairField(dst.reg));
        case REG_IX_INDEXED:
        case REG_IY_INDEXED:
            return StoreIndexed(assembler, statement, dst, src);
        case REG_DIRECT:
            return StoreDirect(assembler, statement, dst, src);
        default:
            return Refuse(statement, dst, MSG_ILLEGAL_ARGUMENT);
    }
}

}  // namespace korv
