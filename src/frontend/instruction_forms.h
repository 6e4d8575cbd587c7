/// The operands that each mnemonic takes, from the processor's published instruction set. They
/// determine which operand is at fault and which forms to propose instead. Messages use this table,
/// and so do hover, completion and signatures in an editor.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/statement_view.h"

namespace korv {

/// The operand forms of some mnemonics. Terms that begin with a lower-case letter are classes: r A
/// to L; s r, n, (HL) or (xy+d); m the same without n; dd BC, DE, HL, SP; qq BC, DE, HL, AF; xy IX
/// or IY; cc a condition; c4 NZ, Z, NC, C; n byte, nn word, e target of a relative jump, all three
/// of which match any value; b 0 to 7; p 0, 8 .. 56; i 0 to 2; x a value or string; str a string;
/// name a file. "*" repeats the operand before it. All other terms match literally.
struct FormRow {
    std::string_view words;           ///< mnemonics, separated by blanks
    std::string_view forms;           ///< separated by blanks; "-" is the form without operands
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

/// The forms of `mnemonic`, such as "LD A,(nn)"; a word that takes no operands has one form. Forms
/// whose first `operandCount` operands do not match those of `statement` are left out.
[[nodiscard]] std::vector<std::string> FormsOf(const StatementView& statement,
                                               std::size_t operandCount);

/// The terms for the operand at index `place`, in the forms that match the operands before it. Each
/// appears once. Classes are replaced by their members, except r, n, nn, x, str and name; e becomes
/// nn.
[[nodiscard]] std::vector<std::string> ChoicesAt(const StatementView& statement, std::size_t place);

/// True if the statement matches a form of its mnemonic. Values are ignored, except plain numbers
/// that are part of an opcode.
[[nodiscard]] bool HasForm(const StatementView& statement);

/// The index of the first operand such that no form matches the operands up to it; the number of
/// operands if one is missing after them; `noFault` if a form matches, or the mnemonic is unknown.
[[nodiscard]] std::size_t FindFaultyOperand(const StatementView& statement);

/// The index of the operand to remove if a mnemonic that takes two has three: the last one whose
/// removal leaves a valid form, otherwise the last operand. `noFault` for other statements.
[[nodiscard]] std::size_t FindExcess(const StatementView& statement);

/// True if the operands match one of `shapes`, which are written like forms; empty: no operands.
/// Further classes: any an operand; v a value, in parentheses or not; gp BC, DE or HL; pair these,
/// IX, IY, SP or AF; reg a register or condition; (reg), (cc), (any) these in parentheses.
[[nodiscard]] bool HasShape(const StatementView& statement, std::string_view shapes);

/// True if `word` is one of `words`, which are separated by blanks; "*" stands for all words.
[[nodiscard]] bool HoldsWord(std::string_view words, std::string_view word);

}  // namespace korv
