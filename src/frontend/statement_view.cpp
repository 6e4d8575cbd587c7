// Splits a line as the core does. A semicolon is not treated specially, since the reader has
// already removed the comment.

#include "frontend/statement_view.h"

#include <algorithm>
#include <array>
#include <utility>

#include "codegen/keywords.h"
#include "expr/number.h"
#include "source/char_class.h"
#include "symbols/name_index.h"

namespace korv {
namespace {

constexpr std::size_t letterCount = 26;

constexpr std::size_t LetterOf(std::string_view word) {
    return static_cast<std::uint8_t>(word[0] - 'A');
}

// For each letter, the index of the first keyword that begins with it or with a later letter.
constexpr auto rowOfLetter = [] {
    std::array<std::size_t, letterCount + 1> rows{};
    for (const Keyword& keyword : keywords) {
        for (std::size_t letter = LetterOf(keyword.word) + 1; letter < rows.size(); ++letter) {
            ++rows[letter];
        }
    }
    return rows;
}();

// The characters of each keyword as one number. Two words of the same length have the same number
// only if they are equal.
constexpr auto tailOfRow = [] {
    std::array<std::uint64_t, keywords.size()> tails{};
    for (std::size_t row = 0; row < keywords.size(); ++row) {
        tails[row] = TailOf(keywords[row].word.data(), keywords[row].word.size());
    }
    return tails;
}();

std::string_view Trimmed(std::string_view text) {
    text = WithoutLeadingBlanks(text);
    while (!text.empty() && HasClass(text.back(), CC_BLANK)) {
        text.remove_suffix(1);
    }
    return text;
}

// The characters at the start of `text` for which `belongs` is true.
template <typename Belongs>
std::string_view Prefix(std::string_view text, Belongs belongs) {
    return {text.begin(), std::ranges::find_if_not(text, belongs)};
}

bool IsName(std::string_view text) {
    return HasClass(text.front(), CC_NAME_START) &&
           std::ranges::all_of(text, [](char c) { return HasClass(c, CC_NAME); });
}

// The token for `text`, which contains no double quote.
Token WordToken(std::string_view text) {
    Token token{TokenKind::other, text};
    if (text == "$") {
        token.kind = TokenKind::here;
        return token;
    }
    if (const OperandClass& what = ClassOf(text); what.kind != KIND_VALUE) {
        const bool isRegister = what.reg != REG_NONE;
        token.kind = isRegister ? TokenKind::registerName : TokenKind::condition;
        return token;
    }
    if (const Operator word = FindWord(text); word.code != 0) {
        token.kind = TokenKind::wordOp;
        token.code = word.code;
        return token;
    }
    switch (ReadNumber(text, &token.value)) {
        case 0:
            token.kind = TokenKind::number;
            break;
        case MSG_GENERAL_FAILURE:
            token.kind = TokenKind::emptyNumber;
            break;
        case MSG_BAD_NUMBER:
            token.kind = TokenKind::largeNumber;
            break;
        default:
            if (IsName(text)) {
                const bool hasDigit = HasClass(text.front(), CC_DIGIT);
                token.kind = hasDigit ? TokenKind::digitName : TokenKind::name;
            }
    }
    return token;
}

Token StringToken(std::string_view text, bool isOpen) {
    Token token{isOpen ? TokenKind::openString : TokenKind::string, text};
    if (text.front() != '"') {
        token.kind = TokenKind::other;  // joined to the text before it
    } else if (text.size() == 3) {
        token.value = static_cast<signed char>(text[1]);
    }
    return token;
}

OperandView ViewOf(std::string_view text) {
    OperandView operand{text, {}, {}};
    if (text.empty()) {
        return operand;
    }
    operand.tokens = CutTokens(text);
    const bool isIndirect = text.size() > 1 && text.front() == '(' && text.back() == ')';
    const std::string_view inner = isIndirect ? text.substr(1, text.size() - 2) : text;
    const bool isWord =
        std::ranges::all_of(inner, [](char c) { return ActionOf(c) == TokenAction::append; });
    if (!inner.empty() && isWord) {
        operand.what = isIndirect ? ClassInParentheses(inner) : ClassOf(inner);
        return operand;
    }
    if (WithoutLeadingBlanks(inner).empty()) {  // the core rejects it
        return operand;
    }
    operand.what = isIndirect ? operand_class::direct : operand_class::value;
    if (isIndirect && (inner.starts_with("IX") || inner.starts_with("IY"))) {
        const std::string_view rest = WithoutLeadingBlanks(inner.substr(2));
        if (rest.starts_with('+') || rest.starts_with('-')) {
            operand.what.reg = inner[1] == 'X' ? REG_IX_INDEXED : REG_IY_INDEXED;
        }
    }
    return operand;
}

// The end of the operand that begins at `start`: a comma outside strings, or the end of `text`.
std::size_t OperandEnd(std::string_view text, std::size_t start) {
    bool isString = false;
    for (; start < text.size() && (isString || text[start] != ','); ++start) {
        isString = isString != (text[start] == '"');
    }
    return start;
}

}  // namespace

bool IsLookedUp(const Token& token, std::size_t index, const OperandClass& operand) {
    switch (token.kind) {
        case TokenKind::name:
        case TokenKind::digitName:
            return true;
        case TokenKind::registerName:
        case TokenKind::condition:  // except the IX of (IX+d)
            return operand.kind == KIND_VALUE && !(IsIndexed(operand) && index == 1);
        default:
            return false;
    }
}

const Token* OperandView::OnlyToken() const {
    if (tokens.size() == 1) {
        return tokens.data();
    }
    const bool isInParentheses =
        tokens.size() == 3 && tokens.front().text == "(" && tokens.back().text == ")";
    return isInParentheses ? &tokens[1] : nullptr;
}

std::optional<Token> TokenCutter::Next() {
    for (;;) {
        if (waiting.code != 0) {
            const bool isLong = waiting.code == OP_LESS_EQUAL || waiting.code == OP_GREATER_EQUAL;
            const std::string_view word = reader.Token();
            const auto at = static_cast<std::size_t>(word.data() + word.size() - text.data());
            return Token{TokenKind::op, text.substr(at, isLong ? 2 : 1), 0,
                         std::exchange(waiting, {}).code};
        }
        if (reader.isAtEnd) {
            return std::nullopt;
        }
        reader.Next();
        waiting = reader.op;
        const std::string_view word = reader.Token();
        if (word.find('"') != std::string_view::npos) {
            return StringToken(word, reader.lacksClosingQuote);
        }
        if (!word.empty()) {
            return WordToken(word);
        }
    }
}

std::vector<Token> CutTokens(std::string_view text) {
    std::vector<Token> tokens;
    TokenCutter cutter(text);
    while (const std::optional<Token> token = cutter.Next()) {
        tokens.push_back(*token);
    }
    return tokens;
}

bool StatementView::IsSmall() const {
    const std::string_view word = Typed(mnemonic);
    const auto isSmall = [](char c) { return HasClass(c, CC_LOWER); };
    return std::ranges::any_of(word, isSmall) && std::ranges::none_of(word, [](char c) {
               return HasClass(c, CC_LETTER) && !HasClass(c, CC_LOWER);
           });
}

std::string Raised(std::string_view typed) {
    std::string line;
    bool isString = false;
    for (const char c : typed) {
        isString = isString != (c == '"');
        line += isString ? c : Raised(c);
    }
    return line;
}

std::string_view FirstWord(std::string_view text) {
    return text.substr(0, text.find_first_of(" \t"));
}

std::size_t CommentStart(std::string_view typed) {
    bool isString = false;
    std::size_t at = 0;
    for (; at < typed.size() && (isString || typed[at] != ';'); ++at) {
        isString = isString != (typed[at] == '"');
    }
    return at;
}

StatementView CutStatement(std::string_view line, std::string_view typed) {
    StatementView view;
    view.line = line;
    view.typed = typed.empty() ? line : typed;
    view.label = line.substr(0, 0);
    if (!line.empty() && HasClass(line.front(), CC_NAME_START)) {
        view.label = Prefix(line, [](char c) { return HasClass(c, CC_NAME); });
        line.remove_prefix(view.label.size());
        view.hasColon = line.starts_with(':');
        line.remove_prefix(line.empty() ? 0 : 1);  // the core skips the character after a label
    } else if (line.starts_with('*')) {
        line.remove_prefix(1);
    }
    line = WithoutLeadingBlanks(line);
    view.mnemonic = Prefix(line, [](char c) { return !HasClass(c, CC_BLANK); });
    view.keyword = FindKeyword(view.mnemonic);
    view.rest = Trimmed(line.substr(view.mnemonic.size()));
    if (view.rest.empty()) {
        return view;
    }
    for (std::size_t start = 0; start <= view.rest.size();) {
        const std::size_t end = OperandEnd(view.rest, start);
        view.operands.push_back(ViewOf(Trimmed(view.rest.substr(start, end - start))));
        start = end + 1;
    }
    return view;
}

const Keyword* FindKeyword(std::string_view word) {
    constexpr std::size_t longestTail = 8;
    static_assert(std::ranges::all_of(
        keywords, [](const Keyword& keyword) { return keyword.word.size() <= longestTail; }));
    const std::size_t letter = word.empty() ? letterCount : LetterOf(word);
    if (letter >= letterCount) {
        return nullptr;
    }
    const std::uint64_t tail = TailOf(word.data(), word.size());
    for (std::size_t row = rowOfLetter[letter]; row < rowOfLetter[letter + 1]; ++row) {
        if (tailOfRow[row] == tail && keywords[row].word.size() == word.size()) {
            return &keywords[row];
        }
    }
    return nullptr;
}

}  // namespace korv
