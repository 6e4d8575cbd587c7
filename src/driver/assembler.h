/// The object that holds the state of a run. All handlers, managers and readers get what they need
/// through this object.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "codegen/bin_block.h"
#include "diagnostics/message_list.h"
#include "driver/debug_stream.h"
#include "driver/disk_store.h"
#include "driver/statement.h"
#include "source/file_name_registry.h"
#include "symbols/identifier_manager.h"

namespace korv {

class RunObserver;

// clang-format off
inline constexpr std::uint32_t RF_ABORT           = 0x0001;  ///< stop after the current statement
inline constexpr std::uint32_t RF_DEBUG           = 0x0002;  ///< collect the debug stream, write Debug.Out
inline constexpr std::uint32_t RF_DEBUG_SYMBOLS   = 0x0004;  ///< ... with events of identifiers and files
inline constexpr std::uint32_t RF_NO_DEBUG_RECORD = 0x0008;  ///< the current statement gets no debug record
inline constexpr std::uint32_t RF_LABELS          = 0x0010;  ///< write Labels.Out
inline constexpr std::uint32_t RF_PROGRESS        = 0x0040;  ///< show the progress meter
inline constexpr std::uint32_t RF_TIME            = 0x0080;  ///< print the time display
inline constexpr std::uint32_t RF_MESSAGES        = 0x0100;  ///< print the result messages
inline constexpr std::uint32_t RF_END             = 0x0200;  ///< END was executed: all reading stops
inline constexpr std::uint32_t RF_NO_WARNINGS     = 0x0400;  ///< warnings are collected, not printed
inline constexpr std::uint32_t RF_BINARY          = 0x0800;  ///< .bin target with a load header
inline constexpr std::uint32_t RF_MACRO_BODY      = 0x1000;  ///< a macro body is being recorded; never set
inline constexpr std::uint32_t RF_SYSTEM_IDS      = 0x2000;  ///< load the reserved words
inline constexpr std::uint32_t RF_SETTLED         = 0x4000;  ///< the target is written or refused: too late to abort
inline constexpr std::uint32_t RF_OBSERVED        = 0x8000;  ///< there is an observer
// clang-format on

/// The flags word. A console event may set a bit at any moment, so every change is one atomic
/// operation. These operations order no other memory accesses: only the bits themselves matter.
class FlagsWord {
  public:
    [[nodiscard]] std::uint32_t Load() const { return bits.load(std::memory_order_relaxed); }
    [[nodiscard]] bool Has(std::uint32_t mask) const { return (Load() & mask) != 0; }
    /// Both return the previous bits.
    std::uint32_t Set(std::uint32_t mask) { return bits.fetch_or(mask, std::memory_order_relaxed); }
    std::uint32_t Clear(std::uint32_t mask) {
        return bits.fetch_and(~mask, std::memory_order_relaxed);
    }

  private:
    std::atomic<std::uint32_t> bits{0};
    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
};

/// The maximum number of source files open at a time, including the main file.
inline constexpr std::int32_t maxFileDepthAllowed = 10;
/// The maximum number of open levels of IF.
inline constexpr std::int32_t maxConditions = 32;
/// The load addresses of a .com image, and of a .bin image if no ORG has set its start.
inline constexpr std::uint32_t comStart = 256;
inline constexpr std::uint32_t binaryStart = 16384;

/// Means that no ORG has set the start of the target.
inline constexpr std::int32_t noStartAddress = -1;

/// The numbers that the progress meter needs, in bytes of source. Both wrap if the source is larger
/// than 4 GiB.
struct Meter {
    std::uint32_t bytesRead = 0;   ///< consumed; set by the loop
    std::uint32_t bytesTotal = 0;  ///< sizes of all files opened; set by include files
};

class CAssembler {
  public:
    /// Prepares a run that prints to `stream` and keeps the first `maxMessages` errors and the
    /// first `maxMessages` warnings. `stream` is not owned.
    explicit CAssembler(std::FILE* stream, std::int32_t maxMessages = 50);
    /// Prints the time display if RF_TIME is set, and flushes all output streams.
    virtual ~CAssembler();

    // ---- driver/run.cpp: the run

