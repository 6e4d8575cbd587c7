/// Compares operands with the forms that each mnemonic takes, to find the operand at fault and the
/// forms to propose instead. Used for messages, and for hover, completion and signatures in an
/// editor.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/statement_view.h"

namespace korv {

/// Result of `FindFaultyOperand` and `FindExcess`: no operand is at fault.
inline constexpr std::size_t noFault = static_cast<std::size_t>(-1);

/// The forms of the mnemonic, such as "LD A,(nn)"; a word that takes no operands has one form.
/// Forms whose first `operandCount` operands do not match those of `statement` are left out.
[[nodiscard]] std::vector<std::string> FormsOf(const StatementView& statement,
                                               std::size_t operandCount);

/// The terms for the operand at index `place`, in the forms that match the operands before it. Each
/// appears once. Classes are replaced by their members, except r, n, nn, x, str and name; e becomes
/// nn.
[[nodiscard]] std::vector<std::string> ChoicesAt(const StatementView& statement, std::size_t place);

/// True if the statement matches a form of its mnemonic. Values are ignored, except plain numbers
/// that are part of an opcode.
[[nodiscard]] bool HasForm(const StatementView& statement);

/// The index of the first operand that no form accepts after the operands before it; the number of
/// operands if another one is missing; `noFault` if a form matches, or if the mnemonic is unknown.
[[nodiscard]] std::size_t FindFaultyOperand(const StatementView& statement);

/// The index of the operand to remove if a mnemonic that takes at most two has three: the last one
/// whose removal leaves a valid form or, if there is none, the last operand. `noFault` for other
/// statements.
[[nodiscard]] std::size_t FindExcess(const StatementView& statement);

/// True if the operands match one of `shapes`, which are written like the forms of form_table.h;
/// empty: no operands. Shapes may also contain these classes. any: an operand; v: a value, in
/// parentheses or not; gp: BC, DE or HL; pair: gp, IX, IY, SP or AF; reg: a register or condition;
/// (reg), (cc), (any): a register, a condition, any text in parentheses.
[[nodiscard]] bool HasShape(const StatementView& statement, std::string_view shapes);

/// True if `word` is one of `words`, which are separated by blanks; "*" stands for all words.
[[nodiscard]] bool HoldsWord(std::string_view words, std::string_view word);

/// The same for a mnemonic. In `words`, "=RL" stands for all mnemonics with the forms of RL.
[[nodiscard]] bool IsOneOf(std::string_view words, std::string_view mnemonic);

}  // namespace korv
