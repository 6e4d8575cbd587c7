// From the text of an expression to its value: one pass from left to right cuts tokens, turns each
// value token into a number at once, and hands the nodes to the evaluator at the end. A name
// without a value ends the scan with that name; the whole text is scanned again when the name has
// got its value.

#include <algorithm>
#include <array>

#include "driver/assembler.h"
#include "expr/evaluator.h"
#include "expr/number.h"
#include "expr/token.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::int32_t maxNodes = 20;  // of one expression; the 20th is one too many

// Whether the whole text is one token, as most expressions are.
bool IsOneToken(std::string_view text) {
    return !text.empty() &&
           std::ranges::all_of(text, [](char c) { return ActionOf(c) <= TokenAction::separator; });
}

bool IsOneString(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.find('"', 1) == text.size() - 1;
}

}  // namespace

Status CAssembler::ScanExpression(std::string_view text, std::int32_t* value,
                                  UnresolvedName* unresolved) {
    *value = 0;
    // A displacement has a sign before its token.
    const bool hasSign = text.size() > 1 && (text.front() == '+' || text.front() == '-');
    if (const auto token = text.substr(hasSign ? 1 : 0); IsOneToken(token)) {
        const Status status = ScanToken(token, value, unresolved);
        if (text.front() == '-') {
            *value = static_cast<std::int32_t>(0 - static_cast<std::uint32_t>(*value));
        }
        return status;
    }
    if (IsOneString(text)) {
        return ParseValue(text, value, unresolved);
    }
    return ScanTokens(text, value, unresolved);
}

// Short decimal numbers and names, as nearly all tokens are, end here. What begins with a letter is
// a name unless it is hexadecimal with its suffix.
Status CAssembler::ScanToken(std::string_view token, std::int32_t* value,
                             UnresolvedName* unresolved) {
    const std::size_t size = token.size();
    if (size <= 4 && ReadShortDecimal(token, value)) {
        return 0;
    }
    if (size > 3 && size <= maxWord && HasClass(token.front(), CC_LETTER) && token.back() != 'H') {
        return identifiers.ValueOf(token, value, unresolved);
    }
    return ScanOtherToken(token, value, unresolved);
}

// The same for all others, words that may be operators among them.
[[gnu::noinline]] Status CAssembler::ScanOtherToken(std::string_view token, std::int32_t* value,
                                                    UnresolvedName* unresolved) {
    if (token.size() > maxWord || FindWord(token).code != 0) {
        return MSG_BAD_EXPRESSION;
    }
    return ParseValue(token, value, unresolved);
}

// An expression of any form.
Status CAssembler::ScanTokens(std::string_view text, std::int32_t* value,
                              UnresolvedName* unresolved) {
    std::array<ExprNode, maxNodes + 1> nodes;  // one token and its operator may be one too many
    std::int32_t count = 0;
    const auto store = [&](std::int32_t type, std::int32_t content, std::int32_t priority) {
        nodes[static_cast<std::size_t>(count++)] = {content, type, priority, -1, -1};
    };
    TokenReader reader(text);
    do {
        reader.Next();
        std::string_view token = reader.Token();
        if (token.size() + (reader.lacksClosingQuote ? 1 : 0) > maxWord) {
            return MSG_BAD_EXPRESSION;
        }
        if (reader.lacksClosingQuote) {
            token.copy(closedToken.data(), token.size());
            closedToken[token.size()] = '"';
            token = {closedToken.data(), token.size() + 1};
        }
        const Operator word = FindWord(token);
        if (word.code != 0) {
            store(NODE_OPERATOR, word.code, word.priority);
        } else if (!token.empty()) {
            std::int32_t number = 0;
            if (const Status status = ScanToken(token, &number, unresolved); status != 0) {
                return status;
            }
            store(NODE_VALUE, number, 0);
        }
        if (reader.op.code != 0) {
            store(NODE_OPERATOR, reader.op.code, reader.op.priority);
        }
    } while (!reader.isAtEnd && count < maxNodes);
    if (count >= maxNodes) {
        return MSG_TOO_COMPLEX;
    }
    const Status status = ReduceNodes(nodes.data(), maxNodes, count);
    if (status == 0) {
        *value = nodes[0].value;
    }
    return status;
}

Status CAssembler::ParseValue(std::string_view token, std::int32_t* value,
                              UnresolvedName* unresolved) {
    if (token == "$") {
        *value = static_cast<std::int32_t>(statementAddress);
        return 0;
    }
    if (const Status status = ReadNumber(token, value); status != notANumber) {
        return status;
    }
    if (!HasClass(token.front(), CC_NAME_START)) {
        return MSG_BAD_EXPRESSION;
    }
    return identifiers.ValueOf(token, value, unresolved);
}

}  // namespace korv
