/// What in a statement assembles to something other than it appears to say, as far as the statement
/// itself shows it.
#pragma once

#include <optional>
#include <string_view>

#include "frontend/statement_view.h"

namespace korv {

/// The first backslash sequence in a string, such as \n, which is two bytes here. File names have
/// none.
[[nodiscard]] std::optional<LinePart> FindEscape(const StatementView& statement);

/// Whether `label` is a number wherever an expression uses it, as 1B, EACH, B and 7.
[[nodiscard]] bool ReadsAsNumber(std::string_view label);

/// Whether `label` is a register or condition where it is an operand by itself, as P and HL.
[[nodiscard]] bool ReadsAsRegister(std::string_view label);

/// What makes a condition mean something other than it does in other languages, with what to do
/// instead; empty for nothing.
[[nodiscard]] std::string_view SurpriseInCondition(const OperandView& condition);

}  // namespace korv
