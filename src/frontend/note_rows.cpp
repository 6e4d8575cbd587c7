#include "frontend/note_rows.h"

#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_table.h"
#include "frontend/translation.h"
#include "frontend/word_table.h"
#include "source/char_class.h"

namespace korv {
namespace {

char Lowered(char c) {
    return HasClass(c, CC_LETTER) ? static_cast<char>(c | 0x20) : c;
}

using Texts = std::vector<std::string_view>;  // what %1, %2 stand for

std::string_view Inner(std::string_view operand) {
    return operand.size() > 2 ? WithoutParentheses(operand) : operand;
}

// The pair that is called `name` on the 8080, where a pair has the name of its high register.
std::string_view PairOf8080(std::string_view name) {
    return name == "B" ? "BC" : name == "D" ? "DE" : name == "H" ? "HL" : name;
}

// The pair that contains a register.
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

// The operand or token `text`, as changed by the template letter `kind`.
std::string Shown(char kind, std::string_view text) {
    const std::string raised = Raised(text);
    const bool isSmall = raised != text;
    const auto cased = [isSmall](std::string_view word) {
        std::string result(word);
        std::ranges::transform(result, result.begin(),
                               [isSmall](char c) { return isSmall ? Lowered(c) : c; });
        return result;
    };
    switch (kind) {
        case 'i':
            return std::string(Inner(text));
        case 'n':
            return std::string(text.starts_with('"') || text.starts_with('<')
                                   ? text.substr(1, text.size() - 2)
                                   : text);
        case 'x':
            return std::string(text.substr(std::min<std::size_t>(1, text.size())));
        case 'm':
            return raised == "M" ? cased("(HL)")
                                 : std::string(text.substr(text.starts_with('#') ? 1 : 0));
        case 'b': {  // a string whose last character is to have bit 7 set
            const bool isText = text.size() > 2 && text.back() == '"';
            if (!isText) {
                return std::string(text);
            }
            const std::string start(text.substr(0, text.size() - 2));
            return (text.size() > 3 ? start + "\"," : "") + '"' + text[text.size() - 2] + "\"+128";
        }
        case 'p':
            return cased(PairOf8080(raised));
        case 'q':
            return cased(PairWith(raised));
        case 'h':
            return std::string(text.substr(0, 1));
        case 'l':
            return std::string(text.substr(std::min<std::size_t>(1, text.size())));
        default:
            return std::string(text);
    }
}

// `pattern` with its placeholders filled in; `fix` replaces %f. Without `fix`, `pattern` is itself
// a fix, and is written in lower case if the mnemonic is.
std::string Filled(std::string_view pattern, const StatementView& statement, const Texts& texts,
                   std::optional<std::string_view> fix) {
    std::string text;
    const bool isSmall = !fix && statement.IsSmall();
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            text += isSmall ? Lowered(pattern[i]) : pattern[i];
            continue;
        }
        const char letter = pattern[++i];
        const bool hasNumber = std::string_view("bimpqhlnx").find(letter) != std::string_view::npos;
        if (letter == 'w') {
            text += statement.Typed(statement.mnemonic);
        } else if (letter == 'r') {
            text += statement.Typed(statement.rest);
        } else if (letter == 'k') {
            text += statement.Typed(ConditionAtEnd(statement.mnemonic));
        } else if (letter == 'f') {
            text += fix.value_or(std::string_view());
        } else {
            const auto number = static_cast<std::size_t>((hasNumber ? pattern[++i] : letter) - '1');
            text += Shown(hasNumber ? letter : ' ',
                          number < texts.size() ? texts[number] : std::string_view());
        }
    }
    return text;
}

Texts TextsOf(const StatementView& statement) {
    Texts texts;
    for (const OperandView& operand : statement.operands) {
        texts.push_back(statement.Typed(operand.text));
    }
    return texts;
}

// Joins the source lines in `text` with "and" to form one line.
std::string InOneLine(std::string_view text) {
    std::string line;
    bool isString = false;
    for (const char c : text) {
        isString = isString != (c == '"');
        if (c == '\n') {
            line += " and ";
        } else if (c != '\t' && (c != ' ' || isString || !line.ends_with(' '))) {
            line += c;
        }
    }
    return line;
}

// Matches one alternative of a pattern: "*" at its end matches any characters, and a backslash
// makes the next character literal.
bool MatchesOne(std::string_view text, std::string_view pattern) {
    if (pattern == "*") {
        return true;
    }
    if (pattern.empty()) {
        return text.empty();
    }
    pattern.remove_prefix(pattern.front() == '\\' ? 1 : 0);
    return text.starts_with(pattern.front()) && MatchesOne(text.substr(1), pattern.substr(1));
}

