#include "expr/token.h"

#include <algorithm>

#include "expr/number.h"

namespace korv {
namespace {

constexpr Operator lessEqual{OP_LESS_EQUAL, 1};
constexpr Operator greaterEqual{OP_GREATER_EQUAL, 1};

constexpr std::array wordOperators = {
    OperatorRow{"AND", {OP_AND, 7}},         OperatorRow{"OR", {OP_OR, 5}},
    OperatorRow{"XOR", {OP_XOR, 6}},         OperatorRow{"SHL", {OP_SHIFT_LEFT, 8}},
    OperatorRow{"SHR", {OP_SHIFT_RIGHT, 8}}, OperatorRow{"MOD", {OP_MODULO, 12}},
    OperatorRow{"EXP", {OP_EXP, 13}},
};

static_assert(std::ranges::max(wordOperators, {}, [](const OperatorRow& row) {
                  return row.spelling.size();
              }).spelling.size() == longestWordOperator);

// First characters of word operators, which may also be written between dots.
constexpr auto beginsWord = [] {
    std::array<bool, 256> table{};
    for (const OperatorRow& row : wordOperators) {
        table[static_cast<std::uint8_t>(row.spelling[0])] = true;
    }
    table['.'] = true;
    return table;
}();

constexpr auto symbolOf = [] {
    std::array<Operator, 256> table{};
    for (const OperatorRow& row : symbolOperators) {
        table[static_cast<std::uint8_t>(row.spelling[0])] = row.op;
    }
    return table;
}();

}  // namespace

Operator FindWord(std::string_view token) {
    if (token.empty() || token.size() > longestWordOperator + 2 ||
        !beginsWord[static_cast<std::uint8_t>(token.front())]) {
        return {};
    }
    if (token.size() > 2 && token.front() == '.' && token.back() == '.') {
        token = token.substr(1, token.size() - 2);
    }
    for (const OperatorRow& row : wordOperators) {
        if (row.spelling == token) {
            return row.op;
        }
    }
    return {};
}

void TokenReader::Next() {
    op = {};
    while (position != end && HasClass(*position, CC_BLANK)) {
        ++position;
    }
    start = position;
    while (position != end) {
        const char c = *position;
        const TokenAction action = ActionOf(c);
        if (action == TokenAction::append || action == TokenAction::separator) [[likely]] {
            ++position;
            continue;
        }
        const bool isDone = action == TokenAction::ampersand ? TakeAmpersand()
                            : action == TokenAction::dot     ? TakeDot()
                                                             : TakeEnd(c);
        if (isDone) {
            return;
        }
    }
    tokenEnd = position;
    isAtEnd = true;
}

// Ends the token at the character `c`.
bool TokenReader::TakeEnd(char c) {
    tokenEnd = position++;
    op = symbolOf[static_cast<std::uint8_t>(c)];  // no operator for a blank or a quote
    if (c == '"') {
        TakeString();
    } else if (position != end && *position == '=' && (c == '<' || c == '>')) {
        ++position;
        op = c == '<' ? lessEqual : greaterEqual;
    }
    return true;
}

// Reads a string. It becomes part of the current token, even if other characters precede it, and
// ends that token.
void TokenReader::TakeString() {
    while (position != end && *position != '"') {
        ++position;
    }
    if (position == end) {
        isAtEnd = lacksClosingQuote = true;
    } else {
        ++position;
    }
    tokenEnd = position;
}

// "&B", "&D", "&H" and "&O" become part of the token, even if other characters precede them.
bool TokenReader::TakeAmpersand() {
    if (end - position > 1 && RadixOf(position[1]) != 0) {
        position += 2;
        return false;
    }
    return TakeEnd('&');
}

// A dot opens or closes a word operator, or is an ordinary character.
bool TokenReader::TakeDot() {
    if (position == start) {
        hasOpenDot = true;
    } else if (hasOpenDot) {
        hasOpenDot = false;
        tokenEnd = ++position;
        return true;
    } else if (end - position > 1 && HasClass(position[1], CC_LETTER)) {
        tokenEnd = position;  // the dot opens the next token
        return true;
    }
    ++position;
    return false;
}

}  // namespace korv
