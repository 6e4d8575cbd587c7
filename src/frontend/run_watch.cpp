#include "frontend/run_watch.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "expr/number.h"
#include "frontend/concerned.h"
#include "frontend/hints.h"
#include "source/char_class.h"

namespace korv {
namespace {

// A part of `line` as a place; what is no part of it is its start.
MessagePlace PlaceOf(MessagePlace place, std::string_view line, std::string_view part) {
    if (part.data() >= line.data() && part.data() <= line.data() + line.size()) {
        place.offset = static_cast<std::size_t>(part.data() - line.data());
        place.length = part.size();
    }
    return place;
}

std::string TextOf(std::int32_t number) {
    return number < 0 ? "Illegal error number! (Internal error.)"
                      : MESSAGE_TABLE[static_cast<std::size_t>(number)].text;
}

// As the reader makes it of a line.
std::string RaisedOutsideStrings(std::string_view text) {
    std::string raised(text);
    bool isString = false;
    for (char& c : raised) {
        isString = isString != (c == '"');
        c = isString ? c : Raised(c);
    }
    return raised;
}

}  // namespace

RunWatch::RunWatch(CAssembler* assembler, Messages* messages, Settings newSettings)
    : assembler(assembler), messages(messages), settings(std::move(newSettings)) {
    assembler->Observe(this);
    assembler->maxImage = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(settings.maxImage, std::numeric_limits<std::uint32_t>::max()));
}

void RunWatch::OnStart() {
    assembler->statementAddress = assembler->location;  // for a $
    isDefining = true;
    for (const std::string& define : settings.defines) {
        std::string failure = Define(define);
        if (!failure.empty()) {
            defineFailure = "-D " + define + ": " + failure;
            Stop();
            break;
        }
    }
    isDefining = false;
}

// Result: why `define` cannot be made; empty: it has been.
std::string RunWatch::Define(std::string_view define) {
    const std::size_t sign = define.find('=');
    const std::string name = RaisedOutsideStrings(define.substr(0, sign));
    const auto isNamePart = [](char c) { return HasClass(c, CC_NAME); };
    std::int32_t value = 1;
    if (name.empty() || !std::ranges::all_of(name, isNamePart) || name.size() > maxWord ||
        ReadNumber(name, &value) != notANumber) {
        return "this is no name";
    }
    if (sign != std::string_view::npos) {
        const std::string expression = RaisedOutsideStrings(define.substr(sign + 1));
        UnresolvedName unresolved;
        const Status status = assembler->ScanExpression(expression, &value, &unresolved);
        if (status != 0) {
            return TextOf(status);
        }
    }
    failureText.clear();
    assembler->identifiers.AddID({.name = name, .place = {}, .value = value, .flags = IDS_EQU});
    return failureText;
}

// Nothing more is read, and what is still reported follows from that.
void RunWatch::Stop() {
    isStopped = true;
    assembler->flags.Set(RF_END);
}

void RunWatch::OnFile(const std::string& path, std::int32_t number, CStatement* statement) {
    if (seenFiles.insert(path).second) {
        files.push_back(path);
        sources.push_back(number);
    }
    MessagePlace place;
    if (const CStatement* const includer = Live()) {
        place.file = includer->fileName;
        place.line = includer->lineNumber;
        if (settings.keepsRecords) {
            Record(*includer, 1, 0);
            includes.push_back(includer);
        }
    }
    messages->AddFile(number, path, place);
    statements.push_back(statement);
}

void RunWatch::OnFileEnd() {
    if (statements.size() > 1 && assembler->flags.Has(RF_END) && !isStopped) {
        CheckEnd(*statements.back());
    }
    statements.pop_back();
}

// Keeps the record of a statement that has been assembled or, if it includes a file, of one that is
// yet to be, so that it stands before those of the file.
void RunWatch::Record(const CStatement& statement, std::uint32_t lineCount, std::uint32_t count) {
    if (!includes.empty() && includes.back() == &statement) {
        includes.pop_back();
        return;
    }
    records.push_back({statement.fileName, statement.lineNumber, lineCount,
                       assembler->location - count, imageSize, count});
}

void RunWatch::OnIncludedBytes(const std::string& path) {
    if (seenFiles.insert(path).second) {
        files.push_back(path);
    }
}

void RunWatch::StopAtSize(const CStatement& statement) {
    Message message;
    message.place = PlaceIn(statement, SplitLine(statement.text).word);
    message.text = "The image is longer than " + std::to_string(settings.maxImage) + " bytes.";
    message.code = "max-image";
    message.note = "--max-image allows another length";
    messages->Print(message);
    Stop();
}

void RunWatch::OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                         const SourcePlace& at) {
    if (isDefining) {
        failureText = TextOf(number);
        return;
    }
    if (isStopped) {
        return;
    }
    CStatement* const live = Live();
    if (number == MSG_CANNOT_OPEN && at.file == 0) {
        isWithoutSource = true;  // which needs no place
        return;
    }
    Report report{{}, number, std::string(text), {at.file, at.line}, live, text};
    if (live == nullptr || at.file != live->fileName || at.line != live->lineNumber ||
        number == MSG_LINE_TOO_LONG) {  // which leaves no text
        report.statement = nullptr;
    }
    if (kind == ML_WARNING) {
        report.warning = WarningOf(number);
        if (report.warning == Warning::labelWithoutColon && report.statement != nullptr &&
            FindKeyword(live->label) != nullptr) {
            report.warning = Warning::keywordLabel;
        }
    }
    if (number == MSG_ORG_IN_CODE && assembler->binary.Position() == 0 &&
        assembler->startAddress != static_cast<std::int32_t>(assembler->location)) {
        report.warning = Warning::orgGap;  // the header keeps the address of the first ORG
    }
    if (report.statement != nullptr &&
        (!report.warning || report.warning == Warning::range || number == MSG_ORG_AFTER_CODE)) {
        isFaulty = true;
    }
    if (report.warning && !settings.warnings.IsOn(*report.warning)) {
        return;
    }
    if (number == MSG_UNRESOLVED && live == nullptr) {
        unresolved.push_back(std::move(report));
    } else {
        Print(report);
    }
}

