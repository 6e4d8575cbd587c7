// The evaluator: a cursor walks a linked list of nodes, and every operation replaces its operands
// with its result, until one value is left. There is no stack and no recursion. Precedence is
// decided by looking ahead at the next operator.
//
// The list is in the order of the text. Every result is stored in the leftmost node involved, so
// the node that remains is node 0. In a malformed expression, the cursor could circle forever; a
// budget of steps ends such a walk.

#include "expr/evaluator.h"

#include <cmath>
#include <limits>
#include <optional>

namespace korv {
namespace {

constexpr std::int32_t none = -1;  // no node

std::int32_t Wrapped(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}

// The low 32 bits of the integer part of e to the power `exponent`; 0 if the integer part does not
// fit in 64 bits.
std::int32_t Exponential(std::int32_t exponent) {
    constexpr double limit = 9223372036854775808.0;  // 2 to the 63
    const double power = std::exp(static_cast<double>(exponent));
    return power < limit ? Wrapped(static_cast<std::uint32_t>(static_cast<std::int64_t>(power)))
                         : 0;
}

// The result of the operator `code`; for a unary operator, `left` is 0. Empty if there is no such
// operator or it has no result.
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
        case OP_NOT: return ~right;
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

    // Whether the node `at` is a value and the only node left.
    [[nodiscard]] bool IsResult(std::int32_t at) const {
        return IsValue(at) && nodes[at].prev == none && nodes[at].next == none;
    }

    // Performs one step at the node `at`. Result: the next node for the cursor; `none` if the walk
    // fails.
    std::int32_t Step(std::int32_t at) {
        const std::int32_t left = nodes[at].prev;
        const std::int32_t right = nodes[at].next;
        if (IsValue(at) && left != none) {
            return left;
        }
        if (IsValue(at)) {
            return IsValue(right) ? none : right;
        }
        if (right == none || nodes[at].value == OP_CLOSE) {
            return none;  // every operator needs a right operand; a ")" is removed with its "("
        }
        if (!IsValue(right)) {
            return right;  // a bracket or a sign on the right is processed first
        }
        const std::int32_t following = nodes[right].next;
        if (following != none && nodes[following].priority > nodes[at].priority) {
            return following;
        }
        if (following != none && IsValue(following)) {
            return none;
        }
        return nodes[at].value == OP_OPEN ? CloseBracket(at, right) : Apply(at, left, right);
    }

  private:
    [[nodiscard]] bool IsValue(std::int32_t at) const { return nodes[at].type == NODE_VALUE; }

    // Replaces the bracket at `at` and the value `right` in it with that value. Anything between
    // the value and the closing bracket is processed first.
    std::int32_t CloseBracket(std::int32_t at, std::int32_t right) {
        const std::int32_t following = nodes[right].next;
        if (following == none || nodes[following].value != OP_CLOSE) {
            return following;
        }
        MakeValue(at, nodes[right].value);
        Remove(right);
        Remove(following);
        return at;
    }

    // Applies the operator `at`, which precedes the value `right`. OP_NOT is always unary; a sign
    // is unary if no value precedes it.
    std::int32_t Apply(std::int32_t at, std::int32_t left, std::int32_t right) {
        const std::int32_t code = nodes[at].value;
        const bool isBinary = code != OP_NOT && left != none && IsValue(left);
        if (!isBinary && code != OP_NOT && code != OP_PLUS && code != OP_MINUS) {
            return none;
        }
        const auto result = Applied(code, isBinary ? nodes[left].value : 0, nodes[right].value);
        if (!result) {
            return none;
        }
        const std::int32_t target = isBinary ? left : at;
        MakeValue(target, *result);
        Remove(right);
        if (isBinary) {
            Remove(at);
        }
        return target;
    }

    // Makes the node `at` a value. The node keeps its priority.
    void MakeValue(std::int32_t at, std::int32_t value) {
        nodes[at].type = NODE_VALUE;
        nodes[at].value = value;
    }

    void Remove(std::int32_t at) {
        const std::int32_t prev = nodes[at].prev;
        const std::int32_t next = nodes[at].next;
        if (prev != none) {
            nodes[prev].next = next;
        }
        if (next != none) {
            nodes[next].prev = prev;
        }
    }

    ExprNode* nodes;
};

}  // namespace

Status ReduceNodes(ExprNode* nodes, std::int32_t capacity, std::int32_t count) {
    if (count == 0) {
        return MSG_BAD_EXPRESSION;
    }
    NodeList list(nodes, count);
    std::int32_t cursor = 0;
    for (std::int32_t budget = capacity * 16; budget > 0 && cursor != none; --budget) {
        if (list.IsResult(cursor)) {
            return 0;
        }
        cursor = list.Step(cursor);
    }
    return MSG_BAD_EXPRESSION;
}

}  // namespace korv
