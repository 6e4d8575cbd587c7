/// The operands that each mnemonic takes, from the processor's published instruction set, and what
/// follows from them: the operand at fault, and the forms to write instead. Messages, and the
/// hover, completion and signatures of an editor are made from this one table.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/statement_view.h"

namespace korv {

/// The operand forms of some mnemonics. Terms that begin with a small letter are classes:
/// r A to L; s r, n, (HL) or (xy+d); m the same without n; dd BC, DE, HL, SP; qq BC, DE, HL, AF;
/// xy IX or IY; cc a condition; c4 NZ, Z, NC, C; n byte, nn word, e target of a relative jump, all
/// three any value; b 0 to 7; p 0, 8 .. 56; i 0 to 2; x a value or string; str a string; name a
/// file.
/// "*" repeats the operand before it. All other terms are themselves.
struct FormRow {
    std::string_view words;           ///< mnemonics, by blanks
    std::string_view forms;           ///< by blanks; "-" is the form without operands
    bool ignoresParentheses = false;  ///< around a number: JP (nn) is JP nn
};

// clang-format off
inline constexpr auto formTable = std::to_array<FormRow>({
    {"LD", "r,s A,(nn) A,(BC) A,(DE) A,I A,R (HL),r (HL),n (xy+d),r (xy+d),n (nn),A (BC),A (DE),A I,A R,A "
           "dd,nn dd,(nn) xy,nn xy,(nn) (nn),dd (nn),xy SP,HL SP,xy"},
    {"PUSH POP", "qq xy"},
    {"EX", "DE,HL AF,AF' (SP),HL (SP),xy"},
    {"ADD", "A,s s HL,dd IX,BC IX,DE IX,IX IX,SP IY,BC IY,DE IY,IY IY,SP"},
    {"ADC SBC", "A,s HL,dd"},
    {"SUB AND XOR OR CP", "s"},
    {"INC DEC", "m dd xy"},
    {"RL RLC RR RRC SLA SRA SRL", "m"},
    {"BIT SET RES", "b,m", true},
    {"JP", "nn cc,nn (HL) (xy)", true},
    {"JR", "e c4,e", true},
    {"CALL", "nn cc,nn", true},
    {"DJNZ", "e", true},
    {"RET", "- cc", true},
    {"RST", "p", true},
    {"IM", "i", true},
    {"IN", "A,(n) r,(C) F,(C)"},
    {"OUT", "(n),A (C),r (C),F"},
    {"DB DEFB", "x,*", true},
    {"DW DEFW", "nn,*", true},
    {"DS DEFS ORG EQU IF COND", "nn", true},
    {"DM DEFM", "str"},
    {"INCLUDE BINCLUDE", "name"},
});
// clang-format on

/// Result of `FindFaultyOperand`: no operand is at fault.
inline constexpr std::size_t noFault = static_cast<std::size_t>(-1);

/// The forms of `mnemonic`, one by one, as in "LD A,(nn)"; only the one without operands for a word
/// that takes none. Those whose first `operandCount` operands do not match those of `statement` are
/// left out.
[[nodiscard]] std::vector<std::string> FormsOf(const StatementView& statement,
                                               std::size_t operandCount);

/// What the operand at index `place` may be, in the forms that agree with the operands before it:
/// classes by their letters, s and m by what they consist of; each once.
[[nodiscard]] std::vector<std::string> ChoicesAt(const StatementView& statement, std::size_t place);

/// Whether the statement has a form of its mnemonic. Values are not looked at, except plain numbers
/// that are part of an opcode.
[[nodiscard]] bool HasForm(const StatementView& statement);

/// Index of the first operand such that no form matches the operands up to it; their number if one
/// is missing after the last; `noFault` if the statement has a form, or its mnemonic is unknown.
[[nodiscard]] std::size_t FindFaultyOperand(const StatementView& statement);

/// Whether the operands are those of one of `shapes`, by blanks and commas as the forms are; empty
/// is no operand. Further classes: any an operand; v a value, in parentheses or not; gp BC, DE or
/// HL; pair these, IX, IY, SP or AF; reg a register or condition; (reg), (cc), (any) in
/// parentheses.
[[nodiscard]] bool HasShape(const StatementView& statement, std::string_view shapes);

/// Whether `words`, by blanks, hold `word`; "*" holds all.
[[nodiscard]] bool HoldsWord(std::string_view words, std::string_view word);

}  // namespace korv
