// From the text of an expression to its value: one pass from left to right cuts tokens, turns each
// value token into a number at once, and hands the nodes to the evaluator at the end. A name
// without a value ends the scan with that name; the whole text is scanned again when the name has
// got its value.
//
// Tokens are views of the text: they are contiguous in it, but for a string that the text ends in,
// whose closing quote is supplied. Letters arrive in upper case, so the words below exist in upper
// case only.

#include <array>

#include "driver/assembler.h"
#include "expr/evaluator.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::int32_t maxNodes = 20;  // of one expression; the 20th is one too many
constexpr std::int32_t maxNumber = 65535;

struct Operator {
    std::int32_t code = 0;  // 0: none
    std::int32_t priority = 0;
};

struct OperatorRow {
    std::string_view spelling;
    Operator op;
};

// Operators of one character. "&" is no operator where a number prefix begins, and "<" and ">" may
// go on with "=".
constexpr std::array symbols = {
    OperatorRow{"(", {OP_OPEN, 20}},   OperatorRow{"*", {OP_MULTIPLY, 12}},
    OperatorRow{"/", {OP_DIVIDE, 12}}, OperatorRow{"+", {OP_PLUS, 11}},
    OperatorRow{"-", {OP_MINUS, 11}},  OperatorRow{"&", {OP_AND, 7}},
    OperatorRow{"^", {OP_XOR, 6}},     OperatorRow{"|", {OP_OR, 5}},
    OperatorRow{"!", {OP_NOT, 4}},     OperatorRow{"~", {OP_NOT, 4}},
    OperatorRow{")", {OP_CLOSE, 3}},   OperatorRow{"<", {OP_LESS, 2}},
    OperatorRow{">", {OP_GREATER, 2}}, OperatorRow{"=", {OP_EQUAL, 1}},
};
constexpr Operator lessEqual{OP_LESS_EQUAL, 1};
constexpr Operator greaterEqual{OP_GREATER_EQUAL, 1};

// The words; each also in dots, as in ".AND.".
constexpr std::array words = {
    OperatorRow{"AND", {OP_AND, 7}},         OperatorRow{"OR", {OP_OR, 5}},
    OperatorRow{"XOR", {OP_XOR, 6}},         OperatorRow{"SHL", {OP_SHIFT_LEFT, 8}},
    OperatorRow{"SHR", {OP_SHIFT_RIGHT, 8}}, OperatorRow{"MOD", {OP_MODULO, 12}},
    OperatorRow{"EXP", {OP_EXP, 13}},
};

// First characters of the words, and of the words in dots.
constexpr auto beginsWord = [] {
    std::array<bool, 256> table{};
    for (const OperatorRow& row : words) {
        table[static_cast<std::uint8_t>(row.spelling[0])] = true;
    }
    table['.'] = true;
    return table;
}();

Operator FindWord(std::string_view token) {
    if (token.size() > 5 || !beginsWord[static_cast<std::uint8_t>(token.front())]) {
        return {};
    }
    if (token.size() > 2 && token.front() == '.' && token.back() == '.') {
        token = token.substr(1, token.size() - 2);
    }
    if (token.size() == 2 || token.size() == 3) {
        for (const OperatorRow& row : words) {
            if (row.spelling == token) {
                return row.op;
            }
        }
    }
    return {};
}

// What a character does to the token that is being read.
enum class Action : std::uint8_t { append, blank, symbol, compare, ampersand, quote, dot };

constexpr auto actions = [] {
    std::array<Action, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c) {
        table[c] = (charClass[c] & CC_BLANK) != 0 ? Action::blank : Action::append;
    }
    for (const OperatorRow& row : symbols) {
        table[static_cast<std::uint8_t>(row.spelling[0])] = Action::symbol;
    }
    table['<'] = table['>'] = Action::compare;
    table['&'] = Action::ampersand;
    table['"'] = Action::quote;
    table['.'] = Action::dot;
    return table;
}();

constexpr auto symbolOf = [] {
    std::array<Operator, 256> table{};
    for (const OperatorRow& row : symbols) {
        table[static_cast<std::uint8_t>(row.spelling[0])] = row.op;
    }
    return table;
}();

constexpr bool IsRadixLetter(char c) {
    return c == 'B' || c == 'D' || c == 'H' || c == 'O';
}

