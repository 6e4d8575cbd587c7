/// The names of registers and conditions as operands, from the processor's published instruction
/// set, with the codes for the encoders. All operands are looked up in this table, except IX and IY
/// before a displacement and the text AF'.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace korv {

/// Register codes. In the code of a bare name other than I and R, the low byte is the register's
/// number in the opcode: 0 to 7 for an 8-bit register, 0 to 3 for a pair, 6 for F. "(HL)" has the
/// code 6, the number of the memory operand.
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
/// Codes of operands with an expression: (IX+d), (IY+d), and any other expression in parentheses.
inline constexpr std::int32_t REG_IX_INDEXED = 0x7007;
inline constexpr std::int32_t REG_IY_INDEXED = 0x8008;
inline constexpr std::int32_t REG_DIRECT = 0x900F;

/// Bits of `OperandClass::flags`.
inline constexpr std::uint32_t LA_INDIRECT = 0x01;  ///< in parentheses, or any register name
inline constexpr std::uint32_t LA_QUOTED = 0x02;    ///< begins and ends with a double quote
inline constexpr std::uint32_t LA_CONSTANT = 0x04;  ///< has a value, or is a condition
inline constexpr std::int32_t KIND_NONE = 0;
inline constexpr std::int32_t KIND_REGISTER = 1;
inline constexpr std::int32_t KIND_VALUE = 2;
inline constexpr std::int32_t KIND_CONDITION = 4;

/// The class of an operand before it is evaluated.
struct OperandClass {
    std::int32_t reg = REG_NONE;    ///< REG_* code
    std::int32_t condition = -1;    ///< condition number 0 to 7, or -1
    std::uint32_t flags = 0;        ///< LA_* bits
    std::int32_t kind = KIND_NONE;  ///< KIND_*
};

/// The classes of a word as an operand, bare and in parentheses.
struct OperandName {
    std::string_view name;
    OperandClass bare;
    OperandClass indirect;
};

// clang-format off
namespace operand_class {
inline constexpr OperandClass value{REG_NONE, -1, 0, KIND_VALUE};
inline constexpr OperandClass direct{REG_DIRECT, -1, LA_INDIRECT, KIND_VALUE};
constexpr OperandClass Register(std::int32_t code) { return {code, -1, LA_INDIRECT, KIND_REGISTER}; }

constexpr OperandName RegisterRow(std::string_view name, std::int32_t bare, std::int32_t indirect) {
    return {name, Register(bare), Register(indirect)};
}
constexpr OperandName ConditionRow(std::string_view name, std::int32_t number) {
    return {name, {REG_NONE, number, LA_CONSTANT, KIND_CONDITION},
            {REG_NONE, number, LA_CONSTANT | LA_INDIRECT, KIND_CONDITION}};
}
}  // namespace operand_class

inline constexpr std::array operandNames = {
    OperandName{"", operand_class::value, operand_class::direct},  // every other word is an expression
    operand_class::RegisterRow("B", 0, 0x0F00),
    OperandName{"C", {REG_C, 3, LA_INDIRECT | LA_CONSTANT, KIND_CONDITION},  // register and condition at once
                operand_class::Register(REG_C_INDIRECT)},
    operand_class::RegisterRow("D", 2, 0x0F02),
    operand_class::RegisterRow("E", 3, 0x0F03),
    operand_class::RegisterRow("H", 4, 0x0F04),
    operand_class::RegisterRow("L", 5, 0x0F05),
    operand_class::RegisterRow("A", REG_A, 0x0F07),
    operand_class::RegisterRow("I", REG_I, REG_NONE),  // "(I)" and "(R)" are registers without a code
    operand_class::RegisterRow("R", REG_R, REG_NONE),
    operand_class::RegisterRow("F", REG_F, 0x1F06),
    operand_class::ConditionRow("M", 7),
    operand_class::ConditionRow("P", 6),
    operand_class::ConditionRow("Z", 1),
    operand_class::RegisterRow("BC", REG_BC, REG_BC_INDIRECT),
    operand_class::RegisterRow("DE", REG_DE, REG_DE_INDIRECT),
    operand_class::RegisterRow("HL", REG_HL, REG_HL_INDIRECT),
    operand_class::RegisterRow("IX", REG_IX, REG_IX_INDIRECT),
    operand_class::RegisterRow("IY", REG_IY, REG_IY_INDIRECT),
    operand_class::RegisterRow("SP", REG_SP, REG_SP_INDIRECT),
    operand_class::RegisterRow("AF", REG_AF, 0x1003),
    operand_class::ConditionRow("NC", 2),
    operand_class::ConditionRow("NZ", 0),
    operand_class::ConditionRow("PE", 5),
    operand_class::ConditionRow("PO", 4),
    OperandName{"FLAGS", operand_class::Register(REG_F), operand_class::direct},  // F, spelled out
};
// clang-format on

/// The lookup. Words of two characters index a table by the low bits of both characters, which
/// differ for all letters. Words of one character index another part of the table. So an operand
/// not in the table costs only a load and a comparison. A plain search would cost 30 % more
/// instructions in total.
namespace operand_class {

inline constexpr std::size_t letters = 32;
inline constexpr std::size_t pairs = letters * letters;

constexpr std::size_t SlotOf(std::string_view name) {
    const auto first = static_cast<std::uint8_t>(name[0]);
    if (name.size() == 1) {
        return pairs + first;
    }
    return first % letters * letters + static_cast<std::uint8_t>(name[1]) % letters;
}

// Row numbers, indexed by SlotOf. Row 0 means that the word is not in the table.
inline constexpr auto rowsBySlot = [] {
    std::array<std::uint8_t, pairs + 256> table{};
    for (std::size_t i = 0; i < operandNames.size(); ++i) {
        if (const auto name = operandNames[i].name; name.size() == 1 || name.size() == 2) {
            table[SlotOf(name)] = static_cast<std::uint8_t>(i);
        }
    }
    return table;
}();
inline constexpr std::size_t noRow = 0;
inline constexpr std::size_t longRow = operandNames.size() - 1;
static_assert(operandNames[noRow].name.empty() && operandNames[longRow].name == "FLAGS");

[[nodiscard, gnu::always_inline]] constexpr std::size_t RowOf(std::string_view token) {
    if (token.size() > 2) {
        return token == "FLAGS" ? longRow : noRow;
    }
    if (token.size() == 1) {
        return rowsBySlot[SlotOf(token)];
    }
    const std::size_t row = rowsBySlot[SlotOf(token)];
    const std::string_view name = operandNames[row].name;
    return row != noRow && name[0] == token[0] && name[1] == token[1] ? row : noRow;
}
}  // namespace operand_class

/// The class of the operand `token`, which is not empty, bare and in parentheses. A word that is
/// not in the table is a value. Always inlined: since the front end calls it too, the compiler
/// would otherwise emit a call, which costs 1 % of a run of korv-as.
[[nodiscard, gnu::always_inline]] inline const OperandClass& ClassOfToken(std::string_view token) {
    return operandNames[operand_class::RowOf(token)].bare;
}
[[nodiscard]] inline const OperandClass& ClassInParentheses(std::string_view token) {
    return operandNames[operand_class::RowOf(token)].indirect;
}
/// The class of a word that may be empty, which is a value too.
[[nodiscard]] inline const OperandClass& ClassOf(std::string_view word) {
    return word.empty() ? operandNames[operand_class::noRow].bare : ClassOfToken(word);
}

}  // namespace korv
