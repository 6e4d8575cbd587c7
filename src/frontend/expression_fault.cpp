#include "frontend/expression_fault.h"

#include <algorithm>
#include <array>
#include <span>

#include "expr/evaluator.h"

namespace korv {
namespace {

bool IsSign(std::int32_t code) {
    return code == OP_PLUS || code == OP_MINUS || code == OP_NOT;
}

// The fault of a single value, regardless of its neighbours.
ExpressionFault FaultOf(const Token& token) {
    switch (token.kind) {
        case TokenKind::string:
            return token.text.size() == 3   ? ExpressionFault::none
                   : token.text.size() == 2 ? ExpressionFault::emptyString
                                            : ExpressionFault::longString;
        case TokenKind::openString:
            return ExpressionFault::openString;
        case TokenKind::emptyNumber:
            return ExpressionFault::emptyNumber;
        case TokenKind::largeNumber:
            return ExpressionFault::largeNumber;
        case TokenKind::other:
            return ExpressionFault::badToken;
        case TokenKind::registerName:  // B and H alone are suffixes of numbers without digits
            return token.text == "B" || token.text == "H" ? ExpressionFault::emptyNumber
                                                          : ExpressionFault::none;
        default:
            return ExpressionFault::none;
    }
}

// The tokens of `operand`, without brackets around the whole operand: they only denote memory.
std::span<const Token> ExpressionTokens(const OperandView& operand) {
    const std::span<const Token> tokens = operand.tokens;
    return !tokens.empty() && tokens.front().code == OP_OPEN && tokens.back().code == OP_CLOSE
               ? tokens.subspan(1, tokens.size() - 2)
               : tokens;
}

}  // namespace

bool IsComparison(std::int32_t code) {
    constexpr std::array comparisons = {OP_LESS, OP_GREATER, OP_EQUAL, OP_LESS_EQUAL,
                                        OP_GREATER_EQUAL};
    return std::ranges::find(comparisons, code) != comparisons.end();
}

FaultyToken FindExpressionFault(const OperandView& operand) {
    const Token* before = nullptr;  // the previous token
    std::vector<const Token*> brackets;
    const std::span<const Token> tokens = ExpressionTokens(operand);
    const bool isBalanced = std::ranges::count(tokens, OP_OPEN, &Token::code) ==
                            std::ranges::count(tokens, OP_CLOSE, &Token::code);
    constexpr std::size_t mostTokens = 19;  // the evaluator has this many nodes
    if (tokens.size() > mostTokens) {
        return {ExpressionFault::tooComplex, &tokens[mostTokens]};
    }
    for (const Token& token : tokens) {
        const bool isAfterValue =
            before != nullptr && (before->IsValue() || before->code == OP_CLOSE);
        if (token.IsValue() || token.code == OP_OPEN || token.code == OP_NOT) {
            if (isAfterValue) {
                return {ExpressionFault::twoValues, &token};
            }
            const Token* const next = &token == &tokens.back() ? nullptr : &token + 1;
            if (token.IsValue() && next != nullptr && next->IsValue() &&
                token.kind != TokenKind::other) {
                return {ExpressionFault::twoValues, next};
            }
            if (const ExpressionFault fault =
                    token.IsValue() ? FaultOf(token) : ExpressionFault::none;
                fault != ExpressionFault::none) {
                return {fault, &token};
            }
            const bool isDivisor =
                before != nullptr && (before->code == OP_DIVIDE || before->code == OP_MODULO);
            if (isDivisor && token.kind == TokenKind::number && token.value == 0) {
                return {ExpressionFault::zeroDivisor, &token};
            }
            if (token.code == OP_OPEN) {
                brackets.push_back(&token);
            }
        } else if (token.code == OP_CLOSE) {
            if (brackets.empty()) {
                return {ExpressionFault::closeBracket, &token};
            }
            if (!isAfterValue) {
                return {ExpressionFault::noRight, before};
            }
            brackets.pop_back();
        } else if (!isAfterValue && !IsSign(token.code)) {
            return {ExpressionFault::noLeft, &token};
        } else if (IsComparison(token.code) && !brackets.empty() && isBalanced) {
            return {ExpressionFault::comparison, &token};
        }
        before = &token;
    }
    if (before != nullptr && !before->IsValue() && before->code != OP_CLOSE) {
        return {ExpressionFault::noRight, before};
    }
    return brackets.empty() ? FaultyToken{}
                            : FaultyToken{ExpressionFault::openBracket, brackets.back()};
}

}  // namespace korv
