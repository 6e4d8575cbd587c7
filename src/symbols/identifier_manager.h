/// All names of a run in one flat table: labels, EQU identifiers, reserved words, version
/// identifiers, and names that have only been used. A record also holds the patches that wait for
/// its value, so that all forward references to a name are filled in when the name is defined.
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
#include "platform/platform.h"
#include "symbols/identifier.h"
#include "symbols/name_index.h"
#include "symbols/name_pool.h"
#include "symbols/patch.h"
#include "symbols/system_identifiers.h"

namespace korv {

class CAssembler;
class DebugStream;

/// The argument of `AddID`: a name and its definition. The name need only be valid during the call.
struct Definition {
    std::string_view name;
    SourcePlace place;
    std::int32_t value;
    std::uint32_t flags;
};

class CIdentifierManager {
  public:
    /// Creates an empty table. `assembler` evaluates the patches; its image receives their bytes,
    /// and its lists receive the messages. It is not owned.
    explicit CIdentifierManager(CAssembler* assembler);
    ~CIdentifierManager() { ReleasePatches(); }

    /// Traces patches to `newLog`, which is not owned; null turns tracing off. Result: the previous
    /// log.
    DebugStream* SetLog(DebugStream* newLog) { return std::exchange(log, newLog); }

    /// Defines a name. If the name has only been used so far, its patches are applied, newest
    /// first. Refused definitions and failed patches are reported here.
    void AddID(const Definition& definition);

    /// Reserves `words`, which must live as long as the table and must not be in it yet. The words
    /// count as entered, but only those that a source uses get records.
    void Reserve(const WordSet& words) {
        reservedWords = &words;
        totalCount += words.Count();
    }

    /// The record of `name`, with or without a value; null if there is none.
    [[nodiscard]] CIdentifier* Find(const HashedName& name) const { return index.Find(name); }
    /// Reads the value of `name` and marks the name as used. Result: 0 with `value`, or
    /// MSG_UNRESOLVED if the name has no value yet or has never been seen.
    [[nodiscard]] Status FindID(std::string_view name, std::int32_t* value) {
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

    /// Takes ownership of `patch`, which waits for `name`, and adds it to the chain of that name. A
    /// new name is entered first. The text of `name` must not have changed since the call to
    /// `FindID`. Result: 0, or the result of `Backpatch` if the name has a value.
    Status AddPatch(std::string_view name, CPatchInfo* patch);

    /// Removes the chain of patches from `identifier`. Result: the chain, which the caller then
    /// owns.
    [[nodiscard]] CPatchInfo* TakePatches(CIdentifier* identifier);

    /// Evaluates a patch whose identifier now has a value. The caller has removed the patch from
    /// its chain and still owns it. Writes the result, or assigns it to a waiting EQU and continues
    /// with everything that waits for the EQU. If another name in the expression has no value yet,
    /// a copy of the patch waits for that name. Result: 0; 20 (MSG_BAD_EXPRESSION); 28
    /// (MSG_OFFSET_TOO_BIG); `patchFailed` if a patch that waited for an EQU fails, or if the EQU
    /// is not in the table.
    Status Backpatch(CPatchInfo* patch);

    /// Reports every name that a patch still waits for.
    void ReportUnresolved();

    /// Releases the patches that are still waiting. Called at the end of a run, before the pool of
    /// their texts is released.
    void ReleasePatches();

    /// Writes the listing of identifiers, in the order of the buckets.
    void DumpIdentifiers(platform::OutputFile* file);
    /// Prints the lines of the status dump. Result: 0, or `noStream`.
    Status DumpStatus(std::FILE* stream) const;

    /// The number of names of every kind, including reserved words without a record.
    [[nodiscard]] std::int32_t TotalCount() const { return totalCount; }
    /// The number of records.
    [[nodiscard]] std::int32_t RecordCount() const {
        return static_cast<std::int32_t>(records.size());
    }
    /// Record `number`, counted from 0 in the order in which names first occur.
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
    void WriteTrace(std::initializer_list<std::string_view> pieces) const;

    std::vector<CIdentifier*> records;        // in the pool; they do not move
    std::vector<CIdentifier*> sortedRecords;  // the same records, in the order of the last report
    std::int32_t totalCount = 0;
    std::int32_t waitingCount = 0;           // records with patches
    const WordSet* reservedWords = nullptr;  // not owned
    CNamePool namePool;
    CNameIndex index;
    HashedName missing;              // the last name that had no value; its text may be gone
    CIdentifier* waiting = nullptr;  // the record of `missing`, if it had one
    CAssembler* assembler;
    DebugStream* log = nullptr;
};

}  // namespace korv
