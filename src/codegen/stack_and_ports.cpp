// Stack, exchange, interrupt mode and ports. The only undocumented forms accepted are IN F,(C) and
// OUT (C),F, with 6 in the register field.

#include <array>

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "codegen/operand_forms.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"

namespace korv {
Status AssembleStack(CAssembler* assembler, CStatement* statement, std::uint8_t opcode) {
    const lsArg& pair = statement->args.First();
    const std::int32_t reg = pair.reg;
    if (!IsPair(reg) || reg == REG_SP) {
        return Refuse(statement, pair, MSG_ILLEGAL_ARGUMENT);
    }
    return assembler->EmitOpcode(IndexPrefix(reg), opcode + PairField(reg));
}

Status AssembleEx(CAssembler* assembler, CStatement* statement) {
    const lsArg& first = statement->args.First();
    const lsArg& second = statement->args.Second();
    if (first.reg == REG_DE && second.reg == REG_HL) {
        return assembler->EmitOpcode(PREFIX_NONE, 0xEB);
    }
    // AF' is not in the table of registers, so its text is compared.
    if (first.reg == REG_AF && (second.reg == REG_AF || second.text == "AF'")) {
        return assembler->EmitOpcode(PREFIX_NONE, 0x08);
    }
    if (first.reg == REG_SP_INDIRECT && IsHlOrIndex(second.reg)) {
        return assembler->EmitOpcode(IndexPrefix(second.reg), 0xE3);
    }
    const bool isPossible =
        first.reg == REG_DE || first.reg == REG_AF || first.reg == REG_SP_INDIRECT;
    return Refuse(statement, isPossible ? second : first, MSG_ILLEGAL_ARGUMENT);
}

Status AssembleIm(CAssembler* assembler, CStatement* statement) {
    const lsArg& mode = statement->args.First();
    if (mode.status != 0) {  // the mode is part of the opcode and cannot be patched
        return Refuse(statement, mode, MSG_NOT_IMMEDIATE);
    }
    if (!mode.IsPlainValue()) {
        return Refuse(statement, mode, MSG_ILLEGAL_ARGUMENT);
    }
    constexpr std::array<std::uint8_t, 3> opcodes = {0x46, 0x56, 0x5E};
    assembler->EmitByte(PREFIX_ED);
    if (mode.value < 0 || mode.value > 2) {
        return Refuse(statement, mode, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(opcodes[static_cast<std::size_t>(mode.value)]);
    return 0;
}

// The port is either (C), with any byte register or F, or (n), with A only. A known port number out
// of range is an error and is not emitted.
Status AssembleInOut(CAssembler* assembler, CStatement* statement, std::int32_t registerPlace,
                     std::uint8_t registerOpcode, std::uint8_t portOpcode) {
    const bool isInput = registerPlace == 1;
    const lsArg& data = isInput ? statement->args.First() : statement->args.Second();
    const std::int32_t reg = data.reg;
    const lsArg& port = isInput ? statement->args.Second() : statement->args.First();
    if (!IsByteRegister(reg) && reg != REG_F) {
        return Refuse(statement, data, MSG_ILLEGAL_ARGUMENT);
    }
    if (port.reg == REG_C_INDIRECT) {
        return assembler->EmitOpcode(PREFIX_ED, registerOpcode + 8 * (reg & 7));
    }
    if (reg != REG_A || port.reg != REG_DIRECT) {
        return Refuse(statement, port.reg == REG_DIRECT ? data : port, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(portOpcode);
    if (!dataByteRange.Holds(port.value)) {
        return Refuse(statement, port, dataByteRange.message);
    }
    return EmitValue<byteKind>(assembler, statement, port, PatchText::operand);
}

}  // namespace korv
