// Advice on definitions in the style of another assembler: with a different operator, with the name
// after the directive, or as a preprocessor line.

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_steps.h"
#include "frontend/translation.h"
#include "source/char_class.h"

namespace korv {

namespace {

// The definition in Korv's syntax, with its value translated too.
std::string Definition(const StatementView& statement, std::string_view name,
                       std::string_view value) {
    const bool isText = value.size() > 3 && HoldsWord("\" '", value.substr(0, 1));  // NAME = "text"
    const std::string typed = std::string(statement.Typed(name)) + (isText ? ": DB " : ": EQU ") +
                              std::string(statement.Typed(value));
    const std::string line = Raised(typed);
    return Translate(CutStatement(line, typed)).typed;
}

// Advice to replace the line with the definition of `name` as `value`, for a message at `part`.
Advice Defined(const StatementView& statement, std::string_view part, std::string_view name,
               std::string_view value) {
    Advice advice = Replace(statement, statement.line, Definition(statement, name, value), "");
    advice.place = statement.PartOf(part);
    advice.note = "write " + advice.edits[0].text + " from column 1 on";
    advice.definesName = true;
    advice.names.emplace_back(name);
    return advice;
}

}  // namespace

bool IsNameText(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return HasClass(c, CC_NAME); });
}

Advice Say(const StatementView& statement, std::string_view part, std::string note) {
    Advice advice;
    advice.place = statement.PartOf(part);
    advice.note = std::move(note);
    return advice;
}

Advice Replace(const StatementView& statement, std::string_view part, std::string text,
               std::string note) {
    Advice advice;
    advice.place = statement.PartOf(part);
    advice.edits = {{statement.PartOf(part), std::move(text)}};
    advice.note = std::move(note);
    return advice;
}

// "#define X 5", and other preprocessor lines.
Advice AdviseOnPreprocessor(const StatementView& statement) {
    const bool isFirst = statement.label == "DEFINE";
    const std::string_view word = isFirst ? statement.label : statement.mnemonic;
    const std::string_view rest =
        isFirst ? WithoutLeadingBlanks(statement.line.substr(word.size())) : statement.rest;
    if (HoldsWord("#DEFINE .DEFINE DEFINE %DEFINE", word)) {
        const std::string_view name = FirstWord(rest);
        const std::string_view value = WithoutLeadingBlanks(rest.substr(name.size()));
        if (IsNameText(name) && !value.empty()) {
            return Defined(statement, word, name, value);
        }
    }
    return AdviseOnNameSecond(statement);
}

Advice AdviseOnNameSecond(const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    // "DEFC X = 5", ".EQU X,5": the name comes second, and the first word may be in column 1.
    const std::string_view first = statement.label.empty() ? word : statement.label;
    const bool isSet =  // "SET X,5"
        first == "SET" && statement.operands.size() == 2 &&
        statement.operands[1].what.kind == KIND_VALUE &&
        !statement.operands[1].text.starts_with('(');
    if (isSet || HoldsWord("EQU DEFL DEFC LET CONST .EQU .SET .DEFL VAR .VAR .EQUIV", first)) {
        const std::string_view text = WithoutLeadingBlanks(
            statement.line.substr(statement.PartOf(first).offset + first.size()));
        const std::string_view name = text.substr(0, text.find_first_of(" \t=,"));
        const std::size_t start = text.find_first_not_of(" \t=,", name.size());
        if (IsNameText(name) && !HasClass(name.front(), CC_DIGIT) &&
            start != std::string_view::npos && ClassOf(name).kind == KIND_VALUE) {
            return Defined(statement, first, name, text.substr(start));
        }
    }
    return {};
}

Advice AdviseOnDefinition(const StatementView& statement) {
    const std::string_view line = statement.line;
    const std::string_view word = statement.mnemonic;
    std::string_view name = statement.label;
    std::string_view sign = word;
    std::string_view value = statement.rest;
    if (line[name.size()] == '=') {  // "X=5": the core reads "=" as the colon
        sign = line.substr(name.size(), 1);
        value = line.substr(name.size() + 1);
    } else if (!value.empty() &&
               (name.empty() || ClassOf(word).kind != KIND_VALUE)) {  // " X EQU 5"
        name = word.ends_with(':') ? word.substr(0, word.size() - 1) : word;
        sign = FirstWord(value);
        value = WithoutLeadingBlanks(value.substr(sign.size()));
    }
    const std::size_t at = std::min(word.find_first_of(":="), word.size());
    if (word.substr(at).find('=') < 2 &&
        (statement.label.empty() || ClassOf(word.substr(0, at)).kind != KIND_VALUE)) {  // "HL=5"
        name = word.substr(0, at);
        sign = word.substr(at);
        value = statement.rest;
    }
    const std::size_t start = sign.find_first_not_of(":=");
    if (start != 0 && start != std::string_view::npos) {
        value = statement.Span(sign.substr(start), value.empty() ? sign : value);  // "X =5"
        sign = sign.substr(0, start);
    }
    if (HoldsWord("= :=", sign) && name.data() != statement.label.data() &&
        ClassOf(name).kind != KIND_VALUE) {
        const std::string fix =
            "LD " + std::string(statement.Typed(name)) + "," + std::string(statement.Typed(value));
        const std::string changed = " " + Raised(fix);
        const StatementView meant = CutStatement(changed);
        const bool isSum =  // "HL = HL + DE"
            std::ranges::any_of(meant.operands.back().tokens, [](const Token& token) {
                return token.kind == TokenKind::registerName;
            });
        if (HasForm(meant) && (!isSum || meant.operands.back().what.kind != KIND_VALUE)) {
            const std::string_view last = statement.rest.empty() ? word : statement.rest;
            return Replace(statement, statement.Span(word, last), fix, "write " + fix);
        }
        return Say(statement, word, assignmentNote);
    }
    const bool isSign = HoldsWord(
        "= := == EQU DEFL SET ASET VAR CONST EQUS EQ EQUAL EQUALS .EQU .SET .DEFL DEFINE DEFC",
        sign);
    value = WithoutLeadingBlanks(value);
    const std::string_view first = FirstWord(value);
    if (sign == "=" && HoldsWord("DB DEFB DM DEFM DW DEFW DS DEFS", first)) {  // "X = DB 5"
        const std::string fix = std::string(statement.Typed(name)) + ":";
        return Replace(statement, statement.Span(name, sign), fix,
                       "write " + fix + " " + std::string(statement.Typed(value)));
    }
    if (!isSign || !IsNameText(name) || value.empty() || ClassOf(value).kind != KIND_VALUE ||
        FindKeyword(name) != nullptr) {
        return {};
    }
    Advice advice = Defined(statement, statement.label.empty() ? name : sign, name, value);
    if (!statement.label.empty()) {
        advice.note = "write " + advice.edits[0].text;
    }
    return advice;
}

}  // namespace korv
