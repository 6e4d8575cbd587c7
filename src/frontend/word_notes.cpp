// Advice on a mnemonic that is not in the vocabulary: a word of another assembler, a definition or
// label in another style, an instruction in column 1, words that are joined, or a misspelling.

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Bytes of a file that is not plain text.
Advice AdviseOnEncoding(const StatementView& statement) {
    const std::string_view line = statement.line;
    if (statement.mnemonic.starts_with("\xEF\xBB\xBF")) {
        return Replace(statement, line.substr(0, 3), "",
                       "save the file without a byte order mark: it begins with one");
    }
    if (line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF")) {
        return Say(statement, line.substr(0, 2), "save the file as plain text: it is UTF-16");
    }
    const auto* const control = std::ranges::find_if(
        line, [](char c) { return c == 0x7F || (c > 0 && c < ' ' && !HasClass(c, CC_BLANK)); });
    if (control != line.end()) {
        return Replace(statement, {&*control, 1}, "",
                       "remove the control character, or read data with BINCLUDE");
    }
    if (const std::size_t at = line.find("\xC2\xA0"); at != std::string_view::npos) {
        return Replace(statement, line.substr(at, 2), " ",
                       "replace the no-break space with a blank");
    }
    return {};
}

// "//", "/*", "#" and similar marks, and a "*" in column 1, which Korv treats as a blank.
Advice AdviseOnComment(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    if (statement.line.starts_with('*')) {
        return Replace(statement, statement.line.substr(0, 1), ";",
                       "begin the comment with a semicolon");
    }
    for (const std::string_view mark : {"//", "/*", "*/", "--", "'"}) {
        if (word.starts_with(mark) && (mark != "'" || statement.label.empty())) {
            return Replace(statement, word.substr(0, mark.size()), ";",
                           "begin the comment with a semicolon");
        }
    }
    const bool isLabel = statement.label == "REM";
    const bool isLine =
        word.size() > 3 && word.find_first_not_of("-=*+#~_.") == std::string_view::npos;
    if (isLabel || isLine || HoldsWord("# * / REM |", word)) {
        return Replace(statement, isLabel ? statement.label : word, ";",
                       "begin the comment with a semicolon");
    }
    return {};
}

// "* = 100H", which sets the address.
Advice AdviseOnOrigin(const StatementView& statement) {
    const std::string_view line = WithoutLeadingBlanks(statement.line);
    const std::size_t at = line.find('=');
    const bool isOrigin = HoldsWord("* . $", line.substr(0, 1)) &&
                          WithoutLeadingBlanks(line.substr(1)).starts_with('=');
    const std::string_view value =
        isOrigin ? WithoutLeadingBlanks(line.substr(at + 1)) : std::string_view();
    if (value.empty()) {
        return {};
    }
    const std::string fix = "ORG " + std::string(value);
    Advice advice =
        Replace(statement, statement.line, " " + fix, "write " + fix + ", not in column 1");
    advice.place = statement.PartOf(line);
    return advice;
}

// Data without a directive, as in "MSG: "text"" and "VAR: 5".
Advice AdviseOnData(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    const std::vector<Token> tokens = CutTokens(word.substr(0, word.find(',')));
    const bool isValue =
        !tokens.empty() &&
        (tokens[0].kind == TokenKind::string || tokens[0].kind == TokenKind::number ||
         tokens[0].kind == TokenKind::openString || word.starts_with('\''));
    if (!isValue || statement.label.empty()) {
        return {};
    }
    const std::vector<TextEdit> edits = {{statement.PartOf(word.substr(0, 0)), "DB "}};
    Advice advice = Say(statement, word, WriteNote(statement, edits));
    if (tokens[0].kind == TokenKind::number && word.find(',') == std::string_view::npos) {
        advice.note += ", or EQU in place of DB for a constant";
    } else {
        advice.edits = edits;
    }
    return advice;
}

// "+", "-" and "@@", which are anonymous labels in other assemblers.
Advice AdviseOnAnonymousLabel(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    const std::string_view next = FirstWord(statement.rest);
    const bool isSigns = word.size() < 4 && word.find_first_not_of("+-") == std::string_view::npos;
    const bool isLabel = isSigns && (next.empty() || FindKeyword(next) != nullptr);
    return isLabel || word == "@@:" ? Say(statement, word, anonymousLabelNote) : Advice{};
}

