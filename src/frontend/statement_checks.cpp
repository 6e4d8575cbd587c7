#include "frontend/statement_checks.h"

#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/statement_view.h"
#include "frontend/terminal_text.h"

namespace korv {

void StatementChecks::Look(CStatement* statement, std::uint32_t count, bool isFaulty) {
    if (conditions.HasChanged(*assembler)) {
        const Findings findings = conditions.Follow(*assembler, *statement);
        if (!isFaulty) {
            Warn(*statement, findings);
        }
    }
    if (isFaulty || assembler->assembling == 0) {
        return;
    }
    Findings findings;
    CheckLabel(statement->label, &findings);
    CheckOperands(statement, BytesOf(count), &findings);
    Warn(*statement, findings);
    if (hasGaps && assembler->location != statement->address + count &&
        assembler->binary.Position() != 0) {
        CheckOrg(*statement);
    }
}

void StatementChecks::CheckOrg(const CStatement& statement) {
    const StatementView view = CutStatement(statement.text);
    if (view.keyword != nullptr && view.keyword->handler == AssembleOrg) {
        Warn(statement, {{Warning::orgGap, view.rest, Quoted(view.rest),
                          "fill the gap with DS, or use --format hex, which has addresses"}});
    }
}

void StatementChecks::LookAtComments(const CStatement& statement) {
    const std::int32_t opening = maker->OpeningOf(statement.fileName);
    const StoredText& text = maker->TextOf(opening);
    WarnOfBytes(opening, CheckComments(text, maker->places.LineAt(text, statement.lineNumber)));
}

void StatementChecks::LookAtBytes(std::int32_t opening) {
    WarnOfBytes(opening, CheckBytes(maker->TextOf(opening)));
}

namespace {

// The first line after line `after` that contains an END; 0 if there is none.
std::int32_t LineOfEnd(const StoredText& text, std::int32_t after) {
    for (std::int32_t number = after + 1; number <= text.LineCount(); ++number) {
        const std::string line = Raised(text.Line(number));
        if (CutStatement(line).mnemonic == "END") {
            return number;
        }
    }
    return 0;
}

}  // namespace

void StatementChecks::LookAtOpenConditions() {
    const std::vector<SourcePlace> open = conditions.Open();
    if (!open.empty()) {
        maker->WithdrawNestedIf(maker->PlaceOf(open.front()));
    }
    for (const SourcePlace& place : open) {
        Message message;
        message.place = maker->PlaceOf(place);
        message.opening = maker->OpeningOf(place.file);
        message.text = "this IF has no ENDIF";
        message.code = "open-if";
        const std::int32_t end = &place == &open.back()
                                     ? LineOfEnd(maker->TextOf(message.opening), message.place.line)
                                     : 0;
        if (end != 0) {
            maker->ExpectSkippedEnd();
            message.note = "write ENDIF in place of the END in line " + std::to_string(end);
        }
        maker->Add(std::move(message));
    }
}

void StatementChecks::Warn(const CStatement& statement, const Findings& findings) {
    for (const Finding& finding : findings) {
        maker->Warn(finding.warning, maker->PlaceOf(statement.PlaceOf(finding.part)),
                    maker->OpeningOf(statement.fileName), finding.detail, finding.note);
    }
}

void StatementChecks::WarnOfBytes(std::int32_t opening, const std::vector<ByteFinding>& findings) {
    for (const ByteFinding& finding : findings) {
        const bool isComment = finding.warning == Warning::continuedComment;
        maker->Warn(finding.warning, {maker->FileOf(opening), finding.line, finding.column, 1},
                    opening, "", isComment ? "end the comment with another character" : "");
    }
}

}  // namespace korv
