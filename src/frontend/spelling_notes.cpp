// Advice on operands in the style of another assembler. It proposes the whole statement with all
// foreign spellings replaced; if that is still not sound, the advice is about what else is wrong.

#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "frontend/translation.h"

namespace korv {
namespace {

// A foreign spelling, from `FindForeign` or `TokenAdvice`.
struct Found {
    std::string_view part;  // null data: none
    std::string note;
    std::vector<TextEdit> edits;
};

Found FindSpelling(const StatementView& statement, const OperandView& operand) {
    if (Foreign foreign = FindForeign(statement, operand); foreign.part.data() != nullptr) {
        Found found{foreign.part, std::move(foreign.note), {}};
        if (!foreign.fix.empty()) {
            found.edits = {{statement.PartOf(foreign.part), std::move(foreign.fix)}};
        }
        return found;
    }
    if (auto row = TokenAdvice(statement, operand)) {
        return {row->part, std::move(row->note), std::move(row->edits)};
    }
    return {};
}

// Uses the advice on the translated statement.
void AdviseOnTranslated(OperandCase* it, const Translation& translation) {
    const StatementView changed = translation.View();
    const FaultView fault{.number = FormMessage(changed, it->fault.number),
                          .isError = it->fault.isError,
                          .isLate = it->fault.isLate,
                          .statement = changed,
                          .part = {},
                          .text = {},
                          .file = it->fault.file,
                          .line = it->fault.line,
                          .statementId = it->fault.statementId,
                          .isSkipped = it->fault.isSkipped};
    OperandCase inner{it->adviser, fault, changed, FocusOf(fault)};
    inner.isTranslated = true;  // (IX+IY) would be changed to (IY+IX) and back forever
    AdviseOnOperandCase(&inner);
    if (inner.advice.note.empty() && inner.advice.edits.empty()) {
        return;
    }
    if (inner.operand != nullptr && changed.operands.size() == it->statement.operands.size()) {
        it->PointAt(it->statement
                        .operands[static_cast<std::size_t>(inner.operand - changed.operands.data())]
                        .text);
    }
    it->advice.note = std::move(inner.advice.note);
    const std::string typed = Applied(translation.typed, inner.advice.edits);
    const std::size_t start = it->statement.PartOf(it->statement.mnemonic).offset;
    it->advice.edits = {translation.Whole(it->statement, typed.substr(start))};
}

// A name in single quotes.
bool AdviseOnQuotedName(OperandCase* it, std::string_view part) {
    const std::string_view inner = part.substr(1, part.size() - 2);
    if (part.front() == '\'' && (it->IsDefined(inner) || ClassOf(inner).kind != KIND_VALUE)) {
        it->Replace(part, std::string(it->statement.Typed(inner)));
        it->advice.note = WriteNote(it->statement, it->advice.edits) + ": a name has no quotes";
        return true;
    }
    return false;
}

// Proposes the translated statement, and shows it in the note in place of the single change.
void ProposeWhole(OperandCase* it, const Translation& translation) {
    const StatementView changed = translation.View();
    const std::string whole(changed.Typed(changed.Span(changed.mnemonic, changed.rest)));
    std::string& note = it->advice.note;
    if (note.find(", or ") != std::string::npos) {  // the note proposes two spellings
        return;
    }
    for (const std::string& part :
         {WriteNote(it->statement, it->advice.edits).substr(6), it->advice.edits[0].text}) {
        if (const std::size_t at = note.rfind(part); at != std::string::npos) {
            note.replace(at, part.size(), whole);
            break;
        }
    }
    it->advice.edits = {translation.Whole(it->statement, whole)};
}

}  // namespace

bool AdviseOnSpelling(OperandCase* it) {
    const StatementView& statement = it->statement;
    if (it->isTranslated) {
        return false;
    }
    std::vector<const OperandView*> candidates;
    // If there are too many operands, all are searched: the last may be part of a second
    // instruction.
    if (it->operand != nullptr && it->fault.number != MSG_TOO_MANY_ARGUMENTS) {
        candidates.push_back(it->operand);
    } else {
        for (const OperandView& each : statement.operands) {
            candidates.push_back(&each);
        }
    }
    for (const OperandView* const operand : candidates) {
        if (operand == &statement.operands.back() && IsNumberedLabel(statement)) {
            it->advice.note = numberedLabelNote;
            return true;
        }
        Found found = FindSpelling(statement, *operand);
        if (found.part.data() == nullptr) {
            continue;
        }
        it->PointAt(found.part);
        if (found.edits.empty() && AdviseOnQuotedName(it, found.part)) {
            return true;
        }
        it->advice.note = std::move(found.note);
        it->advice.edits = std::move(found.edits);
        const bool isWithin = it->advice.edits.size() == 1 && IsWithin(it->advice.edits[0]);
        if (!isWithin || statement.keyword == nullptr) {
            return true;
        }
        const Translation translation = Translate(statement, it->advice.edits);
        const bool isSound = IsSound(it->adviser.Facts(), statement,
                                     {{LinePart{0, translation.end}, translation.typed}});
        if (!isSound) {
            AdviseOnTranslated(it, translation);
            return true;
        }
        if (translation.changes > 1) {
            ProposeWhole(it, translation);
        }
        return true;
    }
    return false;
}

}  // namespace korv
