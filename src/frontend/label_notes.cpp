// Advice on labels in the style of another assembler, or in the wrong place.

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr const char* oddNameNote = "use letters from A to Z, digits, ?, @ and _ in a name";

}  // namespace

bool HasOddByte(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return static_cast<signed char>(c) < 0; });
}

Advice AdviseOnOddName(Adviser& adviser, const StatementView& statement) {
    const std::string_view line = statement.line;
    const std::size_t blanks = line.size() - WithoutLeadingBlanks(line).size();
    const std::size_t end = std::min(line.find_first_of(" \t:", blanks + 1), line.size());
    const std::string_view word = line.substr(blanks, end - blanks);
    const bool hasColon = line.substr(end).starts_with(':');
    const bool isBefore =  // ".LOOP LD A,5"
        word.starts_with('.') && FindKeyword(FirstWord(statement.rest)) != nullptr;
    if (!hasColon && !isBefore && (blanks > 0 || WordAdvice(statement))) {
        return {};
    }
    std::string name;
    bool isApart = false;  // after characters that a name cannot have
    for (const char c : statement.Typed(word)) {
        if (HasClass(c, CC_NAME)) {
            name.append(isApart ? "_" : "").append(1, c);
            isApart = false;
        } else {
            isApart = !name.empty();
        }
    }
    if (name.find_first_not_of('_') == std::string::npos) {
        return HasOddByte(word) ? Say(statement, word, oddNameNote) : Advice{};
    }
    if (Raised(name) == word) {
        return {};
    }
    const bool isLabel = hasColon || word.front() == '.' || word.front() == ':' ||
                         statement.mnemonic == "EQU" || statement.rest.starts_with("EQU ");
    if (!isLabel) {
        return {};
    }
    std::string joined = name;
    std::erase(joined, '_');
    const std::string other = Raised(joined);
    const auto used = adviser.Facts().FindName(other);
    if (joined != name && used && !used->hasValue) {  // "A.GAIN", which is used as AGAIN
        name = joined;
    }
    name = adviser.UnusedName(HasClass(name.front(), CC_DIGIT) ? "L" + name : name);
    const bool hasDot = word.find('.') != std::string_view::npos;
    const std::string note = word.front() == ':' ? "end the label with its colon: " + name + ":"
                             : HasOddByte(word)
                                 ? oddNameNote
                                 : "write " + name + " here and where it is used: a name has " +
                                       (hasDot ? "no dots" : "only letters, digits, ?, @ and _");
    Advice advice = Replace(statement, line.substr(0, end), name, note);
    if (word.front() == ':') {
        advice.edits[0].text += hasColon ? "" : ":";
    } else {
        advice.newName = name;
    }
    advice.place = statement.PartOf(word);
    advice.definesName = true;
    advice.names = {std::string(word), Raised(name), other};
    return advice;
}

// "LOOPLD A,5": the colon and the blank after a label are missing.
Advice AdviseOnGluedLabel(const RunFacts& facts, const StatementView& statement) {
    const std::string_view both = statement.hasColon ? std::string_view() : statement.label;
    for (std::size_t size = 1; size + 1 < both.size(); ++size) {
        const auto known = facts.FindName(both.substr(0, size));
        if (!known || known->hasValue) {  // not a name that is used but undefined
            continue;
        }
        const std::vector<TextEdit> edits = {{statement.PartOf(both.substr(size, 0)), ": "}};
        const std::string fix = Applied(statement.typed.substr(0, statement.line.size()), edits);
        const std::string raised = Raised(fix);
        if (HasForm(CutStatement(raised))) {
            Advice advice = Say(statement, both, "write " + fix);
            advice.edits = edits;
            advice.definesName = true;
            advice.names.emplace_back(both.substr(0, size));
            return advice;
        }
    }
    return {};
}

Advice AdviseOnLabelPlace(const Adviser& adviser, const StatementView& statement) {
    const std::string_view word = statement.mnemonic;
    if (word.starts_with(':') && !statement.label.empty() &&
        (word.size() == 1 || FindKeyword(word.substr(1)) != nullptr)) {  // "LOOP : NOP", "X :EQU 5"
        const std::string_view name = statement.Span(statement.label, word.substr(0, 1));
        return Replace(
            statement, name,
            std::string(statement.Typed(statement.label)) + (word.size() == 1 ? ":" : ": "),
            "end the label with one colon, without a blank before it");
    }
    const std::string_view stem = word.substr(0, word.size() - 1);
    const std::string_view follower = FirstWord(statement.rest);
    const bool isSecond =  // "CON OUT: EQU 2"
        !statement.label.empty() && !statement.hasColon && FindKeyword(follower) != nullptr &&
        FindKeyword(statement.label) == nullptr;
    if (word.ends_with(':') && IsNameText(stem) && (isSecond || FindKeyword(stem) == nullptr)) {
        const std::size_t blanks = statement.PartOf(word).offset;
        if (!statement.label.empty() && !statement.hasColon) {
            const std::string_view both = statement.Span(statement.label, word);
            std::string name(statement.Typed(statement.label));
            const auto isUsed = adviser.Facts().FindName(std::string(statement.label).append(stem));
            name += (isUsed ? "" : "_") + std::string(statement.Typed(stem));
            Advice joined =
                Replace(statement, both, name + ":",
                        "write " + name + " here and where it is used: a name has no blanks");
            joined.definesName = true;
            joined.names = {std::string(both.substr(0, both.size() - 1)), Raised(name)};
            joined.newName = name;
            return joined;
        }
        if (!statement.label.empty()) {
            return Replace(statement, word.substr(0, 0), "\n",
                           "put the second label on a line of its own");
        }
        const bool isAlone = HoldsWord("IF COND ELSE ENDIF ENDC", follower);
        Advice moved = Replace(statement, statement.line.substr(0, blanks + word.size()),
                               std::string(statement.Typed(word)) + (isAlone ? "\n" : ""),
                               isAlone ? "put the label on a line of its own, from column 1 on"
                                       : "begin the label in column 1");
        moved.definesName = true;
        moved.names.emplace_back(stem);
        return moved;
    }
    const std::size_t colon = word.find(':');  // " LOOP:LD A,5"
    const std::string_view name = word.substr(0, colon);
    const std::string_view next =
        colon < word.size() ? word.substr(colon + 1) : FirstWord(statement.rest);
    if (statement.label.empty() && IsNameText(name) && FindKeyword(next) != nullptr &&
        FindKeyword(name) == nullptr &&
        (adviser.Facts().FindName(name) || !WordAdvice(statement))) {  // " LOOP LD A,5"
        const std::size_t blanks = statement.PartOf(word).offset;
        Advice advice = Say(statement, word, "begin the label in column 1");
        advice.edits = {{LinePart{0, static_cast<std::uint32_t>(blanks)}, ""}};
        advice.definesName = true;
        advice.names.emplace_back(name);
        return advice;
    }
    return {};
}

}  // namespace korv
