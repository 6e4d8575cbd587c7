#include "frontend/message_maker.h"

#include <utility>

#include "driver/assembler.h"
#include "frontend/file_store.h"
#include "frontend/program_checks.h"
#include "source/char_class.h"

namespace korv {

std::string MessageText(std::int32_t number) {
    if (number < 0) {
        return "internal error";
    }
    std::string text = MESSAGE_TABLE[static_cast<std::size_t>(number)].text;
    while (text.ends_with('.') || text.ends_with('!')) {
        text.pop_back();
    }
    const bool isAbbreviation = text.size() > 1 && HasClass(text[1], CC_LETTER) &&
                                !HasClass(text[1], CC_LOWER);  // as in "ORG used"
    if (!text.empty() && !isAbbreviation && HasClass(text[0], CC_LETTER)) {
        text[0] = static_cast<char>(text[0] | 0x20);
    }
    return text;
}

std::int32_t MessageMaker::AddOpening(std::int32_t number, const Opening& opening) {
    const auto index = static_cast<std::int32_t>(analysis->openings.size());
    openingByNumber.resize(static_cast<std::size_t>(number), noIndex);
    openingByNumber.push_back(index);
    analysis->openings.push_back(opening);
    return index;
}

void MessageMaker::Add(const Report& report) {
    const std::optional<Warning> warning =
        report.isWarning ? WarningOf(report.number) : std::nullopt;
    if (warning && !warnings->IsOn(*warning)) {
        return;
    }
    Message message;
    message.severity =
        warning && !warnings->IsError(*warning) ? Severity::warning : Severity::error;
    if (!IsOpen()) {  // it is only counted
        AddMessage(std::move(message), analysis);
        return;
    }
    message.number = report.number;
    message.code = "X" + std::to_string(report.number);
    message.text = MessageText(report.number);
    message.detail = report.text;
    message.opening = OpeningOf(report.place.file);
    message.warning = warning;
    const StatementView& statement = StatementAt(report.place);
    const FaultView fault{.number = report.number,
                          .isError = message.severity == Severity::error,
                          .isLate = report.isLate,
                          .statement = statement,
                          .part = {report.place.offset, report.place.length},
                          .text = report.text,
                          .statementId = statementCount,
                          .isSkipped = !report.isLate && assembler->assembling == 0};
    Advice advice = adviser.AdviceFor(fault);
    if (advice.isFollowOn) {
        return;
    }
    SourcePlace place = report.place;
    if (advice.place) {
        place.offset = advice.place->offset;
        place.length = advice.place->length;
    }
    message.place = PlaceOf(place);
    message.note = std::move(advice.note);
    if (!advice.text.empty()) {
        message.text = std::move(advice.text);
        message.detail.clear();
    }
    for (TextEdit& edit : advice.edits) {
        place.offset = edit.part.offset;
        place.length = edit.part.length;
        message.edits.push_back(
            {places.PlaceOf(analysis->openings[static_cast<std::size_t>(message.opening)].file,
                            TextOf(message.opening), place.line, place.offset, place.length),
             std::move(edit.text)});
    }
    AddMessage(std::move(message), analysis);
}

void MessageMaker::Warn(Warning warning, const Place& place, std::int32_t opening,
                        std::string detail, std::string_view note) {
    Message message;
    message.warning = warning;
    message.place = place;
    message.opening = opening;
    message.detail = std::move(detail);
    message.note = note;
    AddWarning(*warnings, std::move(message), analysis);
}

const StoredText& MessageMaker::TextOf(std::int32_t opening) const {
    const Opening& at = analysis->openings[static_cast<std::size_t>(opening)];
    return *analysis->files[static_cast<std::size_t>(at.file)].text;
}

const StatementView& MessageMaker::StatementAt(const SourcePlace& place) {
    if (viewedPlace.file != place.file || viewedPlace.line != place.line) {
        viewedPlace = place;
        const LogicalLine& lines = places.LineAt(TextOf(OpeningOf(place.file)), place.line);
        viewedLine = lines.text;
        const std::string_view typed = TextOf(OpeningOf(place.file)).Line(place.line);
        const bool isWhole = lines.lastLine == place.line;
        view = CutStatement(viewedLine, isWhole ? typed : std::string_view());
        ++statementCount;
    }
    return view;
}

Place MessageMaker::PlaceOf(const SourcePlace& place) {
    const std::int32_t opening = OpeningOf(place.file);
    const StoredText& text = TextOf(opening);
    std::size_t offset = place.offset, length = place.length;
    if (length == 0 && offset == 0) {
        const StatementView& statement = StatementAt(place);
        const LinePart part =
            statement.PartOf(statement.mnemonic.empty() ? statement.label : statement.mnemonic);
        offset = part.offset;
        length = part.length;
    }
    return places.PlaceOf(analysis->openings[static_cast<std::size_t>(opening)].file, text,
                          place.line, offset, length);
}

std::optional<KnownName> MessageMaker::FindName(std::string_view name) const {
    const CIdentifier* const record = assembler->identifiers.Find(name);
    if (record == nullptr) {
        return std::nullopt;
    }
    KnownName known;
    known.hasValue = (record->flags & IDF_RESOLVED) != 0;
    known.value = record->value;
    known.isCommandLine = (record->flags & IDF_EQU) != 0 && record->file == 0;
    if (record->file != 0) {
        const Opening& opening =
            analysis->openings[static_cast<std::size_t>(OpeningOf(record->file))];
        known.where = analysis->LineName({opening.file, record->line});
        if (!known.hasValue && (record->flags & IDF_EQU) != 0) {
            known.waitingLine = LogicalLineAt(TextOf(OpeningOf(record->file)), record->line).text;
        }
    }
    return known;
}

bool MessageMaker::HasFile(std::string_view name) const {
    return store->Has(name);
}

std::string MessageMaker::SearchedDirectories() const {
    std::string text;
    for (const std::string& directory : store->SearchedDirectories()) {
        text += (text.empty() ? "" : ", ") + directory;
    }
    return text;
}

std::vector<std::string_view> MessageMaker::DefinedNames() const {
    std::vector<std::string_view> names;
    for (std::int32_t i = 0; i < assembler->identifiers.RecordCount(); ++i) {
        const CIdentifier& record = assembler->identifiers.Record(i);
        if ((record.flags & IDF_RESOLVED) != 0) {
            names.push_back(record.Name());
        }
    }
    return names;
}

}  // namespace korv
