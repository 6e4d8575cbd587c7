/// What to do about a message: the note, the change of the text that it proposes, the exact place,
/// and whether the message only follows from an earlier one. For what those meet first who come
/// from another assembler or are new to this one.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"
#include "frontend/nearest.h"
#include "frontend/spelling.h"
#include "frontend/statement_view.h"

namespace korv {

/// What the run stores about a name.
struct KnownName {
    bool hasValue = false;
    std::int32_t value = 0;
    bool isCommandLine = false;  ///< defined by -D
    std::string where;           ///< "file:line" of the definition; empty for none
    SourcePlace definition;      ///< its name; its file is 0 for none
    bool isHere = false;         ///< that is the line of the statement in hand, read before
    std::string waitingLine;     ///< the cleaned line of an EQU that waits for a name; else empty
};

/// What notes ask about the rest of the run.
class RunFacts {
  public:
    /// None: no definition and no use.
    [[nodiscard]] virtual std::optional<KnownName> FindName(std::string_view name) const = 0;
    /// Whether INCLUDE or BINCLUDE in the file of the statement would find `name`.
    [[nodiscard]] virtual bool HasFile(std::string_view name) const = 0;
    /// The directories that are searched, for a note; empty where none is known.
    [[nodiscard]] virtual std::string SearchedDirectories() const { return ""; }
    /// The line at or after that of the statement in hand, in its file, whose text has `text` after
    /// column `column`, which is of the first line; 0 for none.
    [[nodiscard]] virtual std::int32_t FindLine(std::string_view /*text*/,
                                                std::size_t /*column*/) const {
        return 0;
    }
    /// All names with a value. Asked for once, at the first name that is unknown; the views have to
    /// outlive the `Adviser`.
    [[nodiscard]] virtual std::vector<std::string_view> DefinedNames() const = 0;

  protected:
    ~RunFacts() = default;
};

/// A message of the core, as it was reported.
struct FaultView {
    Status number = 0;    ///< as reported; -1 and below: without a row
    bool isError = true;  ///< else a warning
    bool isLate = false;  ///< its value came after the line
    const StatementView& statement;
    LinePart part;          ///< what the core was looking at; without length: the whole statement
    std::string_view text;  ///< the detail of the message, often the part itself; may be empty
    std::int32_t file = 0;  ///< the core's number of the opening
    std::int32_t line = 0;
    std::int32_t statementId = 0;  ///< the same for all messages of one statement of the run
    bool isSkipped = false;        ///< a condition keeps the statement from being assembled
    std::string_view reason = {};  ///< the system's, why a file cannot be read
};

struct Advice {
    std::string text;                   ///< what to print for the message; empty: the core's text
    std::string note;                   ///< what to do, or empty
    std::vector<TextEdit> edits;        ///< of the cleaned line, in its order
    std::optional<LinePart> place;      ///< more exact than that of the fault
    bool isFollowOn = false;            ///< an earlier message explains it: do not print it
    std::vector<std::string> explains;  ///< labels whose names are the cause
    bool isRepeated = false;            ///< the file has been read before
    SourcePlace first;                  ///< the definition that came first; its file is 0 for none
    bool definesName = false;           ///< the line was to define its label, or these
    std::vector<std::string> names;
    std::string newName;  ///< of the first of `names`, for its uses too; empty: it stays
};

/// Gives advice on the messages of one run, in the order in which they were reported.
class Adviser {
  public:
    /// `facts` is not owned.
    explicit Adviser(const RunFacts& facts) : facts(facts) {}

    [[nodiscard]] Advice AdviceFor(const FaultView& fault);

    /// The name with a value that is nearest to `name`, or empty.
    [[nodiscard]] std::string_view NearestName(std::string_view name);

    /// `name` or, where that is taken, the name with a number after it; taken from now on.
    [[nodiscard]] std::string UnusedName(const std::string& name);

    /// The definition of `name` will be refused: what uses it before only follows from that.
    void ExpectRefusal(std::string_view name) { refusedNames.emplace(name); }

    /// The source ends in a part that an open condition skips: what it would define is unknown.
    void ExpectSkippedEnd() { hasRefusedEnd = true; }

    /// Whether the definition of `name` was refused.
    [[nodiscard]] bool IsRefused(const std::string& name) const {
        return refusedNames.contains(name);
    }

    /// Whether a refused ENDIF explains an open IF. Each explains one, so it is taken.
    [[nodiscard]] bool TakeRefusedEnd();

    [[nodiscard]] const RunFacts& Facts() const { return facts; }

  private:
    // The name without a value that `fault` is about; empty for none.
    [[nodiscard]] std::string UnknownName(const FaultView& fault, const Advice& advice) const;
    [[nodiscard]] bool IsFollowOn(const FaultView& fault, const Advice& advice);
    // Whether the operand at fault, or any if none is known, has one of `names`.
    [[nodiscard]] static bool UsesOneOf(const std::unordered_set<std::string>& names,
                                        const FaultView& fault);
    void Remember(const FaultView& fault, const Advice& advice);
    void RememberCondition(const FaultView& fault, const Advice& advice, bool isRefused);
    void RememberBlock(const FaultView& fault, std::string_view end);
    // What is wrong after the line of `fault` up to `line` follows from it.
    void SkipTo(std::int32_t line, const FaultView& fault);
    void RememberComment(const FaultView& fault, Advice* advice);

    const RunFacts& facts;
    std::unique_ptr<NearWords> names;  // made at the first question
    std::unordered_set<std::string> proposedNames;
    std::unordered_set<std::string> refusedNames;   // whose definition was refused
    std::unordered_set<std::string> unsureNames;    // that a refused line gave the address instead
    std::unordered_set<std::string> answeredNames;  // without a value, reported
    std::unordered_set<std::string> renamedLabels;  // that a note wants to have another name
    std::int32_t refusedConditions = 0;             // IFs that were refused and are still open
    std::int32_t refusedEnds = 0;                   // of conditions that are open
    bool hasRefusedEnd = false;                     // of one that may be false
    std::int32_t slipBudget = 1000;                 // messages that may still be tried as slips
    bool hasRefusedTest = false;                    // a condition that has no spelling here
    bool hasRefusedBranch = false;                  // an IF or ELSE: both branches are assembled
    std::int32_t skippedFile = 0;      // of a refused macro or comment of several lines
    std::int32_t skippedAfter = 0;     // its first line
    std::int32_t skippedTo = 0;        // its last line
    bool hasRepeatedFile = false;      // a file that defines names is read twice
    bool hasRefusedFile = false;       // an INCLUDE
    bool hasRefusedBlock = false;      // such as a macro
    std::int32_t lastStatement = -1;   // with an error
    std::vector<LinePart> lastPlaces;  // of its errors
    std::string lastNote;
    Status lastNumber = 0;
};

}  // namespace korv
