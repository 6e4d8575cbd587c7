/// Finds out why an expression has no value, and which token is at fault.
#pragma once

#include <cstdint>

#include "frontend/statement_view.h"

namespace korv {

enum class ExpressionFault : std::uint8_t {
    none,
    twoValues,     ///< the token follows a value without an operator between them
    noLeft,        ///< the operator has no value before it
    noRight,       ///< the operator has no value after it
    openBracket,   ///< the bracket is not closed
    closeBracket,  ///< the bracket was not opened
    comparison,    ///< a comparison inside brackets, where it has no value
    longString,
    emptyString,
    openString,
    emptyNumber,
    largeNumber,
    badToken,
    tooComplex,   ///< the token is the first beyond the limit
    zeroDivisor,  ///< a number 0 after / or MOD
};

struct FaultyToken {
    ExpressionFault fault = ExpressionFault::none;
    const Token* token = nullptr;  ///< the token at fault; null if there is no fault
};

/// The first fault in the tokens of `operand`. Names count as values.
[[nodiscard]] FaultyToken FindExpressionFault(const OperandView& operand);

/// True if `code` (OP_*) is a comparison operator.
[[nodiscard]] bool IsComparison(std::int32_t code);

}  // namespace korv
