/// The names of registers and conditions as operands, from the processor's published instruction
/// set, with the codes that the encoders decide on. One table: the operand list looks names up in
/// it, nothing else knows a name.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace korv {

/// Register codes. The low byte of a bare name's code is its number in the opcode: 0 to 7 for an
/// 8-bit register, 0 to 3 for a pair, 6 for F. "(HL)" has the code 6, the number of the memory
/// operand.
inline constexpr std::int32_t REG_NONE = -1;
inline constexpr std::int32_t REG_C = 1;
inline constexpr std::int32_t REG_HL_INDIRECT = 6;
inline constexpr std::int32_t REG_A = 7;
inline constexpr std::int32_t REG_I = 10;
inline constexpr std::int32_t REG_R = 11;
inline constexpr std::int32_t REG_BC = 0x0100;
inline constexpr std::int32_t REG_DE = 0x0201;
inline constexpr std::int32_t REG_HL = 0x0302;
inline constexpr std::int32_t REG_IX = 0x0402;
inline constexpr std::int32_t REG_IY = 0x0502;
inline constexpr std::int32_t REG_SP = 0x0603;
inline constexpr std::int32_t REG_AF = 0x0703;
inline constexpr std::int32_t REG_F = 0x0806;
inline constexpr std::int32_t REG_C_INDIRECT = 0x0F01;
inline constexpr std::int32_t REG_BC_INDIRECT = 0x2000;
inline constexpr std::int32_t REG_DE_INDIRECT = 0x3001;
inline constexpr std::int32_t REG_IX_INDIRECT = 0x4002;
inline constexpr std::int32_t REG_IY_INDIRECT = 0x5002;
inline constexpr std::int32_t REG_SP_INDIRECT = 0x6003;
/// Codes of operands that hold an expression: (IX+d), (IY+d), and any other expression in
/// parentheses.
inline constexpr std::int32_t REG_IX_INDEXED = 0x7007;
inline constexpr std::int32_t REG_IY_INDEXED = 0x8008;
inline constexpr std::int32_t REG_DIRECT = 0x900F;

struct OperandName {
    std::string_view name;
    std::int32_t reg = REG_NONE;          ///< code of the bare name
    std::int32_t regIndirect = REG_NONE;  ///< code of the name in parentheses
    std::int32_t condition = -1;          ///< number in the condition field, bare
    std::int32_t conditionIndirect = -1;  ///< the same in parentheses
};

// clang-format off
inline constexpr std::array operandNames = {
    OperandName{"B",  0,      0x0F00},
    OperandName{"C",  REG_C,  REG_C_INDIRECT, 3, -1},  // bare: register and condition at once
    OperandName{"D",  2,      0x0F02},
    OperandName{"E",  3,      0x0F03},
    OperandName{"H",  4,      0x0F04},
    OperandName{"L",  5,      0x0F05},
    OperandName{"A",  REG_A,  0x0F07},
    OperandName{"I",  REG_I,  REG_NONE},
    OperandName{"R",  REG_R,  REG_NONE},
    OperandName{"F",  REG_F,  0x1F06},
    OperandName{"M",  REG_NONE, REG_NONE, 7, 7},
    OperandName{"P",  REG_NONE, REG_NONE, 6, 6},
    OperandName{"Z",  REG_NONE, REG_NONE, 1, 1},
    OperandName{"BC", REG_BC, REG_BC_INDIRECT},
    OperandName{"DE", REG_DE, REG_DE_INDIRECT},
    OperandName{"HL", REG_HL, REG_HL_INDIRECT},
    OperandName{"IX", REG_IX, REG_IX_INDIRECT},
    OperandName{"IY", REG_IY, REG_IY_INDIRECT},
    OperandName{"SP", REG_SP, REG_SP_INDIRECT},
    OperandName{"AF", REG_AF, 0x1003},
    OperandName{"NC", REG_NONE, REG_NONE, 2, 2},
    OperandName{"NZ", REG_NONE, REG_NONE, 0, 0},
    OperandName{"PE", REG_NONE, REG_NONE, 5, 5},
    OperandName{"PO", REG_NONE, REG_NONE, 4, 4},
    OperandName{"FLAGS", REG_F, REG_NONE},             // F, in the long spelling
};
// clang-format on

/// The row of `name`, which is 1, 2 or 5 characters long, or null.
[[nodiscard]] const OperandName* FindOperandName(std::string_view name) noexcept;

}  // namespace korv
