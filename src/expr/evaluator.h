/// Reduces the nodes of one expression to its value.
#pragma once

#include <cstdint>

#include "diagnostics/message_numbers.h"

namespace korv {

inline constexpr std::int32_t NODE_VALUE = 0x23;
inline constexpr std::int32_t NODE_OPERATOR = 0x21;

/// Operator codes: the operator's one-character form, or a letter if it has none.
inline constexpr std::int32_t OP_OPEN = '(';
inline constexpr std::int32_t OP_CLOSE = ')';
inline constexpr std::int32_t OP_EXP = 'E';
inline constexpr std::int32_t OP_MULTIPLY = '*';
inline constexpr std::int32_t OP_DIVIDE = '/';
inline constexpr std::int32_t OP_MODULO = 'M';
inline constexpr std::int32_t OP_PLUS = '+';
inline constexpr std::int32_t OP_MINUS = '-';
inline constexpr std::int32_t OP_SHIFT_LEFT = 'L';
inline constexpr std::int32_t OP_SHIFT_RIGHT = 'R';
inline constexpr std::int32_t OP_AND = '&';
inline constexpr std::int32_t OP_XOR = '^';
inline constexpr std::int32_t OP_OR = '|';
inline constexpr std::int32_t OP_NOT = '!';
inline constexpr std::int32_t OP_LESS = '<';
inline constexpr std::int32_t OP_GREATER = '>';
inline constexpr std::int32_t OP_EQUAL = '=';
inline constexpr std::int32_t OP_LESS_EQUAL = 'S';
inline constexpr std::int32_t OP_GREATER_EQUAL = 'G';

struct ExprNode {
    std::int32_t value;     ///< the number, or the code of the operator
    std::int32_t type;      ///< NODE_VALUE or NODE_OPERATOR
    std::int32_t priority;  ///< of an operator, higher binds tighter; 0 for a value from the text
    std::int32_t prev;      ///< index of the left neighbour, -1 for none
    std::int32_t next;      ///< index of the right neighbour, -1 for none
};

/// Works in place on the first `count` of the `capacity` elements at `nodes`. They are in source
/// order, with `value`, `type` and `priority` set. Result: 0 with the value in `nodes[0].value`, or
/// MSG_BAD_EXPRESSION. Values are signed 32-bit numbers and wrap around.
[[nodiscard]] Status ReduceNodes(ExprNode* nodes, std::int32_t capacity, std::int32_t count);

}  // namespace korv
