#include "frontend/note_rows.h"

#include <algorithm>
#include <array>

#include "frontend/instruction_forms.h"
#include "frontend/note_table.h"
#include "source/char_class.h"

namespace korv {
namespace {

using Texts = std::vector<std::string_view>;  // what %1, %2 stand for

std::string_view Inner(std::string_view operand) {
    const bool isInParentheses =
        operand.size() > 2 && operand.front() == '(' && operand.back() == ')';
    return isInParentheses ? operand.substr(1, operand.size() - 2) : operand;
}

// The pair that is called `name` on the 8080, which names it by its high register.
std::string_view PairOf8080(std::string_view name) {
    return name == "B"     ? "BC"
           : name == "D"   ? "DE"
           : name == "H"   ? "HL"
           : name == "PSW" ? "AF"
                           : name;
}

// The pair that a register is a half of.
std::string_view PairWith(std::string_view name) {
    constexpr std::array<std::string_view, 4> pairs = {"AF", "BC", "DE", "HL"};
    const auto* const pair = std::ranges::find_if(
        pairs, [name](std::string_view each) { return each.find(name) != std::string_view::npos; });
    return pair == pairs.end() ? name : *pair;
}

// The condition at the end of a mnemonic, as in RETNZ.
std::string_view ConditionAtEnd(std::string_view mnemonic) {
    for (const std::size_t size : {std::size_t{2}, std::size_t{1}}) {
        const std::string_view end =
            mnemonic.substr(mnemonic.size() - std::min(size, mnemonic.size()));
        if (ClassOf(end).condition >= 0) {
            return end;
        }
    }
    return {};
}

// What the template letter `kind` makes of the text that its number stands for.
std::string_view Shown(char kind, std::string_view text) {
    switch (kind) {
        case 'i':
            return Inner(text);
        case 'm':
            return text == "M" ? "(HL)" : text;
        case 'p':
            return PairOf8080(text);
        case 'q':
            return PairWith(text);
        case 'h':
            return text.substr(0, 1);
        case 'l':
            return text.substr(std::min<std::size_t>(1, text.size()));
        default:
            return text;
    }
}

// `pattern` with its letters filled; `fix` is what %f stands for.
std::string Filled(std::string_view pattern, const StatementView& statement, const Texts& texts,
                   std::string_view fix) {
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%' || i + 1 == pattern.size()) {
            text += pattern[i];
            continue;
        }
        const char letter = pattern[++i];
        const bool hasNumber = i + 1 < pattern.size() && HasClass(pattern[i + 1], CC_DIGIT) &&
                               std::string_view("impqhl").find(letter) != std::string_view::npos;
        if (letter == 'w') {
            text += statement.mnemonic;
        } else if (letter == 'r') {
            text += statement.rest;
        } else if (letter == 'k') {
            text += ConditionAtEnd(statement.mnemonic);
        } else if (letter == 'f') {
            text += fix;
        } else if (HasClass(letter, CC_DIGIT) || hasNumber) {
            const auto number = static_cast<std::size_t>((hasNumber ? pattern[++i] : letter) - '1');
            text += Shown(hasNumber ? letter : ' ', number < texts.size() ? texts[number] : "");
        } else {
            text += letter;
        }
    }
    return text;
}

Texts TextsOf(const StatementView& statement) {
    Texts texts;
    for (const OperandView& operand : statement.operands) {
        texts.push_back(operand.text);
    }
    return texts;
}

// A statement for a sentence: several lines of it in one.
std::string InOneLine(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n') {
            line += " and ";
        } else if (c != '\t') {
            line += c;
        }
    }
    return line;
}

// "*" is any characters, "#" a digit, "|" parts alternatives, and a backslash takes away what a
// character means.
bool MatchesOne(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) {
        return text.empty();
    }
    if (pattern.front() == '*') {
        return MatchesOne(text, pattern.substr(1)) ||
               (!text.empty() && MatchesOne(text.substr(1), pattern));
    }
    const bool isPlain = pattern.front() == '\\' && pattern.size() > 1;
    pattern.remove_prefix(isPlain ? 1 : 0);
    const bool isThere =
        !text.empty() && (pattern.front() == '#' && !isPlain ? HasClass(text.front(), CC_DIGIT)
                                                             : text.front() == pattern.front());
    return isThere && MatchesOne(text.substr(1), pattern.substr(1));
}

bool Matches(std::string_view text, std::string_view pattern) {
    for (std::size_t start = 0;;) {
        std::size_t end = start;
        while (end < pattern.size() && pattern[end] != '|') {
            end += pattern[end] == '\\' ? std::size_t{2} : 1;
        }
        if (MatchesOne(text, pattern.substr(start, end - start))) {
            return true;
        }
        if (end >= pattern.size()) {
            return false;
        }
        start = end + 1;
    }
}

bool IsOfKind(const Token& token, char letter) {
    switch (letter) {
        case 'n':
            return token.kind == TokenKind::number;
        case 'l':
            return token.kind == TokenKind::largeNumber;
        case 'e':
            return token.kind == TokenKind::emptyNumber;
        case 's':
            return token.kind == TokenKind::string;
        case 'u':
            return token.kind == TokenKind::openString;
        case 'i':
            return token.kind == TokenKind::name;
        case 'd':
            return token.kind == TokenKind::digitName;
        case 'r':
            return token.kind == TokenKind::registerName;
        case 'c':
            return token.kind == TokenKind::condition;
        case 'x':
            return token.kind == TokenKind::other;
        default:
            return token.IsValue();
    }
}

