/// Listens to a run: turns its reports into messages with a place and a hint, gives the warnings
/// that the core has no list for, and keeps what the outputs need.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "driver/run_observer.h"
#include "frontend/line_parts.h"
#include "frontend/messages.h"
#include "frontend/warnings.h"

namespace korv {

class CAssembler;
struct lsArg;

/// A statement in the image.
struct StatementRecord {
    std::int32_t file;
    std::int32_t line;        ///< first physical line
    std::uint32_t lineCount;  ///< physical lines
    std::uint32_t address;    ///< of its first byte, for the program
    std::uint32_t offset;     ///< of its first byte, in the image
    std::uint32_t count;      ///< of its bytes
};

/// A part of the image that lies in one piece for the program, within the 64 KiB of its addresses.
struct Block {
    std::uint32_t address;
    std::uint32_t offset;
    std::uint32_t count;
    MessagePlace place;  ///< of its first statement
};

class RunWatch : public RunObserver {
  public:
    struct Settings {
        WarningChoice warnings;
        std::vector<std::string> defines;  ///< NAME or NAME=EXPRESSION
        std::uint64_t maxImage = 65536;    ///< bytes
        bool keepsRecords = false;
        bool followsOrg = false;  ///< the format has gaps
    };
    /// Neither is owned. The run must not have begun.
    RunWatch(CAssembler* assembler, Messages* messages, Settings settings);

    /// To be called when the run is over: gives what could only be said then.
    void Finish();

    /// Why a definition of `Settings` cannot be made; empty: it was.
    [[nodiscard]] const std::string& DefineFailure() const { return defineFailure; }
    /// Whether the main file could not be read.
    [[nodiscard]] bool IsWithoutSource() const { return isWithoutSource; }
    /// The files that were read, by their full paths, each once.
    [[nodiscard]] const std::vector<std::string>& Files() const { return files; }
    [[nodiscard]] const std::vector<StatementRecord>& Records() const { return records; }
    /// The blocks of the image, in the order of the source; warns of those that overlap.
    std::vector<Block> Blocks();

    void OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                   const SourcePlace& place) override;
    void OnStart() override;
    void OnFile(const std::string& path, std::int32_t number, CStatement* statement) override;
    void OnFileEnd() override;
    void OnIncludedBytes(const std::string& path) override;
    void OnStatement(CStatement& statement, std::uint32_t lineCount) override;

  private:
    // A report as it came from the core.
    struct Report {
        std::optional<Warning> warning;  // none: it is an error
        std::int32_t number;
        std::string text;
        MessagePlace place;
        CStatement* statement;  // null: its line is not being assembled
        std::string_view view;  // the text as it was given; perhaps a part of the line
    };
    // An open IF.
    struct Level {
        MessagePlace place;
        bool isLive;         // what it holds now is to be assembled, by all levels around it too
        bool isLiveOutside;  // the same for the IF itself
    };

    // The statement being assembled; null outside of files.
    [[nodiscard]] CStatement* Live() const {
        return statements.empty() ? nullptr : statements.back();
    }
    std::string Define(std::string_view define);
    void Stop();
    void StopAtSize(const CStatement& statement);
    void Record(const CStatement& statement, std::uint32_t lineCount, std::uint32_t count);
    void Print(const Report& report);
    // Gives a warning of our own, about `part` of the line or, if it is empty, its instruction.
    void Warn(Warning warning, const MessagePlace& place, std::string detail,
              std::string_view note);
    void WarnAbout(Warning warning, const CStatement& statement, std::string_view part,
                   std::string detail, std::string_view note);

    // `part` is a view of the line.
    static MessagePlace PlaceIn(const CStatement& statement, std::string_view part);

    void CheckOverlaps(std::vector<Block> blocks);

    // In statement_checks.cpp.
    void CheckLabel(const CStatement& statement);
    void CheckOperands(CStatement* statement, std::span<const std::uint8_t> bytes);
    void CheckOperand(const CStatement& statement, const lsArg& arg);
    void CheckEnd(const CStatement& statement);
    void CheckBytes(std::int32_t file);
    void CheckComment(const CStatement& statement);
    void CheckOrg(const CStatement& statement);
    void CheckConditions(const CStatement& statement);

    CAssembler* assembler;
    Messages* messages;
    Settings settings;
    std::string defineFailure;
    std::string failureText;  // of the definition being made
    bool isDefining = false;
    bool isWithoutSource = false;
    bool isStopped = false;
    bool isFaulty = false;        // the statement in hand has been reported, so its bytes are known
                                  // not to be what it says
    std::uint32_t imageSize = 0;  // after the last statement
    std::int32_t wasAssembling = 1;
    std::int32_t levelCount = 0;  // of `levels`
    std::vector<Level> levels;
    std::vector<CStatement*> statements;  // of the open files, the last one's is being assembled
    std::vector<std::string> files;
    std::set<std::string> seenFiles;
    std::vector<std::int32_t> sources;  // the numbers of `files`, of those that were assembled
    std::vector<const CStatement*> includes;  // those in hand, which have their records
    std::vector<StatementRecord> records;
    std::vector<Report> unresolved;  // at the end of the run, to be sorted
};

}  // namespace korv