// A block in braces.
Advice AdviseOnBrace(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    return word.find_first_of("{}") != std::string_view::npos || statement.rest.ends_with('{')
               ? Say(statement, word, braceNote)
               : Advice{};
}

// Preprocessor lines that are not definitions.
Advice AdviseOnMark(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    const std::string_view plain = word.substr(std::min<std::size_t>(1, word.size()));
    const bool isOwn = FindKeyword(plain) != nullptr || HoldsWord("IFDEF IFNDEF", plain);
    if (word.front() == '#' && statement.label.empty() && !isOwn && !word.ends_with(':')) {
        return Say(statement, word, "use NAME: EQU 5, INCLUDE and IF: there is no preprocessor");
    }
    return {};
}

// True if all tokens of `operand` are valid and all its names are known.
bool HasKnownNames(const RunFacts& facts, const OperandView& operand) {
    return std::ranges::all_of(operand.tokens, [&](const Token& token) {
        return token.kind != TokenKind::other &&
               (!operand.HoldsAsName(token) || facts.FindName(token.text));
    });
}

// Words run together, as in "LD(HL),A" and "DB5".
Advice AdviseOnJoinedWords(const RunFacts& facts, const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    for (std::size_t size = word.size() - 1; size >= 2; --size) {
        if (FindKeyword(word.substr(0, size)) == nullptr) {
            continue;
        }
        const bool isWord = HasClass(word[size], CC_LETTER);
        const bool isSign = std::string_view("=:,.").find(word[size]) !=
                            std::string_view::npos;                       // "ORG=100H", "LD,A,5"
        const bool isSize = HoldsWord(".B .W .L .S", word.substr(size));  // "DS.B 5"
        if (isSize && HoldsWord("DS DEFS", word.substr(0, size)) && !word.ends_with(".B")) {
            return Say(statement, word, "use DS with the number of bytes");
        }
        const LinePart gap{statement.PartOf(word).offset + static_cast<std::uint32_t>(size),
                           isSize   ? std::uint32_t{2}
                           : isSign ? std::uint32_t{1}
                                    : 0};
        const bool isOperand =  // "CALL.NZ X", "LDB X"
            !isSize && !statement.rest.empty() && word.substr(size) != word.substr(size - 1, 1) &&
            ClassOf(word.substr(size + (isSign ? 1 : 0))).kind != KIND_VALUE;
        std::vector<TextEdit> edits = {{gap, isSize ? "" : " "}};
        if (isOperand) {
            const LinePart part = statement.PartOf(word);
            const std::uint32_t end = part.offset + part.length;
            edits.push_back({{end, statement.PartOf(statement.rest).offset - end}, ","});
        }
        const std::string line = Applied(statement.line, edits);
        const StatementView changed = CutStatement(line);
        const bool isFile =
            HoldsWord("INCLUDE BINCLUDE", changed.mnemonic) && facts.HasFile(changed.rest);
        const bool isPlain =
            isFile || std::ranges::all_of(changed.operands, [&facts](const OperandView& operand) {
                return operand.text == "AF'" || HasKnownNames(facts, operand);
            });
        if (HasForm(changed) && (!isWord || isPlain)) {
            Advice advice = Say(statement, word, WriteNote(statement, edits));
            advice.edits = edits;
            return advice;
        }
    }
    return {};
}

// A mnemonic with a punctuation mark after it, as in "DI, EI" and "LD, A,5".
Advice AdviseOnSign(const StatementView& statement) {
    constexpr std::string_view signs = ",:.()";
    const std::string_view word = statement.mnemonic;
    const std::size_t start = std::min(word.find_first_of(signs), word.size());
    const std::size_t end = std::min(word.find_first_not_of(signs, start), word.size());
    const std::string_view tail = word.substr(end);  // "DI,EI"
    const std::string_view next = tail.empty() ? FirstWord(statement.rest) : tail;
    const bool isSecond = FindKeyword(next) != nullptr;
    if (FindKeyword(word.substr(0, start)) == nullptr || (!tail.empty() && !isSecond)) {
        return {};
    }
    Advice advice = Replace(statement, word.substr(start, end - start), isSecond ? "\n\t" : "",
                            oneInstructionNote);
    advice.place = statement.PartOf(word);
    if (!isSecond) {
        advice.note = WriteNote(statement, advice.edits);
    }
    return advice;
}