bool FitsTerm(const Token& token, std::string_view term) {
    if (term.front() == '%') {
        return IsOfKind(token, term[1]) &&
               (term.size() == 2 || Matches(token.text, term.substr(2)));
    }
    const bool isString = token.kind == TokenKind::string || token.kind == TokenKind::openString;
    return term == "*" ? token.code == '*' : !isString && Matches(token.text, term);
}

// The number of tokens from `start` on that fit `terms`; 0: they do not.
std::size_t FitLength(const std::vector<Token>& tokens, std::size_t start, std::string_view terms) {
    std::size_t at = start;
    while (!terms.empty()) {
        const std::string_view term = terms.substr(0, terms.find(' '));
        terms.remove_prefix(std::min(term.size() + 1, terms.size()));
        if (term == "^" || term == ";") {
            if (at != (term == "^" ? 0 : tokens.size())) {
                return 0;
            }
        } else if (at == tokens.size() || !FitsTerm(tokens[at], term)) {
            return 0;
        } else {
            ++at;
        }
    }
    return at - start;
}

RowAdvice AdviceOf(std::string_view note, std::string_view fix, const StatementView& statement,
                   const Texts& texts) {
    RowAdvice advice;
    if (!fix.empty()) {
        advice.edits.push_back(NewStatement(statement, Filled(fix, statement, texts, "")));
    }
    const std::string shown = fix.empty() ? "" : InOneLine(advice.edits[0].text);
    advice.note = Filled(note.empty() && !fix.empty() ? "write %f" : note, statement, texts, shown);
    return advice;
}

// Which of the numbers, by blanks, is `number`.
bool HoldsNumber(std::string_view numbers, Status number) {
    return HoldsWord(numbers, std::to_string(number));
}

}  // namespace

TextEdit NewStatement(const StatementView& statement, std::string text) {
    const std::string_view last = statement.rest.empty() ? statement.mnemonic : statement.rest;
    return {statement.PartOf(statement.Span(statement.mnemonic, last)), std::move(text)};
}

std::string WriteNote(const StatementView& statement, const std::vector<TextEdit>& edits) {
    const std::string line = Applied(statement.line, edits);
    const StatementView changed = CutStatement(line);
    return "write " +
           InOneLine(changed.Span(changed.mnemonic,
                                  changed.rest.empty() ? changed.mnemonic : changed.rest));
}

std::optional<RowAdvice> WordAdvice(const StatementView& statement, std::string_view rawLine) {
    std::string_view word = statement.mnemonic;
    const bool isMarked =
        word.size() > 1 && std::string_view(".#!").find(word[0]) != std::string_view::npos;
    // With the marks away, and the operands as they are written here.
    std::vector<TextEdit> edits;
    for (const OperandView& operand : statement.operands) {
        const Foreign found = FindForeign(statement, operand, rawLine);
        if (found.part.data() != nullptr && !found.fix.empty()) {
            edits.push_back({statement.PartOf(found.part), found.fix});
        }
    }
    const std::string line = Applied(statement.line, edits);
    StatementView changed = CutStatement(line);
    const auto count = static_cast<int>(changed.operands.size());
    const auto advice = [&](std::string_view note, std::string_view fix) {
        RowAdvice found = AdviceOf(note, fix, changed, TextsOf(changed));
        if (!found.edits.empty()) {
            found.edits = {NewStatement(statement, found.edits[0].text)};
        }
        return found;
    };
    for (const bool strips : {false, true}) {
        if (strips && !isMarked) {
            break;
        }
        word.remove_prefix(strips ? 1 : 0);
        if (strips && FindKeyword(word) != nullptr) {
            changed.mnemonic = word;
            return advice("", changed.rest.empty() ? "%w" : "%w %r");
        }
        for (const WordRow& row : wordTable) {
            if (HoldsWord(row.words, word) && (row.operands < 0 || row.operands == count)) {
                return advice(row.note, row.fix);
            }
        }
    }
    return std::nullopt;
}

std::optional<RowAdvice> TokenAdvice(const StatementView& statement, const OperandView& operand) {
    for (const TokenRow& row : tokenTable) {
        if (!HoldsWord(row.words, statement.mnemonic)) {
            continue;
        }
        for (std::size_t i = 0; i < operand.tokens.size(); ++i) {
            const std::size_t length = FitLength(operand.tokens, i, row.tokens);
            if (length == 0) {
                continue;
            }
            Texts texts;
            for (std::size_t k = i; k < i + length; ++k) {
                texts.push_back(operand.tokens[k].text);
            }
            RowAdvice advice;
            advice.part = statement.Span(texts.front(), texts.back());
            std::string shown;
            if (!row.fix.empty()) {
                advice.edits.push_back(
                    {statement.PartOf(advice.part), Filled(row.fix, statement, texts, "")});
                shown = WriteNote(statement, advice.edits).substr(6);
            }
            advice.note = Filled(row.note.empty() && !row.fix.empty() ? "write %f" : row.note,
                                 statement, texts, shown);
            return advice;
        }
    }
    return std::nullopt;
}

std::optional<RowAdvice> OperandAdvice(const StatementView& statement, Status number) {
    for (const OperandRow& row : operandTable) {
        if (HoldsNumber(row.numbers, number) && HoldsWord(row.words, statement.mnemonic) &&
            HasShape(statement, row.shapes)) {
            return AdviceOf(row.note, row.fix, statement, TextsOf(statement));
        }
    }
    return std::nullopt;
}

}  // namespace korv