// Cuts the tokens of one text.
class TokenReader {
  public:
    explicit TokenReader(std::string_view text)
        : position(text.data()), end(text.data() + text.size()) {}

    // Whether the whole text is one token of ordinary characters, as most expressions are.
    [[nodiscard]] static bool IsOneToken(std::string_view text) {
        for (const char c : text) {
            if (actions[static_cast<std::uint8_t>(c)] != Action::append) {
                return false;
            }
        }
        return !text.empty() && text.size() <= maxWord;
    }

    // Reads the next token, which may be empty, and the operator that ended it.
    void Next() {
        op = {};
        while (position != end && HasClass(*position, CC_BLANK)) {
            ++position;
        }
        start = position;
        while (position != end) {
            const auto c = static_cast<std::uint8_t>(*position);
            if (actions[c] == Action::append) [[likely]] {
                ++position;
                continue;
            }
            const bool isDone = actions[c] == Action::ampersand ? TakeAmpersand()
                                : actions[c] == Action::dot     ? TakeDot()
                                                                : TakeEnd(c);
            if (isDone) {
                return;
            }
        }
        tokenEnd = position;
        isAtEnd = true;
    }

    [[nodiscard]] std::string_view Token() const {
        return {start, static_cast<std::size_t>(tokenEnd - start)};
    }

    Operator op;                     // that ended the token; none at a blank, a quote and the end
    bool isAtEnd = false;            // the text is used up
    bool lacksClosingQuote = false;  // of a token that the text ended in

  private:
    // The character `c` ends the token.
    bool TakeEnd(std::uint8_t c) {
        tokenEnd = position++;
        switch (actions[c]) {
            case Action::compare:
                op = symbolOf[c];
                if (position != end && *position == '=') {
                    ++position;
                    op = c == '<' ? lessEqual : greaterEqual;
                }
                break;
            case Action::quote:
                TakeString();
                break;
            default:
                op = symbolOf[c];  // none for a blank
                break;
        }
        return true;
    }