    /// These set a size in bytes if `n` is above 0.
    void SetFileBufferSize(std::int32_t n) {
        fileBufferSize = n > 0 ? static_cast<std::uint32_t>(n) : fileBufferSize;
    }
    void SetLineBufferSize(std::int32_t n) { lineBufferSize = n > 0 ? n : lineBufferSize; }
    /// Runs with the flags given by the letters of `flagString` (see driver/command_line.h). An
    /// empty `source` means "Main.Kor"; an empty `target` is derived from the source. Result: as
    /// for `Run`.
    std::int32_t RunFromCommandLine(std::string_view source, std::string_view target,
                                    std::string_view flagString);
    /// Assembles `sourceName`. May be called only once. Result: always 0.
    std::int32_t Run();

    /// Called by a front end, which handles names, reports and outputs itself. `newObserver` is
    /// notified of the steps of the run; it is not owned. `AssembleSource` then does everything
    /// that depends on the source, up to the last message.
    void Observe(RunObserver* newObserver);
    void AssembleSource();

    // ---- driver/statement_loop.cpp

    /// Assembles the statements of `file` until the file ends or something stops the run. Result:
    /// the number of the next line.
    std::int32_t RunStatements(CSourceFile* file, CStatement* statement);

    // ---- driver/reports.cpp: the results of a run

    void WriteDebugFile();
    void ReportErrors();
    void ReportWarnings();
    void WriteLabelFile();
    void ReportCounts();
    void WriteTarget();
    /// The header of a binary target: a mark, the load address, the last address, the start of the
    /// program.
    using LoadHeader = std::array<std::uint8_t, 7>;
    /// The program starts at the value of the identifier EXEC if it is defined, and EXEC is then
    /// marked as used. Otherwise, the program starts at the load address.
    [[nodiscard]] LoadHeader MakeLoadHeader();
    /// Prints the progress meter.
    virtual void Progress();
    /// Prints the state of the run and its memory use to `stream`; null means the stream of the
    /// run. Result: always 0.
    std::int32_t StatusDump(std::FILE* stream);

    // ---- source/include_files.cpp

    /// Enters, assembles and leaves the source file `name`, either the main file or an included
    /// one. Result: 0, or the reason why the file could not be opened: MSG_CANNOT_OPEN or
    /// MSG_OUT_OF_MEMORY.
    Status AssembleIncludeFile(std::string_view name);

    // ---- expr/scanner.cpp

    /// Evaluates the expression `text`. Result: 0 with the value; MSG_UNRESOLVED if a name has no
    /// value yet; MSG_BAD_EXPRESSION; MSG_GENERAL_FAILURE for a number without digits;
    /// MSG_TOO_COMPLEX for too many nodes; MSG_BAD_NUMBER for a number above 65535. `value` is 0
    /// unless the result is 0. `fault` is a view of the token in `text` at which the evaluation
    /// failed. It is empty if the calculation failed. If `text` lacks the closing quote of a name,
    /// `fault` is valid only until the next scan.
    [[nodiscard]] Status ScanExpression(std::string_view text, std::int32_t* value,
                                        std::string_view* fault);
    /// Like `ScanExpression`, for a text that is one token (see expr/token.h). `value` is set only
    /// if the result is 0.
    [[nodiscard]] Status ParseValue(std::string_view token, std::int32_t* value);

    // ---- symbols/system_identifiers.cpp

    /// Enters the version identifiers. Also reserves `reservedWords` if RF_SYSTEM_IDS is set.
    void LoadSystemIdentifiers();

    // ---- emission

    /// These append to the image and advance `location`; no other code appends. Bits beyond the
    /// width are dropped. Result: the offset of the first byte in the image, for a patch.
    [[gnu::always_inline]] std::uint32_t EmitByte(std::int32_t value) {
        ++location;
        return binary.PutByte(value);
    }
    /// Emits `prefix`, unless it is 0, and then an opcode. Result: 0, so that a handler can return
    /// it.
    Status EmitOpcode(std::uint8_t prefix, std::int32_t opcode) {
        if (prefix != 0) {
            EmitByte(prefix);
        }
        EmitByte(opcode);
        return 0;
    }
    std::uint32_t EmitWord(std::int32_t value) {
        location += 2;
        return binary.PutWord(value);
    }
    /// Emits `bytes`, but stops when the image is one byte longer than `maxImage`.
    std::uint32_t EmitBytes(std::span<const std::uint8_t> bytes) {
        bytes = bytes.first(Fitting(bytes.size()));
        location += static_cast<std::uint32_t>(bytes.size());
        return binary.PutBytes(bytes);
    }
    std::uint32_t EmitZeros(std::uint32_t count) {
        count = static_cast<std::uint32_t>(Fitting(count));
        location += count;
        return binary.PutZeros(count);
    }

