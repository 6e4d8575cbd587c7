// Stack, exchange, interrupt mode and ports. IN and OUT hold the only undocumented forms that are
// taken: IN F,(C) and OUT (C),F, with the number 6 in the register field.

#include <array>

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

std::int32_t AssembleStack(CAssembler* assembler, CStatement* statement, std::int32_t opcode) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const std::int32_t reg = statement->args.Arg(1)->reg;
    switch (reg) {
        case REG_IX:
        case REG_IY:
            assembler->EmitByte(IndexPrefix(reg));
            [[fallthrough]];
        case REG_BC:
        case REG_DE:
        case REG_HL:
        case REG_AF:
            assembler->EmitByte(opcode + PairField(reg));
            return 0;
        default:
            return MSG_ILLEGAL_ARGUMENT;
    }
}

// The form with a port number. A port out of range is an error, and its byte is not emitted.
std::int32_t AssemblePort(CAssembler* assembler, CStatement* statement, const lsArg& port,
                          std::int32_t opcode) {
    assembler->EmitByte(opcode);
    const std::int32_t number = port.IsConstant() ? port.value : 0;
    if (!dataByteRange.Holds(number)) {
        return dataByteRange.message;
    }
    const std::uint32_t position = assembler->EmitByte(number);
    return FinishOperand(assembler, statement, port, position, PF_8BIT);
}

// IN and OUT: `port` is (C) with any byte register or F, or (n) with A alone.
std::int32_t AssembleInOut(CAssembler* assembler, CStatement* statement, const lsArg& reg,
                           const lsArg& port, std::int32_t registerOpcode,
                           std::int32_t portOpcode) {
    if (!IsByteRegister(reg.reg) && reg.reg != REG_F) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    if (port.reg == REG_C_INDIRECT) {
        assembler->EmitByte(PREFIX_ED);
        assembler->EmitByte(registerOpcode + 8 * (reg.reg & 7));
        return 0;
    }
    if (reg.reg == REG_A && port.reg == REG_DIRECT) {
        return AssemblePort(assembler, statement, port, portOpcode);
    }
    return MSG_ILLEGAL_ARGUMENT;
}

}  // namespace

std::int32_t HandlePush(CAssembler* assembler, CStatement* statement) {
    return AssembleStack(assembler, statement, 0xC5);
}

std::int32_t HandlePop(CAssembler* assembler, CStatement* statement) {
    return AssembleStack(assembler, statement, 0xC1);
}

std::int32_t HandleEx(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, twoOperands);
        result != 0) {
        return result;
    }
    const lsArg& second = *statement->args.Arg(2);
    switch (statement->args.Arg(1)->reg) {
        case REG_DE:
            if (second.reg == REG_HL) {
                assembler->EmitByte(0xEB);
                return 0;
            }
            break;
        case REG_AF:
            if (second.reg == REG_AF || second.Text() == "AF'") {
                assembler->EmitByte(0x08);
                return 0;
            }
            break;
        case REG_SP_INDIRECT:
            switch (second.reg) {
                case REG_IX:
                case REG_IY:
                    assembler->EmitByte(IndexPrefix(second.reg));
                    [[fallthrough]];
                case REG_HL:
                    assembler->EmitByte(0xE3);
                    return 0;
                default:
                    break;
            }
            break;
        default:
            break;
    }
    return MSG_ILLEGAL_ARGUMENT;
}

std::int32_t HandleIm(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const lsArg& mode = *statement->args.Arg(1);
    if (mode.status != 0) {  // the mode lies in the opcode: it cannot be patched
        return MSG_NOT_IMMEDIATE;
    }
    if (!mode.IsPlainValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    constexpr std::array<std::uint8_t, 3> opcodes = {0x46, 0x56, 0x5E};
    assembler->EmitByte(PREFIX_ED);
    if (mode.value < 0 || mode.value > 2) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(opcodes[static_cast<std::size_t>(mode.value)]);
    return 0;
}

std::int32_t HandleIn(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, twoOperands);
        result != 0) {
        return result;
    }
    return AssembleInOut(assembler, statement, *statement->args.Arg(1), *statement->args.Arg(2),
                         0x40, 0xDB);
}

std::int32_t HandleOut(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, twoOperands);
        result != 0) {
        return result;
    }
    return AssembleInOut(assembler, statement, *statement->args.Arg(2), *statement->args.Arg(1),
                         0x41, 0xD3);
}

}  // namespace korv
