// Observes a run. Reports are kept until their statement has been assembled, because the first
// report may be a consequence of a later one. Reports that are only consequences of another are
// then dropped; the others become messages with a place in the file and a note.

#include "frontend/analyser.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "codegen/handlers.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "expr/tmp_string.h"
#include "frontend/definition.h"
#include "frontend/file_store.h"
#include "frontend/message_maker.h"
#include "frontend/name_collector.h"
#include "frontend/program_checks.h"
#include "frontend/statement_checks.h"
#include "frontend/statement_record.h"

namespace korv {
namespace {

LoadHeader HeaderOf(const CAssembler::LoadHeader& bytes) {
    const auto word = [&bytes](std::size_t at) {
        return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8);
    };
    return {word(1), word(3), word(5)};
}

// More than any real program opens. A file that includes itself several times could be opened
// millions of times.
constexpr std::size_t maxOpenings = 65536;

class Analyser : public RunObserver {
  public:
    Analyser(const Options& options, FileStore* store, const Wanted& wanted);
    Analysis Run();

    void OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                   const SourcePlace& place) override;
    void OnStart() override;
    void OnFile(const std::string& path, std::int32_t number, CStatement* statement) override;
    void OnFileEnd() override;
    void OnIncludedBytes(const std::string& path) override;
    void OnStatement(CStatement& statement, std::uint32_t lineCount) override;

  private:
    // A source file that is being read.
    struct Level {
        CStatement* statement;  // the current one
        std::int32_t opening;
        std::vector<Report> reports = {};  // about that statement
        bool isRecorded = false;           // `statement` is an INCLUDE that has been recorded
        bool isFaulty = false;  // `statement` has an error, or a warning about its bytes or address
    };
    void Stop(const CStatement& statement, std::string text, std::string code, std::string note);
    void StopAtLimit(const CStatement& statement);
    std::int32_t FileAt(const std::string& path, bool isBinary);
    void AddFileUse(const CStatement& statement, std::int32_t file);
    std::optional<Warning> WarningFor(std::int32_t number, const CStatement* statement) const;
    void TakeReports(Level* level);
    void Record(const CStatement& statement, std::uint32_t lineCount, std::uint32_t count);
    void TakeStatement(CStatement* statement, std::uint32_t lineCount, std::uint32_t count,
                       bool isOdd);
    void Finish();

    const Options& options;
    const Wanted wanted;
    FileStore* const store;
    Analysis analysis;
    CAssembler assembler;
    MessageMaker maker;
    StatementChecks checks;
    BlockBuilder blocks;
    std::vector<Level> levels;  // the statement of the last one is being assembled
    std::unordered_map<std::string, std::int32_t> fileIndex;  // by full path
    NameCollector names{&assembler.identifiers};
    std::vector<Report> unresolved;         // found at the end of the run
    std::string defineFailure;              // reported for the current -D
    bool isDefining = true;                 // until all -D have been taken
    bool isStopped = false;                 // after an error that explains all later reports
    std::uint32_t imageSize = 0;            // after the last statement
    bool isNextWanted = wanted.statements;  // `TakeStatement` must see the current statement
};

Analyser::Analyser(const Options& options, FileStore* store, const Wanted& wanted)
    : options(options),
      wanted(wanted),
      store(store),
      assembler(stderr),
      maker(&analysis, &assembler, store, &options.warnings),
      checks(options, &assembler, &maker) {
    analysis.errorLimit = options.maxErrors;
    assembler.sources = store;
    assembler.sourceName = options.source;
    assembler.maxImage = static_cast<std::uint32_t>(options.maxImage);
    assembler.SetLineBufferSize(static_cast<std::int32_t>(options.lineLength));
    assembler.flags.Set((options.hasFreeNames ? 0 : RF_SYSTEM_IDS) |
                        (options.format == ImageFormat::bin ? RF_BINARY : 0));
    assembler.Observe(this);
}

Analysis Analyser::Run() {
    assembler.AssembleSource();
    Finish();
    assembler.identifiers.ReleasePatches();  // they hold temporary strings
    CtmpStringManager::ReleaseAll();
    return std::move(analysis);
}

void Analyser::OnStart() {
    assembler.statementAddress = assembler.location;  // the value of $
    for (const std::string& define : options.defines) {
        std::string reason = AddDefinition(define, &assembler);
        if (reason.empty()) {
            reason = defineFailure;
        }
        if (!reason.empty()) {
            analysis.failure = "-D " + define + ": " + reason;
            isStopped = true;
            assembler.flags.Set(RF_END);
            break;
        }
    }
    isDefining = false;
}

// Ends the run with an error about `statement`.
void Analyser::Stop(const CStatement& statement, std::string text, std::string code,
                    std::string note) {
    Message message;
    message.place = maker.PlaceOf({statement.fileName, statement.lineNumber});
    message.opening = maker.OpeningOf(statement.fileName);
    message.text = std::move(text);
    message.code = std::move(code);
    message.note = std::move(note);
    maker.Add(std::move(message));
    isStopped = true;
    assembler.flags.Set(RF_END);
}

