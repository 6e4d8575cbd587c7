/// The rows of the note tables that fit a statement, with their templates filled in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "frontend/spelling.h"
#include "frontend/statement_view.h"

namespace korv {

inline constexpr std::string_view macroNote =
    "write the lines out, or INCLUDE them from a file: there are no macros or procedures";

inline constexpr const char* checkOperands = " and check the operands";

struct RowAdvice {
    std::string note;
    std::vector<TextEdit> edits;
    std::string_view part;  ///< the tokens that match; null data for other rows
};

/// Advice on a mnemonic that is not in the vocabulary. Foreign spellings in its operands are
/// replaced too.
[[nodiscard]] std::optional<RowAdvice> WordAdvice(const StatementView& statement);
[[nodiscard]] std::optional<RowAdvice> TokenAdvice(const StatementView& statement,
                                                   const OperandView& operand);
[[nodiscard]] std::optional<RowAdvice> OperandAdvice(const StatementView& statement, Status number);

/// The message number for the operands of `statement`: too many, too few, or illegal. For illegal
/// operands, `number` is returned if it is MSG_ILLEGAL_CONDITION; otherwise, the result is
/// MSG_ILLEGAL_ARGUMENT.
[[nodiscard]] Status FormMessage(const StatementView& statement,
                                 Status number = MSG_ILLEGAL_ARGUMENT);

/// "write " and the statement with `edits` applied, without its label.
[[nodiscard]] std::string WriteNote(const StatementView& statement,
                                    const std::vector<TextEdit>& edits);

/// The edit that replaces the mnemonic and its operands with `text`.
[[nodiscard]] TextEdit NewStatement(const StatementView& statement, std::string text);

}  // namespace korv