// True if `text` matches one of the alternatives in `pattern`, separated by "|".
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

// The letters for token kinds in a term, in the order of `TokenKind`. A blank means that the kind
// has no letter.
constexpr std::string_view kindLetters = "rcnlesuid   x";
static_assert(kindLetters[static_cast<std::size_t>(TokenKind::other)] == 'x');

bool IsOfKind(const Token& token, char letter) {
    return letter == 'v' ? token.IsValue()
                         : kindLetters[static_cast<std::size_t>(token.kind)] == letter;
}

bool FitsTerm(const Token& token, std::string_view term) {
    if (term.front() == '%') {
        return IsOfKind(token, term[1]) &&
               (term.size() == 2 || Matches(token.text, term.substr(2)));
    }
    return Matches(token.text, term);
}

// The number of tokens from `start` on that match `terms`; 0 for no match. Sets `from` to the token
// after the "@" in `terms`, or to `start` if there is no "@".
std::size_t FitLength(const std::vector<Token>& tokens, std::size_t start, std::string_view terms,
                      std::size_t* from) {
    std::size_t at = *from = start;
    while (!terms.empty()) {
        const std::string_view term = terms.substr(0, terms.find(' '));
        terms.remove_prefix(std::min(term.size() + 1, terms.size()));
        if (term == "^" || term == ";") {
            if (at != (term == "^" ? 0 : tokens.size())) {
                return 0;
            }
        } else if (term == "@") {
            *from = at;
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
        advice.edits.push_back(
            NewStatement(statement, Filled(fix, statement, texts, std::nullopt)));
    }
    const std::string shown = fix.empty() ? "" : InOneLine(advice.edits[0].text);
    advice.note = Filled(note.empty() ? "write %f" : note, statement, texts, shown);
    return advice;
}

// True if `number` is one of `numbers`, which are separated by blanks.
bool HoldsNumber(std::string_view numbers, Status number) {
    return HoldsWord(numbers, std::to_string(number));
}

// True if a string in `text` contains an escape sequence, which Korv would read as two characters.
bool HasEscape(std::string_view text) {
    const std::string line = " " + std::string(text);
    return std::ranges::any_of(CutStatement(line).operands, [](const OperandView& operand) {
        return operand.text.starts_with('"') && operand.text.size() > 3 &&
               operand.text.find('\\') != std::string_view::npos;
    });
}

// True if the proposed statement `text` matches a form.
bool IsForm(std::string_view text) {
    const std::string line = " " + Raised(text);
    return HasForm(CutStatement(line));
}

// The advice from the note tables on the proposed statement `text`, which matches no form.
std::optional<RowAdvice> AdviceOnRest(std::string_view text) {
    const std::string typed = " " + std::string(text);
    const std::string line = Raised(typed);
    const StatementView statement = CutStatement(line, typed);
    return statement.keyword == nullptr ? std::nullopt
                                        : OperandAdvice(statement, FormMessage(statement));
}

}  // namespace

Status FormMessage(const StatementView& statement, Status number) {
    if (statement.keyword == nullptr) {  // unlike this one, the core's mnemonic ends at a byte 0
        return number;
    }
    const auto count = static_cast<std::int32_t>(statement.operands.size());
    return count > statement.keyword->operands.most     ? MSG_TOO_MANY_ARGUMENTS
           : count < statement.keyword->operands.fewest ? MSG_ARGUMENT_EXPECTED
           : number == MSG_ILLEGAL_CONDITION            ? number
                                                        : MSG_ILLEGAL_ARGUMENT;
}

TextEdit NewStatement(const StatementView& statement, std::string text) {
    const std::string_view last = statement.rest.empty() ? statement.mnemonic : statement.rest;
    return {statement.PartOf(statement.Span(statement.mnemonic, last)), std::move(text)};
}

std::string WriteNote(const StatementView& statement, const std::vector<TextEdit>& edits) {
    const std::string typed = Applied(statement.typed.substr(0, statement.line.size()), edits);
    const StatementView changed = CutStatement(typed);
    return "write " +
           InOneLine(changed.Span(changed.mnemonic,
                                  changed.rest.empty() ? changed.mnemonic : changed.rest));
}