void Analyser::StopAtLimit(const CStatement& statement) {
    Stop(statement,
         "the image is longer than " + std::to_string(options.maxImage) +
             (options.maxImage == 1 ? " byte" : " bytes"),
         "max-image", "use --max-image to allow another length");
}

// The index in `analysis.files` of the file at `path`. A file is added when it is first used.
std::int32_t Analyser::FileAt(const std::string& path, bool isBinary) {
    const auto [found, isNew] =
        fileIndex.emplace(path, static_cast<std::int32_t>(analysis.files.size()));
    if (isNew) {
        const bool isInput = analysis.files.empty() && options.source == standardStream;
        analysis.files.push_back(
            {store->TextOf(path), isInput ? "<stdin>" : store->ShownName(path), isBinary, isInput});
    }
    SourceFile& file = analysis.files[static_cast<std::size_t>(found->second)];
    file.isBinary = file.isBinary && isBinary;
    return found->second;
}

void Analyser::OnFile(const std::string& path, std::int32_t number, CStatement* statement) {
    Opening opening;
    opening.file = FileAt(path, /*isBinary=*/false);
    if (!levels.empty()) {
        Level& outer = levels.back();
        opening.includer = outer.opening;
        opening.includedAt =
            maker.PlaceOf({outer.statement->fileName, outer.statement->lineNumber});
        if (wanted.statements) {
            Record(*outer.statement, 1, 0);
            outer.isRecorded = true;
        }
        AddFileUse(*outer.statement, opening.file);
        if (analysis.openings.size() == maxOpenings) {
            Stop(*outer.statement, "too many files are included", "max-files",
                 "check whether a file includes itself");
        }
    }
    levels.push_back({statement, maker.AddOpening(number, opening)});
}

void Analyser::OnFileEnd() {
    Level& level = levels.back();
    TakeReports(&level);
    if (levels.size() > 1 && assembler.flags.Has(RF_END) && !isStopped) {
        // The statement is either END itself or an INCLUDE whose file contained it.
        if (CutStatement(level.statement->text).keyword->handler == AssembleEnd) {
            checks.Warn(*level.statement,
                        {{Warning::earlyEnd, {}, "", "use END in the main file only"}});
        }
    }
    levels.pop_back();
    isNextWanted = true;  // the INCLUDE is still to be processed
}

void Analyser::OnIncludedBytes(const std::string& path) {
    AddFileUse(*levels.back().statement, FileAt(path, /*isBinary=*/true));
}

// Records that `statement` uses `file`, which its operand names.
void Analyser::AddFileUse(const CStatement& statement, std::int32_t file) {
    const std::string_view name = CutStatement(statement.text).rest;
    analysis.fileUses.push_back({maker.PlaceOf(statement.PlaceOf(name)), file});
}

void Analyser::OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                         const SourcePlace& place) {
    if (isDefining) {
        defineFailure = MessageText(number);
        return;
    }
    if (isStopped) {
        return;
    }
    if (place.file == 0) {  // only if the main file cannot be read
        analysis.failure = "cannot read " + options.source + ": " + store->Failure();
        return;
    }
    const CStatement* const live = levels.empty() ? nullptr : levels.back().statement;
    const bool isLate =
        live == nullptr || place.file != live->fileName || place.line != live->lineNumber;
    const bool isWarning = kind == ML_WARNING;
    const std::optional<Warning> warning =
        isWarning ? WarningFor(number, live) : std::optional<Warning>();
    isNextWanted = true;
    if (!isLate && (!isWarning || warning == Warning::range || number == MSG_ORG_AFTER_CODE)) {
        levels.back().isFaulty = true;
    }
    if (warning && !options.warnings.IsOn(*warning)) {
        return;
    }
    Report report{.isWarning = isWarning,
                  .number = number,
                  .text = std::string(text),
                  .place = place,
                  .isLate = isLate};
    report.warning = warning;
    report.isSkipped = assembler.assembling == 0;
    if (number == MSG_CANNOT_OPEN) {
        report.reason = store->Failure();
    }
    if (live != nullptr) {
        levels.back().reports.push_back(std::move(report));
    } else {
        unresolved.push_back(std::move(report));
    }
}

// The front end's name for the core's warning `number`. `statement` is the current one, or null
// at the end of the run.
std::optional<Warning> Analyser::WarningFor(std::int32_t number,
                                            const CStatement* statement) const {
    if (number == MSG_LABEL_WITHOUT_COLON) {
        if (FindKeyword(statement->label) != nullptr) {
            return Warning::keywordLabel;
        }
        const StoredText& text = maker.TextOf(maker.OpeningOf(statement->fileName));
        if (HidesInstruction(text.Line(statement->lineNumber), statement->label)) {
            return Warning::hiddenInstruction;
        }
    }
    if (number == MSG_ORG_IN_CODE && assembler.binary.Position() == 0 &&
        assembler.startAddress != static_cast<std::int32_t>(assembler.location)) {
        return Warning::orgGap;  // the load header keeps the address of the first ORG
    }
    return WarningOf(number);
}

