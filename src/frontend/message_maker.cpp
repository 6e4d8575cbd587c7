#include "frontend/message_maker.h"

#include <algorithm>
#include <set>
#include <utility>

#include "driver/assembler.h"
#include "frontend/file_store.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_steps.h"
#include "frontend/program_checks.h"
#include "frontend/renames.h"
#include "frontend/terminal_text.h"
#include "source/char_class.h"

namespace korv {

namespace {

// The detail that the core appends to its message, in quotes if it is not quoted already.
std::string DetailOf(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.empty() || text[0] == '\'' ? std::string(text) : Quoted(text);
}

}  // namespace

std::string MessageText(std::int32_t number) {
    if (number < 0) {
        return "internal error";
    }
    std::string text = MESSAGE_TABLE[static_cast<std::size_t>(number)].text;
    while (text.ends_with('.') || text.ends_with('!')) {
        text.pop_back();
    }
    const auto isCapitalOrDigit = [](char c) {
        return HasClass(c, CC_DIGIT) || (HasClass(c, CC_LETTER) && !HasClass(c, CC_LOWER));
    };
    const std::string_view first = std::string_view(text).substr(0, text.find(' '));
    if (first.size() > 1 &&
        std::ranges::none_of(first.substr(1), isCapitalOrDigit)) {  // not "ORG", "Gen80"
        text[0] = static_cast<char>(text[0] | 0x20);
    }
    return text;
}

std::int32_t MessageMaker::AddOpening(std::int32_t number, const Opening& opening) {
    const auto index = static_cast<std::int32_t>(analysis->openings.size());
    openingByNumber.resize(static_cast<std::size_t>(number), noIndex);
    openingByNumber.push_back(index);
    numberByOpening.push_back(number);
    analysis->openings.push_back(opening);
    return index;
}

void MessageMaker::WithdrawNestedIf(const Place& place) {
    std::erase_if(pending, [&place](const auto& each) {
        const auto* const message = std::get_if<Message>(&each);
        return message != nullptr && message->warning == Warning::nestedIf &&
               message->place.file == place.file && message->place.line > place.line;
    });
}

void MessageMaker::Finish() {
    std::set<std::pair<std::int32_t, std::int32_t>> refusedLines;  // file and line of an error
    auto shortLines = refusedLines;  // of errors that an empty operand may have caused
    const auto lineOf = [this](const Report& report) {
        const auto opening = static_cast<std::size_t>(OpeningOf(report.place.file));
        return std::pair(analysis->openings[opening].file, report.place.line);
    };
    for (const auto& each : pending) {
        const auto* const report = std::get_if<Report>(&each);
        if (report != nullptr && report->warning == Warning::hiddenInstruction) {
            ExpectHiddenValue(report->place);
        }
        if (report != nullptr && !report->warning) {
            refusedLines.insert(lineOf(*report));
            if (report->number == MSG_UNKNOWN_INSTRUCTION ||
                report->number == MSG_ARGUMENT_EXPECTED) {
                ExpectRefusal(report->place);
            }
            if (report->number == MSG_ARGUMENT_EXPECTED || report->number == MSG_ILLEGAL_ARGUMENT) {
                shortLines.insert(lineOf(*report));
            }
        }
    }
    if (assembler->assembling == 0) {
        adviser.ExpectSkippedEnd();
    }
    for (auto& each : std::exchange(pending, {})) {
        if (const auto* const report = std::get_if<Report>(&each)) {
            if (report->warning != Warning::emptyOperand || !shortLines.contains(lineOf(*report))) {
                Make(*report);
            }
            continue;
        }
        auto& message = std::get<Message>(each);
        if (!message.warning) {
            if (!adviser.TakeRefusedEnd()) {  // an IF without an ENDIF
                AddMessage(std::move(message), analysis);
            }
        } else if ((message.warning != Warning::condition &&
                    message.warning != Warning::lateLocation) ||
                   !refusedLines.contains({message.place.file, message.place.line})) {
            AddWarning(*warnings, std::move(message), analysis);
        }
    }
    if (leftOut && analysis->errorCount == 0) {  // a run that fails must report an error
        AddMessage(*std::move(leftOut), analysis);
    }
    RemoveExplained();
}

// Treats errors about uses of a label as consequences if the label is not a valid name, as in
// ".LOOP: NOP", or gets no value. The uses may precede the label.
void MessageMaker::ExpectRefusal(const SourcePlace& place) {
    const StatementView& statement = StatementAt(place);
    const std::string_view line = statement.line;
    if (statement.mnemonic == "EQU") {
        adviser.ExpectRefusal(statement.label);
    }
    const std::string_view word = line.substr(0, line.find_first_of(" \t:"));
    if (!IsNameText(word) && line.substr(word.size()).starts_with(':')) {
        adviser.ExpectRefusal(word);
    }
}

// Does the same for the label of "NAME; EQU 5", whose value is an address instead of 5.
void MessageMaker::ExpectHiddenValue(const SourcePlace& place) {
    const std::string line = Raised(TextOf(OpeningOf(place.file)).Line(place.line));
    const std::size_t end = line.find(';');
    const std::string hidden = " " + line.substr(end + 1);
    if (warnings->IsOn(Warning::hiddenInstruction) && CutStatement(hidden).mnemonic == "EQU") {
        adviser.ExpectRefusal(std::string_view(line).substr(0, end));
    }
}

// Removes warnings about label names that an error has already explained: they would report the
// same mistake again.
void MessageMaker::RemoveExplained() {
    const auto isExplained = [this](const Message& message) {
        const bool isAboutName =
            message.severity == Severity::warning &&
            (message.warning == Warning::registerLabel || message.warning == Warning::numberLabel);
        return isAboutName && explained.contains(message.detail);
    };
    if (!explained.empty()) {
        analysis->warningCount -= std::erase_if(analysis->messages, isExplained);
    }
}

void MessageMaker::Make(const Report& report) {
    Message message;
    message.severity =
        report.warning && !warnings->IsError(*report.warning) ? Severity::warning : Severity::error;
    if (!IsOpen()) {  // the message is only counted
        AddMessage(std::move(message), analysis);
        return;
    }
    message.number = report.number;
    message.code = "X" + std::to_string(report.number);
    message.text = MessageText(report.number);
    message.detail = DetailOf(report.text);
    message.opening = OpeningOf(report.place.file);
    message.warning = report.warning;
    const auto count = static_cast<std::int32_t>(statements.size());
    auto& [id, reports] =
        statements.try_emplace({report.place.file, report.place.line}, count, 0).first->second;
    // Limit per line: each piece of advice examines all operands, and nobody reads more messages.
    constexpr std::int32_t mostAdvised = 50;
    if (++reports > mostAdvised) {
        message.place = PlaceOf(report.place);
        AddMessage(std::move(message), analysis);
        return;
    }
    const StatementView& statement = StatementAt(report.place);
    if (HoldsWord("ENDIF ENDC", statement.label) && assembler->conditionDepth > 0) {
        message.severity = Severity::error;  // the IF that it should end is still open
    }
    const FaultView fault{.number = report.number,
                          .isError = message.severity == Severity::error,
                          .isLate = report.isLate,
                          .statement = statement,
                          .part = {report.place.offset, report.place.length},
                          .text = report.text,
                          .file = report.place.file,
                          .line = report.place.line,
                          .statementId = id,
                          .isSkipped = report.isSkipped,
                          .reason = report.reason};
    Advice advice = adviser.AdviceFor(fault);
    const bool isLeftOut = advice.isFollowOn;
    if (isLeftOut && (leftOut || !fault.isError)) {
        return;
    }
    Take(std::move(advice), report, &message);
    if (isLeftOut) {
        leftOut = std::move(message);
    } else {
        AddMessage(std::move(message), analysis);
    }
}

void MessageMaker::Take(Advice advice, const Report& report, Message* message) {
    SourcePlace place = report.place;
    if (advice.place) {
        place.offset = advice.place->offset;
        place.length = advice.place->length;
    }
    message->place = PlaceOf(place);
    message->note = std::move(advice.note);
    if (advice.first.file != 0) {
        message->related.push_back({PlaceOf(advice.first), "the first definition"});
    }
    for (const std::string& name : advice.explains) {
        explained.insert(Quoted(name));  // like the detail of a warning
    }
    if (report.number == MSG_LABEL_WITHOUT_COLON &&
        message->warning != Warning::labelWithoutColon) {
        message->text = RowOf(*message->warning).meaning;
        message->code = RowOf(*message->warning).name;
        if (message->warning == Warning::keywordLabel) {
            message->note = "indent it, or end it with a colon if it is a label";
        }
    } else if (message->warning == Warning::orgGap) {
        message->note = "remove one ORG: the image is loaded at the address of the first";
    }
    if (!advice.text.empty()) {
        message->text = std::move(advice.text);
        message->detail.clear();
    }
    if (!isOneLine) {  // offsets in the line are not columns
        return;
    }
    for (TextEdit& edit : advice.edits) {
        const Place part{message->place.file, place.line, edit.part.offset, edit.part.length};
        message->edits.push_back({part, std::move(edit.text)});
    }
    if (!advice.newName.empty() && !message->edits.empty()) {
        AddUses(advice, message);
    }
}

// Also replaces all other uses of the name. If there are too many lines to search, a label's edits
// are dropped.
void MessageMaker::AddUses(const Advice& advice, Message* message) {
    const Place at = message->place;
    const std::string& name = advice.names.front();
    const bool isLocal = name.starts_with('.') || name.ends_with('$');
    for (std::int32_t file = 0; std::cmp_less(file, analysis->files.size()); ++file) {
        const SourceFile& source = analysis->files[static_cast<std::size_t>(file)];
        if (source.isBinary || (isLocal && file != at.file)) {
            continue;
        }
        for (const Place& use : FindUses(*source.text, file, name, at.line, &renameBudget)) {
            if (use != message->edits[0].place) {
                message->edits.push_back({use, advice.newName});
            }
        }
    }
    if (renameBudget < 0 && message->number != MSG_UNRESOLVED) {
        message->edits.clear();
    }
}

void MessageMaker::Warn(Warning warning, const Place& place, std::int32_t opening,
                        std::string detail, std::string_view note) {
    Message message;
    message.warning = warning;
    message.place = place;
    message.opening = opening;
    message.detail = std::move(detail);
    message.note = note;
    Add(std::move(message));
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
        isOneLine = lines.lastLine == place.line &&
                    Raised(typed.substr(0, viewedLine.size())) == viewedLine;
        view = CutStatement(viewedLine, isOneLine ? typed : std::string_view());
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

const std::string& MessageMaker::PathInHand() const {
    return TextOf(OpeningOf(viewedPlace.file)).Path();
}

std::optional<KnownName> MessageMaker::FindName(std::string_view name) const {
    const CIdentifier* const record = assembler->identifiers.Find(name);
    if (record == nullptr) {
        return std::nullopt;
    }
    KnownName known;
    known.hasValue = (record->flags & IDF_RESOLVED) != 0;
    known.value = record->value;
    known.isCommandLine = record->file == 0;
    if (record->file != 0) {
        const Opening& opening =
            analysis->openings[static_cast<std::size_t>(OpeningOf(record->file))];
        known.where = analysis->LineName({opening.file, record->line});
        known.definition = {
            .file = record->file, .line = record->line, .length = record->nameLength};
        known.isHere = &TextOf(OpeningOf(record->file)) == &TextOf(OpeningOf(viewedPlace.file)) &&
                       record->line == viewedPlace.line;
        if (!known.hasValue && (record->flags & IDF_EQU) != 0) {
            known.waitingLine = LogicalLineAt(TextOf(OpeningOf(record->file)), record->line).text;
        }
    }
    return known;
}

std::int32_t MessageMaker::FindLine(std::string_view text, std::size_t column) const {
    const StoredText& stored = TextOf(OpeningOf(viewedPlace.file));
    std::int32_t line = viewedPlace.line;
    const std::pair key(viewedPlace.file, std::string(text));
    const auto absent = absentFrom.find(key);
    if (absent != absentFrom.end() && absent->second <= line) {
        return 0;
    }
    for (; line <= stored.LineCount(); ++line, column = 0) {
        if (stored.Line(line).find(text, column) != std::string_view::npos) {
            return line;
        }
    }
    absentFrom.insert_or_assign(key, viewedPlace.line + 1);
    return 0;
}

bool MessageMaker::HasFile(std::string_view name) const {
    return store->Has(PathInHand(), name);
}

std::string MessageMaker::SearchedDirectories() const {
    std::string text;
    for (const std::string& directory : store->SearchedDirectories(PathInHand())) {
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