std::optional<RowAdvice> WordAdvice(const StatementView& statement) {
    std::string_view word = statement.mnemonic;
    const bool isMarked = std::string_view(".#!%").find(word[0]) != std::string_view::npos;
    const Translation translation = Translate(statement);
    StatementView changed = translation.View();
    const auto count = static_cast<int>(changed.operands.size());
    const auto advice = [&](std::string_view note, std::string_view fix) {
        RowAdvice found = AdviceOf(note, fix, changed, TextsOf(changed));
        if (!found.edits.empty() && !IsForm(found.edits[0].text)) {
            const std::string start = "use " + std::string(FirstWord(found.edits[0].text));
            const auto rest = AdviceOnRest(found.edits[0].text);
            if (!rest || rest->edits.empty()) {
                return RowAdvice{start + (rest ? ": " + rest->note : checkOperands), {}, {}};
            }
            found.note = "write " + InOneLine(rest->edits[0].text);
            found.edits[0].text = rest->edits[0].text;
        }
        if (!found.edits.empty() && HasEscape(found.edits[0].text)) {
            return RowAdvice{"use " + std::string(FirstWord(found.edits[0].text)) +
                                 ", and a number for each character after a backslash",
                             {},
                             {}};
        }
        if (!found.edits.empty()) {  // in column 1, it would be a label
            const bool isFirst = statement.PartOf(statement.mnemonic).offset == 0;
            found.edits = {
                translation.Whole(statement, (isFirst ? " " : "") + found.edits[0].text)};
            found.note += isFirst ? ", not in column 1" : "";
        }
        return found;
    };
    for (const bool strips : {false, true}) {
        if (strips && !isMarked) {
            break;
        }
        word.remove_prefix(strips ? 1 : 0);
        const bool isImmediate = count == 1 && statement.rest.starts_with('#');
        const std::string marked = std::string(word) + "#";  // for the 6502
        if (HoldsWord("MACRO PROC ENDP ENDM", word)) {
            return RowAdvice{std::string(macroNote), {}, {}};
        }
        if (FindKeyword(word) != nullptr) {
            changed.mnemonic.remove_prefix(1);
            return advice("", changed.rest.empty() ? "%w" : word == "INCLUDE" ? "%w %n1" : "%w %r");
        }
        const bool hasRegister =
            std::ranges::any_of(changed.operands, [](const OperandView& operand) {
                return operand.what.kind == KIND_REGISTER || operand.what.kind == KIND_CONDITION;
            });
        for (const WordRow& row : wordTable) {
            const bool isWord =
                HoldsWord(row.words, word) || (isImmediate && HoldsWord(row.words, marked));
            const bool isData =
                HoldsWord("DB DW DS INCLUDE BINCLUDE", row.fix.substr(0, row.fix.find(' '))) ||
                row.note.starts_with("write the bytes");
            const bool isSlip =  // "DL A,B", "DA" for DAA
                isData && (hasRegister || (count == 0 && word.size() < 3));
            if (isWord && (row.operands < 0 || row.operands == count) && !isSlip) {
                return advice(row.note, row.fix);
            }
        }
    }
    return std::nullopt;
}

std::optional<RowAdvice> TokenAdvice(const StatementView& statement, const OperandView& operand) {
    for (const TokenRow& row : tokenTable) {
        if (!IsOneOf(row.words, statement.mnemonic)) {
            continue;
        }
        for (std::size_t i = 0; i < operand.tokens.size(); ++i) {
            std::size_t from = i;
            const std::size_t length = FitLength(operand.tokens, i, row.tokens, &from);
            if (length == 0) {
                continue;
            }
            Texts texts;
            for (std::size_t k = i; k < i + length; ++k) {
                texts.push_back(statement.Typed(operand.tokens[k].text));
            }
            RowAdvice advice;
            advice.part =
                statement.Span(operand.tokens[from].text, operand.tokens[i + length - 1].text);
            std::string shown;
            if (!row.fix.empty()) {
                advice.edits.push_back({statement.PartOf(advice.part),
                                        Filled(row.fix, statement, texts, std::nullopt)});
                shown = WriteNote(statement, advice.edits).substr(6);
            }
            advice.note = Filled(row.note.empty() ? "write %f" : row.note, statement, texts, shown);
            return advice;
        }
    }
    return std::nullopt;
}

std::optional<RowAdvice> OperandAdvice(const StatementView& statement, Status number) {
    for (const OperandRow& row : operandTable) {
        if (HoldsNumber(row.numbers, number) && IsOneOf(row.words, statement.mnemonic) &&
            HasShape(statement, row.shapes)) {
            return AdviceOf(row.note, row.fix, statement, TextsOf(statement));
        }
    }
    return std::nullopt;
}

}  // namespace korv