// Passes the reports about the statement of `level` to `maker`, now that all of them are known.
void Analyser::TakeReports(Level* level) {
    const auto isError = [](const Report& report) { return !report.isWarning && !report.isLate; };
    const bool hasError = std::ranges::any_of(level->reports, isError);
    for (Report& report : level->reports) {
        // If the line has an error, the missing colon is only a consequence.
        if (!hasError || report.number != MSG_LABEL_WITHOUT_COLON) {
            maker.Add(std::move(report));
        }
    }
    level->reports.clear();
}

// Adds the record of a statement that has been assembled. An INCLUDE is recorded before its file is
// read, so that its record precedes those of the file.
void Analyser::Record(const CStatement& statement, std::uint32_t lineCount, std::uint32_t count) {
    const std::string_view mnemonic = MnemonicOf(statement);
    const Keyword* const keyword = FindKeyword(mnemonic);
    const Statement record{
        .opening = maker.OpeningOf(statement.fileName),
        .line = statement.lineNumber,
        .lineCount = std::max(lineCount, 1U),  // the last line may lack a line feed
        .address = assembler.location - count,
        .offset = imageSize - count,
        .count = count,
        .kind = KindOf(statement, mnemonic, keyword),
        .isSkipped = assembler.assembling == 0 && !checks.Conditions().HasChanged(assembler),
        .keyword = keyword};
    analysis.statements.push_back(record);
    blocks.Add(record.address, record.offset, count, {maker.FileOf(record.opening), record.line},
               record.opening);
}

// Called for every statement. Most need no further work, so this path must be short: 20 more
// instructions here make a run 4 % longer.
void Analyser::OnStatement(CStatement& statement, std::uint32_t lineCount) {
    const std::uint32_t count = assembler.binary.Position() - imageSize;
    imageSize += count;
    const bool isOdd = statement.text[0] != '\0' && checks.MayBeOdd(statement, count);
    if (isOdd || isNextWanted || lineCount > 1 || imageSize > options.maxImage) {
        TakeStatement(&statement, lineCount, count, isOdd);
    }
}

[[gnu::noinline]] void Analyser::TakeStatement(CStatement* statement, std::uint32_t lineCount,
                                               std::uint32_t count, bool isOdd) {
    Level& level = levels.back();
    const bool isFaulty = std::exchange(level.isFaulty, false);
    if (wanted.statements && !std::exchange(level.isRecorded, false)) {
        Record(*statement, lineCount, count);
        if (wanted.uses || wanted.useCounts) {
            names.AddUses(*statement, analysis.statements.back().keyword, isFaulty,
                          wanted.uses ? &maker : nullptr);
        }
    }
    TakeReports(&level);
    if (lineCount > 1) {
        checks.LookAtComments(*statement);
    }
    if (isOdd) {
        checks.Look(statement, count, isFaulty);
    }
    if (imageSize > options.maxImage && !isStopped) {
        StopAtLimit(*statement);
    }
    isNextWanted = wanted.statements;
}

// Adds the messages that need the whole program, and completes the analysis.
void Analyser::Finish() {
    if (!isStopped) {
        std::ranges::sort(unresolved, {}, [](const Report& report) {
            return std::tuple(report.place.file, report.place.line, report.place.offset,
                              report.text);
        });
        std::ranges::for_each(unresolved, [this](const Report& report) { maker.Add(report); });
        std::unordered_set<std::int32_t> checked;
        for (std::size_t i = 0; i < analysis.openings.size(); ++i) {
            const auto opening = static_cast<std::int32_t>(i);
            if (checked.insert(analysis.openings[i].file).second) {
                checks.LookAtBytes(opening);
            }
        }
        checks.LookAtOpenConditions();
    }
    maker.Finish();
    const auto bytes = assembler.binary.Bytes();
    analysis.image.assign(bytes.begin(), bytes.end());
    analysis.header = HeaderOf(assembler.MakeLoadHeader());
    analysis.blocks = blocks.Take();
    if (wanted.names) {
        analysis.names = names.Take(&maker);
    }
    // Intel HEX and SLD files contain addresses, so an address that is used twice is ambiguous.
    if (options.format == ImageFormat::hex || !options.debug.empty()) {
        for (Message& message : OverlapWarnings(analysis)) {
            message.place = maker.PlaceOf({maker.NumberOf(message.opening), message.place.line});
            AddWarning(options.warnings, std::move(message), &analysis);
        }
    }
    if (!isStopped) {
        for (Message& message : UnusedLabelWarnings(analysis)) {
            AddWarning(options.warnings, std::move(message), &analysis);
        }
    }
}

}  // namespace

Analysis Analyse(const Options& options, FileStore* store, const Wanted& wanted) {
    return Analyser(options, store, wanted).Run();
}

}  // namespace korv