// The keyword that `word` was probably meant to be. Among keywords at the same distance, one that
// accepts the operands is preferred.
std::string_view NearestKeyword(const StatementView& statement, std::string_view word) {
    static const std::vector<std::string_view> words = [] {
        std::vector<std::string_view> all;
        for (const Keyword& keyword : keywords) {
            // Reserved words and END are never proposed. END would hide everything after it.
            if (!HoldsWord("DD DEFD END MACRO ENDM PROC ENDP MAC_ON MAC_OFF", keyword.word)) {
                all.push_back(keyword.word);
            }
        }
        return all;
    }();
    const auto isForm = [&statement, word](std::string_view each) {
        StatementView changed = statement;
        changed.mnemonic = each;
        changed.keyword = FindKeyword(each);
        return HasForm(changed) && each != "ENDC" &&
               (!each.starts_with("DEF") || word.starts_with("DE"));
    };
    if (word.size() > (statement.operands.empty() ? 3 : 2)) {
        return NearWords(words).Find(word, isForm);
    }
    // Many keywords are close to such a short word, so exactly one of them must accept the operands
    // or begin with the word, as CALL does with CAL.
    const auto isNear = [word, isForm](std::string_view each) {
        return EditDistance(word, each) == 1 && (isForm(each) || each.starts_with(word));
    };
    const auto near = std::ranges::find_if(words, isNear);
    return std::ranges::count_if(words, isNear) == 1 ? *near : "";
}

// A statement that begins in column 1, where only labels may begin.
Advice AdviseOnColumn(const StatementView& statement) {
    const std::string_view label = statement.label;
    const bool isKeyword = FindKeyword(label) != nullptr;
    if (label.empty() || (statement.hasColon && !isKeyword)) {
        return {};
    }
    if (statement.hasColon) {  // "LD: A,5"
        const std::vector<TextEdit> edits = {{{0, static_cast<std::uint32_t>(label.size()) + 1},
                                              " " + std::string(statement.Typed(label))}};
        Advice advice = Say(statement, label, WriteNote(statement, edits) + ", not in column 1");
        advice.edits = edits;
        return advice;
    }
    const std::string line = " " + std::string(statement.line);
    const StatementView indented = CutStatement(line);
    Advice advice;
    advice.place = statement.PartOf(label);
    const std::string_view rest = indented.rest;
    if (indented.mnemonic == "INCLUDE" && rest.starts_with('"')) {
        std::string fix = std::string(statement.Typed(label)) + " " + std::string(rest);
        std::erase(fix, '"');
        advice.edits = {{statement.PartOf(statement.line), " " + fix}};
        advice.note = "write " + fix + ", not in column 1";
        return advice;
    }
    if (HoldsWord("MACRO PROC ENDP", label)) {
        advice.note = macroNote;
        return advice;
    }
    if (indented.keyword != nullptr) {
        advice.edits = {{LinePart{0, 0}, " "}};
        advice.note = "indent " + std::string(label) + ": only labels begin in column 1";
        return advice;
    }
    if (statement.mnemonic.size() > 2 &&
        !NearestKeyword(statement, statement.mnemonic).empty()) {  // "PRINT PSUH HL"
        return {};
    }
    const bool isSign = statement.mnemonic.starts_with('<');  // "NAME <- 5"
    if (const auto foreign = isSign ? std::nullopt : WordAdvice(indented); foreign) {
        advice.note = foreign->note;
        if (!foreign->edits.empty()) {
            advice.edits = {{statement.PartOf(statement.line), " " + foreign->edits[0].text}};
            advice.note += ", not in column 1";
        }
        return advice;
    }
    if (const std::string_view near = NearestKeyword(indented, indented.mnemonic); !near.empty()) {
        advice.edits = {{statement.PartOf(label), " " + std::string(near)}};
        advice.note = "did you mean " + std::string(near) + "? only labels begin in column 1";
        return advice;
    }
    return {};
}