    /// These report a message about `part` of the line of `statement`, with `text` in brackets.
    [[gnu::cold]] void ReportError(const CStatement* statement, std::int32_t number,
                                   std::string_view text, std::string_view part);
    [[gnu::cold]] void ReportWarning(const CStatement* statement, std::int32_t number,
                                     std::string_view text, std::string_view part);
    /// These overloads report a message about the part `text`, and show it in brackets.
    void ReportError(const CStatement* statement, std::int32_t number, std::string_view text) {
        ReportError(statement, number, text, text);
    }
    void ReportWarning(const CStatement* statement, std::int32_t number, std::string_view text) {
        ReportWarning(statement, number, text, text);
    }

    // ---- the state of the run; "by" names the code that may write it

    /// RF_* bits; by driver, handlers, front end; RF_ABORT also by console events.
    FlagsWord flags;
    std::int32_t totalLines = 0;        ///< line counters of finished files; by include files
    std::int32_t fileDepth = 0;         ///< source files open now; by include files
    std::int32_t maxFileDepth = 0;      ///< highest `fileDepth` reached; by include files
    std::int32_t lineBufferSize = 256;  ///< longest logical line in bytes; by its setter
    std::int32_t assembling = 1;        ///< 0 while a condition skips statements; by conditions
    std::int32_t conditionDepth = 0;    ///< open levels of IF; by conditions
    /// A state byte for each open level; by conditions.
    std::array<std::uint8_t, maxConditions> conditionStack{};
    std::string sourceName;  ///< main source file, as typed; before the run
    std::string targetName;  ///< target file, given or derived; before the run
    /// Z80 address of the next byte; by emission, ORG and `AssembleSource`.
    std::uint32_t location = comStart;
    std::uint32_t statementAddress = 0;  ///< `location` at the start of the statement; by the loop
    /// Full path of the file being read, or null; owned by `fileNames`; by include files.
    const char* currentFileName = nullptr;
    RunObserver* observer = nullptr;  ///< not owned; null for none; by `Observe`
    DiskStore disk{&flags};
    SourceStore* sources = &disk;  ///< supplies all files that are read; not owned; by a front end
    CMessageList errors;           ///< all code that finds an error reports to it
    CMessageList warnings;         ///< all code that warns reports to it
    CFileNameRegistry fileNames;   ///< by include files
    std::FILE* output;             ///< receives all console reports; not owned; set once
    BinBlock binary;               ///< by emission and patches
    CIdentifierManager identifiers;
    DebugStream debugStream;      ///< with RF_DEBUG; by the loop and the traces
    std::string targetDirectory;  ///< of `targetName`, with its separator; by `AssembleSource`
    std::time_t startTime;        ///< for the time display; set once
    std::uint32_t fileBufferSize = 65536;  ///< limit of a read buffer in bytes; by its setter
    void* currentMacro = nullptr;          ///< the macro being recorded; no command records one
    std::int32_t startAddress = noStartAddress;  ///< of the target; by ORG
    /// The maximum size of the image in bytes; by a front end, which reports a larger image.
    std::uint32_t maxImage = std::numeric_limits<std::uint32_t>::max();
    Meter meter;  ///< by the loop and include files

  private:
    bool OpenOutput(platform::OutputFile* file, const std::string& name,
                    platform::OutputFile::Kind kind = platform::OutputFile::Kind::report);
    bool CommitOutput(platform::OutputFile* file, const std::string& name, bool isWhole = true);
    template <class Write>
    void WriteReport(const std::string& name, const char* complaint, const char* confirmation,
                     Write write);
    void PrintList(const CMessageList& list, const char* heading);
    [[nodiscard]] std::size_t Fitting(std::size_t count) const {
        const std::uint64_t limit = std::uint64_t{maxImage} + 1;
        return static_cast<std::size_t>(std::min<std::uint64_t>(
            count, limit - std::min<std::uint64_t>(limit, binary.Position())));
    }
    Status EnterFile(std::string_view name);
    Status OpenAndRun(const std::string& path, std::int32_t fileNumber);

    /// A token to which the scanner has added the missing closing quote.
    std::array<char, maxWord + 1> closedToken;
};

}  // namespace korv
