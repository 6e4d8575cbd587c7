// The evaluator: a cursor walks a linked list of nodes, and every operation replaces its operands
// by its result, until one value is left. There is no stack and no recursion. Precedence is one
// look ahead at the next operator.
//
// The list is in the order of the text, and every result stays in the leftmost node involved; so
// the last one standing is node 0. A budget of steps ends the walk over a malformed expression, in
// which the cursor could circle for ever.

#include "expr/evaluator.h"

#include <cmath>
#include <limits>
#include <optional>

#include "diagnostics/message_numbers.h"

namespace korv {
namespace {

constexpr std::int32_t none = -1;
constexpr std::int32_t failed = -2;  // of a step: the walk fails

std::int32_t Wrapped(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}

// e to the power `exponent`, whole part, low 32 bits; 0 when that does not fit 64 bits.
std::int32_t Exponential(std::int32_t exponent) {
    constexpr double limit = 9223372036854775808.0;  // 2 to the 63
    const double power = std::exp(static_cast<double>(exponent));
    if (!(power < limit)) {
        return 0;
    }
    return Wrapped(static_cast<std::uint32_t>(static_cast<std::int64_t>(power)));
}

// The result of a binary operator; none: there is no such operator, or no result.
std::optional<std::int32_t> Applied(std::int32_t code, std::int32_t left, std::int32_t right) {
    const auto l = static_cast<std::uint32_t>(left);
    const auto r = static_cast<std::uint32_t>(right);
    const bool divides =
        right != 0 && (right != -1 || left != std::numeric_limits<std::int32_t>::min());
    // clang-format off
    switch (code) {
        case OP_PLUS: return Wrapped(l + r);
        case OP_MINUS: return Wrapped(l - r);
        case OP_MULTIPLY: return Wrapped(l * r);
        case OP_DIVIDE: return divides ? std::optional(left / right) : std::nullopt;
        case OP_MODULO: return divides ? std::optional(left % right) : std::nullopt;
        case OP_SHIFT_LEFT: return Wrapped(l << (r & 31));
        case OP_SHIFT_RIGHT: return left >> (r & 31);
        case OP_AND: return Wrapped(l & r);
        case OP_XOR: return Wrapped(l ^ r);
        case OP_OR: return Wrapped(l | r);
        case OP_LESS: return left < right ? 1 : 0;
        case OP_GREATER: return left > right ? 1 : 0;
        case OP_LESS_EQUAL: return left <= right ? 1 : 0;
        case OP_GREATER_EQUAL: return left >= right ? 1 : 0;
        case OP_EQUAL: return left == right ? 1 : 0;
        case OP_EXP: return Exponential(right);
        default: return std::nullopt;
    }
    // clang-format on
}

class NodeList {
  public:
    NodeList(ExprNode* nodes, std::int32_t count) : nodes(nodes) {
        for (std::int32_t i = 0; i < count; ++i) {
            nodes[i].prev = i - 1;
            nodes[i].next = i + 1 < count ? i + 1 : none;
        }
    }

    [[nodiscard]] bool IsAlone(std::int32_t at) const {
        return Prev(at) == none && Next(at) == none;
    }
    [[nodiscard]] bool IsValue(std::int32_t at) const { return nodes[at].type == NODE_VALUE; }

    // One step at a value or an operator. Result: the node where the cursor goes, or `failed`.
    [[nodiscard]] std::int32_t StepAtValue(std::int32_t at) const {
        if (Prev(at) != none) {
            return Prev(at);
        }
        return IsValue(Next(at)) ? failed : Next(at);
    }

    std::int32_t StepAtOperator(std::int32_t at) {
        const std::int32_t right = Next(at);
        if (right == none) {  // every operator wants something to its right, and so does a ")" that
                              // nothing opened
            return failed;
        }
        const std::int32_t following = IsValue(right) ? Next(right) : none;
        if (following != none) {
            if (nodes[following].priority > nodes[at].priority) {
                return following;
            }
            if (IsValue(following)) {
                return failed;
            }
        }
        const std::int32_t left = Prev(at);
        const bool hasLeftValue = left != none && IsValue(left);
        switch (nodes[at].value) {
            case OP_OPEN:
                return StepAtBracket(at, right);
            case OP_CLOSE:
                return failed;
            case OP_NOT:
                return StepAtUnary(at, right);
            case OP_PLUS:
            case OP_MINUS:
                return hasLeftValue ? StepAtBinary(at, left, right) : StepAtUnary(at, right);
            default:
                return hasLeftValue ? StepAtBinary(at, left, right) : failed;
        }
    }

  private:
    [[nodiscard]] std::int32_t Prev(std::int32_t at) const { return nodes[at].prev; }
    [[nodiscard]] std::int32_t Next(std::int32_t at) const { return nodes[at].next; }

    std::int32_t StepAtBinary(std::int32_t at, std::int32_t left, std::int32_t right) {
        if (!IsValue(right)) {
            return right;  // a bracket or a sign on the right is worked first
        }
        const auto result = Applied(nodes[at].value, nodes[left].value, nodes[right].value);
        if (!result) {
            return failed;
        }
        nodes[left].value = *result;
        Remove(at);
        Remove(right);
        return left;
    }

    std::int32_t StepAtUnary(std::int32_t at, std::int32_t right) {
        if (!IsValue(right)) {
            return right;
        }
        const std::int32_t code = nodes[at].value;
        const auto operand = static_cast<std::uint32_t>(nodes[right].value);
        MakeValue(at, Wrapped(code == OP_NOT     ? ~operand
                              : code == OP_MINUS ? 0 - operand
                                                 : operand));
        Remove(right);
        return at;
    }

    std::int32_t StepAtBracket(std::int32_t at, std::int32_t right) {
        if (!IsValue(right)) {
            return nodes[right].value == OP_CLOSE ? failed : right;
        }
        const std::int32_t following = Next(right);
        if (following == none) {
            return failed;
        }
        if (nodes[following].value != OP_CLOSE) {
            return following;
        }
        MakeValue(at, nodes[right].value);
        Remove(right);
        Remove(following);
        return at;
    }

    // The node keeps its priority.
    void MakeValue(std::int32_t at, std::int32_t value) {
        nodes[at].type = NODE_VALUE;
        nodes[at].value = value;
    }

    void Remove(std::int32_t at) {
        const std::int32_t prev = Prev(at);
        const std::int32_t next = Next(at);
        if (prev != none) {
            nodes[prev].next = next;
        }
        if (next != none) {
            nodes[next].prev = prev;
        }
        nodes[at] = {0, 0, 0, none, none};
    }

    ExprNode* nodes;
};

}  // namespace

std::int32_t ReduceNodes(ExprNode* nodes, std::int32_t capacity, std::int32_t count) {
    if (count == 0) {
        return MSG_BAD_EXPRESSION;
    }
    NodeList list(nodes, count);
    std::int32_t cursor = 0;
    for (std::int32_t budget = capacity * 16; budget > 0; --budget) {
        if (!list.IsValue(cursor)) {
            cursor = list.StepAtOperator(cursor);
        } else if (list.IsAlone(cursor)) {
            return 0;
        } else {
            cursor = list.StepAtValue(cursor);
        }
        if (cursor == failed) {
            break;
        }
    }
    return MSG_BAD_EXPRESSION;
}

}  // namespace korv