// "A += 5" and "A++".
bool IsAssignment(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    const std::size_t sign = word.find_first_of("+-=");
    return statement.rest.starts_with('=') ||
           (ClassOf(word.substr(0, sign)).kind != KIND_VALUE &&
            (sign != std::string_view::npos || statement.rest.find_first_of("+-*") == 0));
}

}  // namespace

Advice AdviseOnWord(Adviser& adviser, const FaultView& fault) {
    const StatementView& statement = fault.statement;
    const std::string_view word = statement.mnemonic;
    if (word == "FI") {
        return fault.isSkipped ? Replace(statement, word, "ENDIF", "write ENDIF")
                               : Say(statement, word, "did you mean ENDIF, DI or EI?");
    }
    if (word.starts_with("IF") && statement.label.empty()) {  // "IFDEBUG" is not a definition
        if (Advice joined = AdviseOnJoinedWords(adviser.Facts(), statement); joined.place) {
            return joined;
        }
    }
    for (const auto step :
         {AdviseOnEncoding, AdviseOnOrigin, AdviseOnAnonymousLabel, AdviseOnBrace, AdviseOnComment,
          AdviseOnPreprocessor, AdviseOnMark, AdviseOnDefinition}) {
        if (Advice advice = step(statement); advice.place) {
            return advice;
        }
    }
    if (Advice advice = AdviseOnGluedLabel(adviser.Facts(), statement); advice.place) {
        return advice;
    }
    if (Advice advice = AdviseOnOddName(adviser, statement); advice.place) {
        return advice;
    }
    if (!adviser.Facts().FindName(word)) {
        if (Advice advice = AdviseOnSplitMnemonic(statement); advice.place) {
            return advice;
        }
    }
    if (Advice advice = AdviseOnLabelPlace(adviser, statement); advice.place) {
        return advice;
    }
    if (Advice found = AdviseOnSign(statement); found.place) {
        return found;
    }
    Advice advice;
    advice.place = statement.PartOf(word);
    if (FindKeyword(statement.label) != nullptr) {  // "IF WIDTH"
        if (Advice found = AdviseOnColumn(statement); found.place) {
            return found;
        }
    }
    if (HoldsWord("IMPORT USE", word) && !statement.rest.empty()) {
        for (const std::string_view end : {"", ".kor", ".asm", ".inc"}) {
            const std::string name = std::string(statement.Typed(statement.rest)).append(end);
            if (adviser.Facts().HasFile(name)) {
                advice.edits = {NewStatement(statement, "INCLUDE " + name)};
                return advice;
            }
        }
    }
    if (const auto row = WordAdvice(statement)) {
        advice.note = row->note;
        advice.edits = row->edits;
        return advice;
    }
    if (FindKeyword(statement.label) == nullptr) {
        if (Advice joined = AdviseOnJoinedWords(adviser.Facts(), statement); joined.place) {
            return joined;
        }
    }
    for (const auto step : {AdviseOnColumn, AdviseOnData}) {
        if (Advice found = step(statement); found.place) {
            return found;
        }
    }
    if (const std::string_view near = NearestKeyword(statement, word); !near.empty()) {
        advice.edits = {{statement.PartOf(word), std::string(near)}};
        advice.note = "did you mean " + std::string(near) + "?";
    } else if (IsAssignment(statement)) {
        advice.note = assignmentNote;
    } else if (fault.isSkipped) {
        advice.note =
            "begin the line with a semicolon: mnemonics are checked in skipped blocks too";
    }
    return advice;
}

Advice AdviseOnSplitMnemonic(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    const std::string_view next = FirstWord(statement.rest);
    const bool isOperand = next == statement.rest && statement.keyword != nullptr &&
                           ClassOf(next).kind != KIND_VALUE && word != "RET";  // "LD D"
    const bool isCondition = next == "N";  // "RET N" for "RET NZ"
    if (isOperand || isCondition || FindKeyword(std::string(word).append(next)) == nullptr) {
        return {};
    }
    const std::string_view part = statement.Span(word, next);
    const std::string fix = std::string(statement.Typed(word)).append(statement.Typed(next));
    const std::string line = Raised(Applied(statement.line, {{statement.PartOf(part), fix}}));
    return HasForm(CutStatement(line)) ? Replace(statement, part, fix, "remove the blank: " + fix)
                                       : Advice{};
}

}  // namespace korv
