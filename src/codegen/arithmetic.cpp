// Arithmetic and logic. The encoders are shared; what differs is which spelling each mnemonic
// takes: ADD with or without "A,", ADC and SBC only with it, the others never.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint32_t withIndex = FORM_IX | FORM_IY;
constexpr std::uint32_t pairs = ALLOW_BC | ALLOW_DE | ALLOW_SP;

constexpr OperandForm addA{0, 0x80, 0xC6, 0, ALLOW_FIELD, FORM_IMM8 | withIndex};
constexpr OperandForm adcA{0, 0x88, 0xCE, 0, ALLOW_FIELD, FORM_IMM8 | withIndex};
constexpr OperandForm sbcA{0, 0x98, 0xDE, 0, ALLOW_FIELD, FORM_IMM8 | withIndex};
constexpr OperandForm addHl{4, 0x09, 0, 0, pairs | ALLOW_HL, 0};
constexpr OperandForm addIx{4, 0x09, 0, PREFIX_IX, pairs | ALLOW_IX, FORM_PREFIX};
constexpr OperandForm addIy{4, 0x09, 0, PREFIX_IY, pairs | ALLOW_IY, FORM_PREFIX};
constexpr OperandForm adcHl{4, 0x4A, 0, PREFIX_ED, pairs | ALLOW_HL, FORM_PREFIX};
constexpr OperandForm sbcHl{4, 0x42, 0, PREFIX_ED, pairs | ALLOW_HL, FORM_PREFIX};
constexpr OperandForm incByte{3, 0x04, 0, 0, ALLOW_FIELD, withIndex};
constexpr OperandForm decByte{3, 0x05, 0, 0, ALLOW_FIELD, withIndex};

std::int32_t AssembleWithCarry(CAssembler* assembler, CStatement* statement,
                               const OperandForm& byteForm, const OperandForm& pairForm) {
    if (const std::int32_t result = BeginStatement(assembler, statement, twoOperands);
        result != 0) {
        return result;
    }
    const lsArg& second = *statement->args.Arg(2);
    switch (statement->args.Arg(1)->reg) {
        case REG_A:
            return EncodeOperand(assembler, statement, second, byteForm);
        case REG_HL:
            return EncodeOperand(assembler, statement, second, pairForm);
        default:
            return MSG_ILLEGAL_ARGUMENT;
    }
}

std::int32_t AssembleStep(CAssembler* assembler, CStatement* statement, const OperandForm& byteForm,
                          std::int32_t pairOpcode) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const lsArg& arg = *statement->args.Arg(1);
    switch (arg.reg) {
        case REG_IX:
        case REG_IY:
            assembler->EmitByte(IndexPrefix(arg.reg));
            [[fallthrough]];
        case REG_BC:
        case REG_DE:
        case REG_HL:
        case REG_SP:
            assembler->EmitByte(pairOpcode + PairField(arg.reg));
            return 0;
        default:
            return EncodeOperand(assembler, statement, arg, byteForm);
    }
}

}  // namespace

std::int32_t HandleAdd(CAssembler* assembler, CStatement* statement) {
    KO_Args& args = statement->args;
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOrTwoOperands);
        result != 0) {
        return MSG_ARGUMENT_EXPECTED;  // also to three operands and more
    }
    if (args.Count() == 1) {
        return EncodeOperand(assembler, statement, *args.Arg(1), addA);
    }
    const lsArg& second = *args.Arg(2);
    switch (args.Arg(1)->reg) {
        case REG_A:
            return EncodeOperand(assembler, statement, second, addA);
        case REG_HL:
            return EncodeOperand(assembler, statement, second, addHl);
        case REG_IX:
            return EncodeOperand(assembler, statement, second, addIx);
        case REG_IY:
            return EncodeOperand(assembler, statement, second, addIy);
        default:
            return MSG_ILLEGAL_ARGUMENT;
    }
}

std::int32_t HandleAdc(CAssembler* assembler, CStatement* statement) {
    return AssembleWithCarry(assembler, statement, adcA, adcHl);
}

std::int32_t HandleSbc(CAssembler* assembler, CStatement* statement) {
    return AssembleWithCarry(assembler, statement, sbcA, sbcHl);
}

std::int32_t AssembleAccumulatorOp(CAssembler* assembler, CStatement* statement,
                                   std::int32_t group) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    return EncodeAccumulatorOp(assembler, statement, *statement->args.Arg(1), group);
}

std::int32_t HandleInc(CAssembler* assembler, CStatement* statement) {
    return AssembleStep(assembler, statement, incByte, 0x03);
}

std::int32_t HandleDec(CAssembler* assembler, CStatement* statement) {
    return AssembleStep(assembler, statement, decByte, 0x0B);
}

}  // namespace korv
