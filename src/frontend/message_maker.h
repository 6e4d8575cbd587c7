/// Makes the messages of an analysis from the core's reports and the findings of checks: finds
/// their places in the files, asks for advice, and counts them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "diagnostics/source_place.h"
#include "frontend/analysis.h"
#include "frontend/logical_line.h"
#include "frontend/notes.h"

namespace korv {

class CAssembler;
class FileStore;

/// A report from the core.
struct Report {
    bool isWarning = false;               ///< as the core classifies it
    std::optional<Warning> warning = {};  ///< its name in the front end; none: an error
    std::int32_t number = 0;              ///< row of MESSAGE_TABLE; negative: an internal error
    std::string text;                     ///< the detail; may be empty
    SourcePlace place;
    bool isLate = false;      ///< its line is not the one being assembled
    bool isSkipped = false;   ///< its line is not assembled, because of a condition
    std::string reason = {};  ///< why a file cannot be read, as the system puts it
};

/// The text of message `number` in the style of compilers: lower case, no full stop.
[[nodiscard]] std::string MessageText(std::int32_t number);

class MessageMaker : private RunFacts {
  public:
    /// Owns none of its arguments.
    MessageMaker(Analysis* analysis, CAssembler* assembler, FileStore* store,
                 const WarningChoice* warnings)
        : analysis(analysis),
          assembler(assembler),
          store(store),
          warnings(warnings),
          adviser(*this) {}

    /// Adds the opening of the core's file `number`. The core also numbers files that cannot be
    /// opened. Result: the index of the opening.
    std::int32_t AddOpening(std::int32_t number, const Opening& opening);
    /// Index in `openings` of the core's file `number`.
    [[nodiscard]] std::int32_t OpeningOf(std::int32_t number) const {
        return openingByNumber[static_cast<std::size_t>(number)];
    }

    /// Keeps a report, a message or a warning for `Finish`, since its note may depend on names that
    /// are defined later.
    void Add(Report report) { pending.emplace_back(std::move(report)); }
    void Add(Message message) { pending.emplace_back(std::move(message)); }
    void Warn(Warning warning, const Place& place, std::int32_t opening, std::string detail,
              std::string_view note);
    /// Removes the warnings about nested conditions after the IF at `place`, which has no ENDIF.
    void WithdrawNestedIf(const Place& place);
    /// Records that the rest of the source is skipped, so its names are not defined.
    void ExpectSkippedEnd() { adviser.ExpectSkippedEnd(); }
    /// Turns everything kept into messages, in the same order. Drops warnings that are off, and
    /// reports that are only consequences of others.
    void Finish();
    /// The place in the file that corresponds to `place`. A whole statement is marked by its
    /// mnemonic, or by its label if it has no mnemonic.
    [[nodiscard]] Place PlaceOf(const SourcePlace& place);
    /// The index in `files` of the file of `opening`.
    [[nodiscard]] std::int32_t FileOf(std::int32_t opening) const {
        return analysis->openings[static_cast<std::size_t>(opening)].file;
    }
    /// The stored text of opening `opening`.
    [[nodiscard]] const StoredText& TextOf(std::int32_t opening) const;
    /// True if another message would be kept.
    [[nodiscard]] bool IsOpen() const {
        return analysis->errorLimit == 0 || analysis->errorCount < analysis->errorLimit;
    }

    /// The core's number for the file of opening `opening`.
    [[nodiscard]] std::int32_t NumberOf(std::int32_t opening) const {
        return numberByOpening[static_cast<std::size_t>(opening)];
    }

    PlaceMap places;

  private:
    std::optional<KnownName> FindName(std::string_view name) const override;
    bool HasFile(std::string_view name) const override;
    std::int32_t FindLine(std::string_view text, std::size_t column) const override;
    std::string SearchedDirectories() const override;
    std::vector<std::string_view> DefinedNames() const override;

    void Make(const Report& report);
    void RemoveExplained();
    void ExpectHiddenValue(const SourcePlace& place);
    void ExpectRefusal(const SourcePlace& place);
    void Take(Advice advice, const Report& report, Message* message);
    void AddUses(const Advice& advice, Message* message);
    // The statement at `place`, split only once for all its messages.
    const StatementView& StatementAt(const SourcePlace& place);
    // Full path of the file of the statement in `view`.
    [[nodiscard]] const std::string& PathInHand() const;

    Analysis* analysis;
    CAssembler* assembler;
    FileStore* store;
    const WarningChoice* warnings;
    Adviser adviser;
    std::vector<std::int32_t> openingByNumber;
    std::vector<std::int32_t> numberByOpening;
    SourcePlace viewedPlace;  // of `view`
    std::string viewedLine;
    StatementView view;
    bool isOneLine = false;  // `view` is one physical line, without dropped bytes
    std::vector<std::variant<Report, Message>> pending;
    std::int32_t renameBudget = 50'000;         // lines that may still be searched for uses
    std::unordered_set<std::string> explained;  // quoted names of labels that caused errors
    std::optional<Message> leftOut;  // the first error that was only a consequence of another
    // For each statement with a report, by the core's file and line: the number of the statement,
    // and how many reports it has had.
    std::map<std::pair<std::int32_t, std::int32_t>, std::pair<std::int32_t, std::int32_t>>
        statements;
    // By file and text: a line from which `FindLine` finds nothing. Without this, each of many
    // messages would search the rest of the file again.
    mutable std::map<std::pair<std::int32_t, std::string>, std::int32_t> absentFrom;
};

}  // namespace korv
