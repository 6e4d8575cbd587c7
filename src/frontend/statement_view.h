/// A cleaned logical line split into label, mnemonic, operands and tokens, with the core's own
/// tables and token reader. It needs no live statement: late messages, skipped lines and the
/// incomplete lines of an editor are split the same way. Every part is a view of the line, so its
/// place is an offset and a length.
#pragma once

#include <cassert>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "expr/evaluator.h"
#include "expr/registers.h"
#include "expr/token.h"

namespace korv {

struct Keyword;

/// A part of a cleaned line.
struct LinePart {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;  ///< 0: a place between two characters, or the line as a whole

    bool operator==(const LinePart&) const = default;
};

enum class TokenKind : std::uint8_t {
    registerName,  ///< in the core's table, including C; in an expression, it is a name
    condition,
    number,
    largeNumber,  ///< above 65535
    emptyNumber,  ///< without digits
    string,
    openString,  ///< without its closing quote
    name,
    digitName,  ///< a name for the core, but it begins with a digit
    op,         ///< of one or two characters
    wordOp,     ///< AND, .AND.
    here,       ///< $
    other,      ///< not a token of the language: 'A', [HL], X.Y
};

struct Token {
    TokenKind kind;
    std::string_view text;
    std::int32_t value = 0;  ///< of a number or a string of one character
    std::int32_t code = 0;   ///< OP_* of an operator

    /// True if the core treats it as a value.
    [[nodiscard]] bool IsValue() const {
        return kind != TokenKind::op && kind != TokenKind::wordOp;
    }
};

/// Splits one expression or operand into tokens.
class TokenCutter {
  public:
    explicit TokenCutter(std::string_view text) : text(text), reader(text) {}
    /// The next token; none at the end.
    std::optional<Token> Next();

  private:
    std::string_view text;
    TokenReader reader;
    Operator waiting;  // the operator that ended the last token; it is the next token
};

/// True if `operand` is (IX+d) or (IY+d).
[[nodiscard]] inline bool IsIndexed(const OperandClass& operand) {
    return operand.reg == REG_IX_INDEXED || operand.reg == REG_IY_INDEXED;
}

/// True if `token`, at `index` in `operand`, is looked up as a name. A register or condition is a
/// name only as part of an expression.
[[nodiscard]] bool IsLookedUp(const Token& token, std::size_t index, const OperandClass& operand);

/// An operand, without the blanks around it. It may be empty.
struct OperandView {
    std::string_view text;
    OperandClass what;  ///< KIND_NONE if `text`, or the text in its parentheses, is empty
    std::vector<Token> tokens;

    [[nodiscard]] bool IsIndexed() const { return korv::IsIndexed(what); }
    /// True if `token` is looked up as a name. It must be one of `tokens`.
    [[nodiscard]] bool HoldsAsName(const Token& token) const {
        return IsLookedUp(token, static_cast<std::size_t>(&token - tokens.data()), what);
    }
    /// The only token, in parentheses or not; null unless there is exactly one.
    [[nodiscard]] const Token* OnlyToken() const;
};

struct StatementView {
    std::string_view line;
    std::string_view typed;  ///< the line before it was cleaned, with its comment and lower-case
                             ///< letters; `line` itself if the offsets differ
    std::string_view label;  ///< without its colon
    bool hasColon = false;
    std::string_view mnemonic;  ///< up to a blank, whether it is in the vocabulary or not
    std::string_view rest;      ///< all operands
    std::vector<OperandView> operands;
    const Keyword* keyword = nullptr;  ///< the row of `mnemonic`; null for none

    /// The place of `text`, which must be a part of `line`.
    [[nodiscard]] LinePart PartOf(std::string_view text) const {
        assert(text.data() >= line.data() && text.data() <= line.data() + line.size());
        return {static_cast<std::uint32_t>(text.data() - line.data()),
                static_cast<std::uint32_t>(text.size())};
    }
    /// The part `text` of `line`, as it was typed.
    [[nodiscard]] std::string_view Typed(std::string_view text) const {
        return typed.substr(PartOf(text).offset, text.size());
    }
    /// True if the mnemonic was typed in lower case.
    [[nodiscard]] bool IsSmall() const;
    /// The text from the first character of `first` to the last character of `last`.
    [[nodiscard]] std::string_view Span(std::string_view first, std::string_view last) const {
        return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
    }
};

/// The result contains views of both lines, which must outlive it. `typed` is the physical line,
/// which begins with `line` before its letters were raised; empty if that is not known.
[[nodiscard]] StatementView CutStatement(std::string_view line, std::string_view typed = {});

/// `typed` with letters outside strings converted to upper case, as by the core's reader.
[[nodiscard]] std::string Raised(std::string_view typed);

/// `text` up to its first blank or tab.
[[nodiscard]] std::string_view FirstWord(std::string_view text);

/// The offset of the comment in a physical line; the size of the line if there is no comment.
[[nodiscard]] std::size_t CommentStart(std::string_view typed);

/// The tokens of one expression or operand.
[[nodiscard]] std::vector<Token> CutTokens(std::string_view text);

/// The row of a mnemonic in upper case, or null. It does not call the core's recogniser, which the
/// compiler inlines into the statement loop only as long as nothing else calls it.
[[nodiscard]] const Keyword* FindKeyword(std::string_view word);

}  // namespace korv
