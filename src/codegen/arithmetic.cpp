// Arithmetic and logic, built on the shared encoders. "A," is optional in ADD, required in ADC and
// SBC, and not allowed in the others.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint32_t pairs = ALLOW_BC | ALLOW_DE | ALLOW_SP;

constexpr std::int32_t toImmediate = 0x46;  // turns 80 into C6, 88 into CE, 98 into DE

// The form of a pair added to HL, IX or IY, or subtracted from HL. The pair may be the destination
// itself.
constexpr OperandForm PairForm(std::uint8_t prefix, std::uint8_t opcode, std::int32_t to) {
    const std::uint32_t forms = prefix == PREFIX_NONE ? 0 : FORM_PREFIX;
    return {4, opcode, 0, prefix, pairs | AllowedBit(to), forms};
}

}  // namespace

Status AssembleAdd(CAssembler* assembler, CStatement* statement) {
    static constexpr OperandForm toA = ByteForm(0x80, 0xC6);
    const std::int32_t to = statement->args.Count() == 1 ? REG_A : statement->args.First().reg;
    const lsArg& last = statement->args.Last();
    if (to == REG_A) {
        return EncodeOperand(assembler, statement, last, toA);
    }
    if (!IsHlOrIndex(to)) {
        return Refuse(statement, statement->args.First(), MSG_ILLEGAL_ARGUMENT);
    }
    return EncodeOperand(assembler, statement, last, PairForm(IndexPrefix(to), 0x09, to));
}

Status AssembleWithCarry(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                         std::uint8_t pairOpcode) {
    const lsArg& first = statement->args.First();
    const lsArg& second = statement->args.Second();
    switch (first.reg) {
        case REG_A:
            return EncodeOperand(assembler, statement, second,
                                 ByteForm(byteOpcode, byteOpcode + toImmediate));
        case REG_HL:
            return EncodeOperand(assembler, statement, second,
                                 PairForm(PREFIX_ED, pairOpcode, REG_HL));
        default:
            return Refuse(statement, first, MSG_ILLEGAL_ARGUMENT);
    }
}

Status AssembleStep(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                    std::uint8_t pairOpcode) {
    const lsArg& arg = statement->args.First();
    if (IsPair(arg.reg) && arg.reg != REG_AF) {
        return assembler->EmitOpcode(IndexPrefix(arg.reg), pairOpcode + PairField(arg.reg));
    }
    return EncodeOperand(
        assembler, statement, arg,
        {.shift = 3, .opcode = byteOpcode, .allowed = ALLOW_FIELD, .forms = FORM_IX | FORM_IY});
}

}  // namespace korv
