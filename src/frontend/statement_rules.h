/// Finds parts of a statement that assemble to something other than they appear to say. Only the
/// statement itself is examined.
#pragma once

#include <optional>
#include <string_view>

#include "frontend/statement_view.h"

namespace korv {

/// The first backslash sequence in a string, such as \n, which is two bytes in Korv. A backslash in
/// a file name does not count.
[[nodiscard]] std::optional<LinePart> FindEscape(const StatementView& statement);

/// True if an expression reads `label` as a number, like 1B, EACH, B and 7.
[[nodiscard]] bool ReadsAsNumber(std::string_view label);

/// True if `label`, used alone as an operand, is read as a register or condition, like P or HL.
[[nodiscard]] bool ReadsAsRegister(std::string_view label);

/// The note about a condition that means something else in most languages; empty for other
/// conditions.
[[nodiscard]] std::string_view SurpriseInCondition(const OperandView& condition);

}  // namespace korv
