/// All names of a run in one flat table: labels, EQU identifiers, reserved words, version
/// identifiers, and names that were only referred to. A record also carries the patches that wait
/// for its value, so that defining a name is the moment at which all forward references to it are
/// filled in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"
#include "symbols/identifier.h"
#include "symbols/name_index.h"
#include "symbols/name_pool.h"
#include "symbols/patch.h"
#include "symbols/system_identifiers.h"

namespace korv {

class CAssembler;
class DebugStream;
namespace platform {
class OutputFile;
}

/// What `AddID` is given: a name and its definition. The name has to stay valid during the call
/// only.
struct Definition {
    std::string_view name;
    SourcePlace place;
    std::int32_t value;
    std::uint32_t flags;
};

class CIdentifierManager {
  public:
    /// An empty table for the run of `assembler`, which is not owned. Patches are evaluated by it
    /// and written to its image; messages are reported to its lists.
    explicit CIdentifierManager(CAssembler* assembler);
    ~CIdentifierManager() { ReleasePatches(); }

    /// Traces the life of patches to `newLog`, not owned; null for no trace. Result: the one
    /// before.
    DebugStream* SetLog(DebugStream* newLog) { return std::exchange(log, newLog); }

    /// Defines a name. A name only referred to so far gets its definition, and its patches are
    /// applied, the newest first. Refused definitions and failures of patches are reported here.
    void AddID(const Definition& definition);

    /// Reserves `words`, which have to live as long as the table and are none of its names yet.
    /// They count as entered, but a record is made only of those that a source names.
    void Reserve(const WordSet& words) {
        reservedWords = &words;
        totalCount += words.Count();
    }

    /// The record of `name`, with or without a value; null if there is none.
    [[nodiscard]] CIdentifier* Find(const HashedName& name) const { return index.Find(name); }
    /// The record of `name` if it has a value, else null: a name that waits and one never seen are
    /// the same here. `markUsed` marks it as read.
    CIdentifier* FindID(const HashedName& name, bool markUsed) {
        CIdentifier* const record = index.Find(name);
        if (record == nullptr || (record->flags & IDF_RESOLVED) == 0) {
            return nullptr;
        }
        record->flags |= markUsed ? IDF_USED : 0;
        return record;
    }

    /// The value of `name`, marked as read. Result: 0 with `value`, or MSG_UNRESOLVED.
    [[nodiscard]] Status ValueOf(std::string_view name, std::int32_t* value) {
        const HashedName hashed = name;
        CIdentifier* const record = index.Find(hashed);
        if (record == nullptr || (record->flags & IDF_RESOLVED) == 0) {
            missing = hashed;
            waiting = record;
            return MSG_UNRESOLVED;
        }
        record->flags |= IDF_USED;
        *value = record->value;
        return 0;
    }

    /// Takes over `patch`, which waits for `name`, and hangs it on the record of that name, made if
    /// there is none. The text of `name` has not changed since `ValueOf` was asked for it. Result:
    /// 0, or that of `Backpatch` should the name have a value.
    Status AddPatch(std::string_view name, CPatchInfo* patch);

    /// Takes the patches that wait for `identifier` off it. Result: the chain, which the caller
    /// owns.
    [[nodiscard]] CPatchInfo* TakePatches(CIdentifier* identifier);

    /// Evaluates a patch that its caller has taken off its chain and still owns, now that its
    /// identifier has a value. Writes the result, or gives it to a waiting EQU and goes on with all
    /// that waits for that. If a further name has no value yet, a copy of the patch waits for it.
    /// Result: 0; 20 (MSG_BAD_EXPRESSION); 28 (MSG_OFFSET_TOO_BIG); -1 for a failure after an EQU,
    /// or a patch of no known kind.
    Status Backpatch(CPatchInfo* patch);

    /// Reports every name that something still waits for. Result: their number.
    std::int32_t ReportUnresolved();

    /// Releases the patches that still wait. To be called at the end of a run, while the pool of
    /// their texts exists.
    void ReleasePatches();

    /// Prints the body of the identifier list, in the order of the buckets. Result: 0.
    std::int32_t DumpIdentifiers(platform::OutputFile* file);
    /// Prints the lines of the status dump. Result: 0, or `noStream`.
    Status DumpStatus(std::FILE* stream) const;

    /// Records in the table, of every kind; reserved words without a record among them.
    [[nodiscard]] std::int32_t TotalCount() const { return totalCount; }
    /// Records that have been made.
    [[nodiscard]] std::int32_t RecordCount() const {
        return static_cast<std::int32_t>(records.size());
    }
    /// The record `number`, from 0, in the order in which the names were met.
    [[nodiscard]] const CIdentifier& Record(std::int32_t number) const {
        return *records[static_cast<std::size_t>(number)];
    }

    /// Adds a text, given in pieces, to the trace if there is one.
    template <typename... Pieces>
    void Trace(const Pieces&... pieces) const {
        if (log != nullptr) [[unlikely]] {
            WriteTrace({pieces...});
        }
    }

  private:
    CIdentifier* Enter(const HashedName& name);
    void Refuse(const Definition& definition, bool isReserved);
    void ApplyPatches(CIdentifier* identifier);
    CIdentifier* SortedRecords();
    void WriteTrace(std::initializer_list<std::string_view> pieces) const;

    std::vector<CIdentifier*> records;  // in the pool; they stay where they are
    std::int32_t totalCount = 0;
    std::int32_t waitingCount = 0;           // records with patches
    const WordSet* reservedWords = nullptr;  // not owned
    CNamePool namePool;
    CNameIndex index;
    HashedName missing;              // the last one without a value; its text may be gone
    CIdentifier* waiting = nullptr;  // its record, if it had one
    CAssembler* assembler;
    DebugStream* log = nullptr;
};

}  // namespace korv