void RunWatch::Print(const Report& report) {
    LogicalLine source;
    std::string_view line;
    if (report.statement != nullptr) {
        line = report.statement->text;
    } else if (report.place.file != 0) {
        source = messages->texts.Of(report.place.file).Logical(report.place.line);
        line = source.text;
    }
    const LineParts parts = SplitLine(line);
    const bool isView = report.statement != nullptr && report.view.data() >= line.data() &&
                        report.view.data() < line.data() + line.size();
    const std::string_view concerned = isView ? report.view
                                       : report.statement != nullptr
                                           ? Concerned(report.statement, parts, report.number)
                                           : ConcernedByText(line, parts, report.text);
    Message message;
    message.place = PlaceOf(report.place, line, concerned);
    message.text = TextOf(report.number);
    message.detail = report.text;
    message.code = "X" + std::to_string(report.number);
    if (report.warning) {
        const bool isError = settings.warnings.IsError(*report.warning);
        message.severity = isError ? Severity::error : Severity::warning;
        if (report.warning == Warning::keywordLabel) {
            message.text = RowOf(Warning::keywordLabel).meaning;
            message.code = RowOf(Warning::keywordLabel).name;
            message.detail = parts.label;
        } else if (report.number == MSG_ORG_IN_CODE && *report.warning == Warning::orgGap) {
            message.note = "the image is loaded where the first ORG says";
        }
    } else if (messages->IsOpen()) {
        const Fault fault{report.number, parts, report.text.empty() ? concerned : report.text,
                          report.statement == nullptr};
        message.note = HintFor(assembler, *messages, fault);
    }
    messages->Print(message);
}

void RunWatch::Warn(Warning warning, const MessagePlace& place, std::string detail,
                    std::string_view note) {
    if (!settings.warnings.IsOn(warning)) {
        return;
    }
    Message message;
    message.severity = settings.warnings.IsError(warning) ? Severity::error : Severity::warning;
    message.place = place;
    message.text = RowOf(warning).meaning;
    message.detail = std::move(detail);
    message.code = RowOf(warning).name;
    message.note = note;
    messages->Print(message);
}

void RunWatch::WarnAbout(Warning warning, const CStatement& statement, std::string_view part,
                         std::string detail, std::string_view note) {
    const std::string_view about = part.empty() ? SplitLine(statement.text).word : part;
    Warn(warning, PlaceIn(statement, about), std::move(detail), note);
}

MessagePlace RunWatch::PlaceIn(const CStatement& statement, std::string_view part) {
    return PlaceOf({statement.fileName, statement.lineNumber}, statement.text, part);
}

std::vector<Block> RunWatch::Blocks() {
    constexpr std::uint32_t addresses = 0x10000;
    std::vector<Block> blocks;
    for (const StatementRecord& record : records) {
        for (std::uint32_t done = 0; done < record.count;) {
            const std::uint32_t address = (record.address + done) % addresses;
            const std::uint32_t count = std::min(record.count - done, addresses - address);
            if (blocks.empty() || blocks.back().address + blocks.back().count != address) {
                blocks.push_back({address, record.offset + done, 0, {record.file, record.line}});
            }
            blocks.back().count += count;
            done += count;
        }
    }
    CheckOverlaps(blocks);
    return blocks;
}

// Of two blocks that have addresses in common, the second one in the source is blamed.
void RunWatch::CheckOverlaps(std::vector<Block> blocks) {
    std::ranges::sort(blocks, {}, &Block::address);
    const Block* last = nullptr;  // the one that reaches furthest so far
    for (const Block& block : blocks) {
        if (last != nullptr && block.address < last->address + last->count) {
            const Block& second = block.offset > last->offset ? block : *last;
            const LogicalLine line =
                messages->texts.Of(second.place.file).Logical(second.place.line);
            char address[16];
            Warn(Warning::overlap, PlaceOf(second.place, line.text, SplitLine(line.text).word),
                 {address, PutHex(address, block.address, 4)}, "");
        }
        if (last == nullptr || block.address + block.count > last->address + last->count) {
            last = &block;
        }
    }
}

void RunWatch::Finish() {
    if (isStopped) {
        return;
    }
    std::ranges::sort(unresolved, {}, [](const Report& report) {
        return std::tuple(report.place.file, report.place.line, report.text);
    });
    for (const Report& report : unresolved) {
        Print(report);
    }
    for (const std::int32_t source : sources) {
        CheckBytes(source);
    }
    for (const Level& level : levels) {
        Message message;
        message.place = level.place;
        message.text = "This IF has no ENDIF.";
        message.code = "open-if";
        messages->Print(message);
    }
}

}  // namespace korv
