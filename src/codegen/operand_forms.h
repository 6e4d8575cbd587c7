/// The encoders shared by groups of instructions. Each turns one classified operand into bytes, and
/// takes care of its checks, messages and patch. A handler calls one of them last and returns its
/// result.
#pragma once

#include <cstdint>

#include "expr/operands.h"

namespace korv {

class CAssembler;
struct CStatement;

/// Prefixes of the processor's opcode tables. 0 stands for no prefix, since no instruction has the
/// prefix 0.
inline constexpr std::uint8_t PREFIX_NONE = 0x00;
inline constexpr std::uint8_t PREFIX_IX = 0xDD;
inline constexpr std::uint8_t PREFIX_IY = 0xFD;
inline constexpr std::uint8_t PREFIX_CB = 0xCB;
inline constexpr std::uint8_t PREFIX_ED = 0xED;

/// Bits of `OperandForm::allowed`.
inline constexpr std::uint32_t ALLOW_A = 0x0001;
inline constexpr std::uint32_t ALLOW_B_TO_L = 0x007E;
inline constexpr std::uint32_t ALLOW_HL_INDIRECT = 0x0080;
inline constexpr std::uint32_t ALLOW_AF = 0x0100;
inline constexpr std::uint32_t ALLOW_BC = 0x0200;
inline constexpr std::uint32_t ALLOW_DE = 0x0400;
inline constexpr std::uint32_t ALLOW_HL = 0x0800;
inline constexpr std::uint32_t ALLOW_IX = 0x1000;
inline constexpr std::uint32_t ALLOW_IY = 0x2000;
inline constexpr std::uint32_t ALLOW_SP = 0x4000;
/// The operands that the register field of an opcode can name.
inline constexpr std::uint32_t ALLOW_FIELD = ALLOW_A | ALLOW_B_TO_L | ALLOW_HL_INDIRECT;

/// Bits of `OperandForm::forms`.
inline constexpr std::uint32_t FORM_IMM8 = 0x001;    ///< an immediate byte is allowed
inline constexpr std::uint32_t FORM_IX = 0x004;      ///< (IX+d) is allowed
inline constexpr std::uint32_t FORM_IY = 0x008;      ///< (IY+d) is allowed
inline constexpr std::uint32_t FORM_DIRECT = 0x020;  ///< (nn) is allowed: LD A,(nn)
inline constexpr std::uint32_t FORM_PREFIX = 0x100;  ///< `prefix` is emitted first

/// The operands that an instruction allows in one place, and their opcodes.
struct OperandForm {
    std::uint8_t shift = 0;            ///< left shift of the operand's number into the opcode
    std::uint8_t opcode = 0;           ///< of the register forms, without the operand's number
    std::uint8_t immediateOpcode = 0;  ///< of the immediate form
    std::uint8_t prefix = 0;           ///< emitted first with FORM_PREFIX
    std::uint32_t allowed = 0;         ///< ALLOW_* bits
    std::uint32_t forms = 0;           ///< FORM_* bits
};

/// The form of an operand that is a byte: in a register, in memory, or immediate.
[[nodiscard]] constexpr OperandForm ByteForm(std::int32_t opcode, std::int32_t immediateOpcode,
                                             std::uint32_t allowed = ALLOW_FIELD,
                                             std::uint32_t forms = FORM_IMM8 | FORM_IX | FORM_IY) {
    return {0,
            static_cast<std::uint8_t>(opcode),
            static_cast<std::uint8_t>(immediateOpcode),
            0,
            allowed,
            forms};
}

/// The prefix that selects IX or IY if `reg` is a code of that register; else PREFIX_NONE.
[[nodiscard]] constexpr std::uint8_t IndexPrefix(std::int32_t reg) {
    switch (reg) {
        case REG_IX:
        case REG_IX_INDIRECT:
        case REG_IX_INDEXED:
            return PREFIX_IX;
        case REG_IY:
        case REG_IY_INDIRECT:
        case REG_IY_INDEXED:
            return PREFIX_IY;
        default:
            return PREFIX_NONE;
    }
}

/// Whether `reg` is the code of B, C, D, E, H, L, (HL) or A. If it is, the code is also the
/// operand's number in the opcode.
[[nodiscard]] constexpr bool IsFieldRegister(std::int32_t reg) {
    return reg >= 0 && reg <= 7;
}
/// Like `IsFieldRegister`, but false for (HL).
[[nodiscard]] constexpr bool IsByteRegister(std::int32_t reg) {
    return IsFieldRegister(reg) && reg != REG_HL_INDIRECT;
}
/// Whether `reg` is the code of BC, DE, HL, IX, IY, SP or AF.
[[nodiscard]] constexpr bool IsPair(std::int32_t reg) {
    return reg >= REG_BC && reg <= REG_AF;
}
/// Whether `reg` is the code of HL, IX or IY. IX and IY are encoded as HL with a prefix.
[[nodiscard]] constexpr bool IsHlOrIndex(std::int32_t reg) {
    return reg >= REG_HL && reg <= REG_IY;
}
/// The number of the pair `reg`, in bits 5 and 4 of an opcode.
[[nodiscard]] constexpr std::int32_t PairField(std::int32_t reg) {
    return (reg & 0xFF) << 4;
}

/// The bit of `OperandForm::allowed` that belongs to `reg`; 0 if there is none.
[[nodiscard]] constexpr std::uint32_t AllowedBit(std::int32_t reg) {
    if (IsFieldRegister(reg)) {
        return reg == REG_A ? ALLOW_A : 2U << reg;
    }
    if (!IsPair(reg)) {
        return 0;
    }
    return reg == REG_AF ? ALLOW_AF : ALLOW_AF << (reg >> 8);  // the high byte numbers the pairs
}
static_assert(AllowedBit(REG_HL_INDIRECT) == ALLOW_HL_INDIRECT && AllowedBit(0) == 0x0002);
static_assert(AllowedBit(REG_BC) == ALLOW_BC && AllowedBit(REG_SP) == ALLOW_SP);

/// Encodes `arg` in one of the ways that `form` allows. Result: 0 or a message number.
[[nodiscard]] Status EncodeOperand(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                   const OperandForm& form);

/// Encodes operand 1 for the accumulator operation `group` (bits 5 to 3 of the opcode).
[[nodiscard]] Status EncodeAccumulatorOp(CAssembler* assembler, CStatement* statement,
                                         std::int32_t group);

/// Encodes an instruction with the prefix CB. Operand 2 is encoded if `kind` is "B" (BIT), "R"
/// (RES) or "S" (SET); operand 1 if it is "X" (rotates and shifts). `field` is the number in bits 5
/// to 3 of the opcode.
[[nodiscard]] Status ProcessBSR_Ex(CAssembler* assembler, CStatement* statement, char kind,
                                   std::int32_t field);

/// Reports that the expression of `arg` failed, and shows the text of `arg`.
void ReportFailedOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg);

}  // namespace korv