    // A string belongs to the token, whatever that holds already, and ends it.
    void TakeString() {
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

    // "&B", "&D", "&H" and "&O" belong to the token, even behind other characters.
    bool TakeAmpersand() {
        if (end - position > 1 && IsRadixLetter(position[1])) {
            position += 2;
            return false;
        }
        return TakeEnd('&');
    }

    // A dot opens and closes a word operator, or is a character like any other.
    bool TakeDot() {
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

    const char* position;
    const char* end;
    const char* start = nullptr;
    const char* tokenEnd = nullptr;
    bool hasOpenDot = false;  // lives across tokens: only a dot that closes one clears it
};

constexpr std::int32_t notANumber = -1;

// Reads `digits` to `base`. Result: 0, 24 for no digits, 55 above 65535, or `notANumber` at a
// character that is no digit. A digit is of class CC_HEX to base 16, and "?", "@" and "_" count by
// their code as letters do.
std::int32_t ReadDigits(std::string_view digits, std::int32_t base, std::int32_t* value) {
    if (digits.empty()) {
        return MSG_GENERAL_FAILURE;
    }
    std::int32_t number = 0;
    for (const char c : digits) {
        std::int32_t digit = c - '0';
        if (base == 16) {
            if (!HasClass(c, CC_HEX)) {
                return notANumber;
            }
            if (!HasClass(c, CC_DIGIT)) {
                digit = c - 'A' + 10;
            }
        } else if (base == 2 && c == '.') {
            continue;  // groups the digits
        } else if (digit < 0 || digit >= base) {
            return notANumber;
        }
        number = number * base + digit;
        if (number > maxNumber) {
            return MSG_BAD_NUMBER;
        }
    }
    *value = number;
    return 0;
}

// Reads a token whose radix its last character tells, or which is decimal.
std::int32_t ReadSuffixed(std::string_view token, std::int32_t* value) {
    const std::size_t last = token.size() - 1;
    std::size_t i = 0;
    while (i <= last && (HasClass(token[i], CC_HEX) || token[i] == '.')) {
        if (i == last && token[i] == 'B') {
            return ReadDigits(token.substr(0, last), 2, value);
        }
        ++i;
    }
    if (i > last) {
        return ReadDigits(token, 10, value);
    }
    if (i == last && token[i] == 'H') {
        return ReadDigits(token.substr(0, last), 16, value);
    }
    if (i == last && token[i] == 'O') {
        return ReadDigits(token.substr(0, last), 8, value);
    }
    return notANumber;
}

std::int32_t ReadRadixPrefixed(std::string_view token, std::int32_t* value) {
    const std::string_view digits = token.substr(2);
    switch (token[1]) {
        case 'B':
            return ReadDigits(digits, 2, value);
        case 'D':
            return ReadDigits(digits, 10, value);
        case 'H':
            return ReadDigits(digits, 16, value);
        default:
            return ReadDigits(digits, 8, value);
    }
}

// The nodes of the expression so far.
class Nodes {
  public:
    // False: there is no room for a further one.
    [[nodiscard]] bool Store(std::int32_t type, std::int32_t value, std::int32_t priority) {
        nodes[static_cast<std::size_t>(count)] = {value, type, priority, -1, -1};
        return ++count < maxNodes;
    }
    [[nodiscard]] bool Store(Operator op) { return Store(NODE_OPERATOR, op.code, op.priority); }

    std::int32_t Reduce(std::int32_t* value) {
        const std::int32_t result = ReduceNodes(nodes.data(), maxNodes, count);
        if (result == 0) {
            *value = nodes[0].value;
        }
        return result;
    }

  private:
    std::array<ExprNode, maxNodes> nodes;
    std::int32_t count = 0;
};

}  // namespace

std::int32_t CAssembler::ScanExpression(std::string_view text, std::int32_t* value,
                                        std::string_view* unresolved) {
    *value = 0;
    if (TokenReader::IsOneToken(text) && FindWord(text).code == 0) {
        const std::int32_t status = ParseValue(text, value);
        if (status == MSG_UNRESOLVED && unresolved != nullptr) {
            *unresolved = text;
        }
        return status;
    }
    return ScanTokens(text, value, unresolved);
}

// The same for an expression of any form.
std::int32_t CAssembler::ScanTokens(std::string_view text, std::int32_t* value,
                                    std::string_view* unresolved) {
    Nodes nodes;
    TokenReader reader(text);
    for (;;) {
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
        if (!token.empty()) {
            if (const Operator word = FindWord(token); word.code != 0) {
                if (!nodes.Store(word)) {
                    return MSG_TOO_COMPLEX;
                }
            } else {
                std::int32_t number = 0;
                const std::int32_t status = ParseValue(token, &number);
                if (status != 0) {
                    if (status == MSG_UNRESOLVED && unresolved != nullptr) {
                        *unresolved = token;
                    }
                    return status;
                }
                if (!nodes.Store(NODE_VALUE, number, 0)) {
                    return MSG_TOO_COMPLEX;
                }
            }
        }
        if (reader.op.code != 0 && !nodes.Store(reader.op)) {
            return MSG_TOO_COMPLEX;
        }
        if (reader.isAtEnd) {
            return nodes.Reduce(value);
        }
    }
}

std::int32_t CAssembler::ParseValue(std::string_view token, std::int32_t* value) {
    std::int32_t status = notANumber;
    switch (token.front()) {
        case '"':
            if (token.size() != 3 || token[2] != '"') {
                return MSG_BAD_EXPRESSION;
            }
            *value = static_cast<signed char>(token[1]);
            return 0;
        case '$':
            if (token.size() == 1) {
                *value = static_cast<std::int32_t>(statementAddress);
                return 0;
            }
            [[fallthrough]];
        case '#':
            status = ReadDigits(token.substr(1), 16, value);
            break;
        case '%':
            status = ReadDigits(token.substr(1), 2, value);
            break;
        case '&':
            status = ReadRadixPrefixed(token, value);
            break;
        default:
            status = ReadSuffixed(token, value);
            break;
    }
    if (status != notANumber) {
        return status;
    }
    if (!HasClass(token.front(), CC_NAME_START)) {
        return MSG_BAD_EXPRESSION;
    }
    const CIdentifier* const identifier = identifiers.FindID(token, /*markUsed=*/true);
    if (identifier == nullptr) {
        return MSG_UNRESOLVED;
    }
    *value = identifier->value;
    return 0;
}

}  // namespace korv
