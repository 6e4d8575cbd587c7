/// What to do about a message: the note, the change that it proposes, the exact place, and whether
/// the message is only a consequence of an earlier one. The notes are meant for users who are new
/// to Korv or come from another assembler.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"
#include "frontend/nearest.h"
#include "frontend/spelling.h"
#include "frontend/statement_view.h"

namespace korv {

/// What is known about a name.
struct KnownName {
    bool hasValue = false;
    std::int32_t value = 0;
    bool isCommandLine = false;  ///< defined by -D
    std::string where;           ///< "file:line" of the definition; empty if there is none
    SourcePlace definition;      ///< place of the name; file 0: none
    bool isHere = false;         ///< the definition is on the line of the current statement
    std::string waitingLine;     ///< the cleaned line of an unresolved EQU; else empty
};

/// What notes need to know about the rest of the run.
class RunFacts {
  public:
    /// What is known about `name`; none if it is neither defined nor used.
    [[nodiscard]] virtual std::optional<KnownName> FindName(std::string_view name) const = 0;
    /// True if INCLUDE or BINCLUDE in the file of the current statement would find `name`.
    [[nodiscard]] virtual bool HasFile(std::string_view name) const = 0;
    /// The directories that are searched for files, as text for a note.
    [[nodiscard]] virtual std::string SearchedDirectories() const = 0;
    /// The first line that contains `text`, from `column` of the current statement's line to the
    /// end of its file; 0 if there is none.
    [[nodiscard]] virtual std::int32_t FindLine(std::string_view text,
                                                std::size_t column) const = 0;
    /// All names with a value. Called once, for the first unknown name; the views must outlive the
    /// `Adviser`.
    [[nodiscard]] virtual std::vector<std::string_view> DefinedNames() const = 0;

  protected:
    ~RunFacts() = default;
};

/// A message from the core, as reported.
struct FaultView {
    Status number = 0;    ///< row of MESSAGE_TABLE; negative: an internal error
    bool isError = true;  ///< else a warning
    bool isLate = false;  ///< reported after its line was assembled
    const StatementView& statement;
    LinePart part;          ///< the part that the core reported; length 0: the whole statement
    std::string_view text;  ///< the detail of the message, often the part itself; may be empty
    std::int32_t file = 0;  ///< the core's number for the opening
    std::int32_t line = 0;
    std::int32_t statementId = 0;  ///< the same for all messages of one statement of the run
    bool isSkipped = false;        ///< the statement is not assembled, because of a condition
    std::string_view reason = {};  ///< why a file cannot be read, as the system puts it
};

struct Advice {
    std::string text;                   ///< replaces the core's text; empty: keeps it
    std::string note;                   ///< what to do, or empty
    std::vector<TextEdit> edits;        ///< in the cleaned line, from left to right
    std::optional<LinePart> place;      ///< more exact than the place of the fault
    bool isFollowOn = false;            ///< an earlier message explains it: do not print it
    std::vector<std::string> explains;  ///< labels whose names are the cause
    bool isRepeated = false;            ///< the file has been read before
    SourcePlace first;                  ///< the first definition; file 0: none
    bool definesName = false;           ///< the line was meant to define its label or `names`
    std::vector<std::string> names;
    std::string newName;  ///< replaces the first of `names` everywhere; empty: none
};

/// Gives advice on the messages of one run, in the order in which they were reported.
class Adviser {
  public:
    /// `facts` is not owned.
    explicit Adviser(const RunFacts& facts) : facts(facts) {}

    [[nodiscard]] Advice AdviceFor(const FaultView& fault);

    /// The defined name that is nearest to `name`; empty if none is close.
    [[nodiscard]] std::string_view NearestName(std::string_view name);

    /// `name`, with a number after it if it is taken. The result counts as taken from now on.
    [[nodiscard]] std::string UnusedName(const std::string& name);

    /// Records that the definition of `name` will be refused: errors about earlier uses are only
    /// consequences.
    void ExpectRefusal(std::string_view name) { refusedNames.emplace(name); }

    /// True if a message has explained why `name` has no value.
    [[nodiscard]] bool IsExplained(const std::string& name) const {
        return refusedNames.contains(name) || answeredNames.contains(name);
    }

    /// Records that the source ends inside a skipped block. The names that this block would define
    /// are unknown, so a late error about an undefined name is only a consequence.
    void ExpectSkippedEnd() { hasSkippedNames = true; }

    /// True if a refused ENDIF explains an open IF. Each ENDIF explains only one IF, so the call
    /// uses it up.
    [[nodiscard]] bool TakeRefusedEnd();

    [[nodiscard]] const RunFacts& Facts() const { return facts; }

  private:
    // The name whose missing value caused `fault`; empty if there is none.
    [[nodiscard]] std::string UnknownName(const FaultView& fault, const Advice& advice) const;
    [[nodiscard]] bool IsFollowOn(const FaultView& fault, const Advice& advice);
    // True if the operand at fault contains one of `names`. If it is not known which operand that
    // is, any operand counts.
    [[nodiscard]] static bool UsesOneOf(const std::unordered_set<std::string>& names,
                                        const FaultView& fault);
    void Remember(const FaultView& fault, const Advice& advice);
    void RememberCondition(const FaultView& fault, const Advice& advice, bool isRefused);
    void RememberBlock(const FaultView& fault, std::string_view end);
    // Treats errors after the line of `fault`, up to `line`, as consequences of it.
    void SkipTo(std::int32_t line, const FaultView& fault);
    void RememberComment(const FaultView& fault, Advice* advice);

    const RunFacts& facts;
    std::unique_ptr<NearWords> names;  // created on first use
    std::unordered_set<std::string> proposedNames;
    std::unordered_set<std::string> refusedNames;   // whose definition was refused
    std::unordered_set<std::string> unsureNames;    // labels of lines with an unknown mnemonic
    std::unordered_set<std::string> answeredNames;  // without a value, and already reported
    std::unordered_set<std::string> renamedLabels;  // that a note proposes to rename
    std::int32_t refusedConditions = 0;             // IFs that were refused and are still open
    std::int32_t refusedEnds = 0;                   // refused ENDIFs of open IFs
    std::int32_t namelessDefinitions = 0;           // EQUs without a label
    bool hasSkippedNames = false;    // an error may have caused a block to be skipped
    std::int32_t slipBudget = 1000;  // messages that may still be checked for slips
    bool hasRefusedTest = false;     // a refused IF without a proposed change
    bool hasRefusedBranch = false;   // a refused IF or ELSE, so both branches are assembled
    std::int32_t skippedFile = 0;    // the file with a refused macro or multi-line comment
    std::int32_t skippedAfter = 0;   // its first line
    std::int32_t skippedTo = 0;      // its last line
    bool hasRepeatedFile = false;    // a file that defines names is read twice
    bool hasRefusedFile = false;     // an INCLUDE failed
    bool hasRefusedBlock = false;    // such as a macro

    // The errors of one statement.
    struct Errors {
        std::vector<LinePart> places;
        std::string lastNote;
        Status lastNumber = 0;
    };
    std::unordered_map<std::int32_t, Errors> errors;  // by the statement's ID
};

}  // namespace korv
