/// All names of a run in one flat table: labels, EQU identifiers, reserved words, version
/// identifiers, and names that were only referred to. A record also carries the patches that wait
/// for its value, so that defining a name is the moment at which all forward references to it are
/// filled in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"
#include "expr/unresolved_name.h"
#include "symbols/identifier.h"
#include "symbols/name_index.h"
#include "symbols/name_pool.h"
#include "symbols/patch.h"
#include "symbols/system_identifiers.h"

namespace korv {

class BinBlock;
class CAssembler;
class CFileNameRegistry;
class CMessageList;
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
    /// An empty table whose listing has `tableSize` buckets. `console` is not owned.
    CIdentifierManager(std::FILE* console, std::int32_t tableSize);
    ~CIdentifierManager() { ReleasePatches(); }

    /// What the manager works with; none is owned, all are set before the first name enters.
    void SetLists(CMessageList* newErrors, CMessageList* newWarnings) {
        errors = newErrors;
        warnings = newWarnings;
    }
    void SetFileNames(const CFileNameRegistry* registry) { fileNames = registry; }
    /// These give the previous value.
    BinBlock* SetTarget(BinBlock* newTarget) { return std::exchange(target, newTarget); }
    CAssembler* SetAssembler(CAssembler* newAssembler) {
        return std::exchange(assembler, newAssembler);
    }
    DebugStream* SetLog(DebugStream* newLog) { return std::exchange(log, newLog); }

    /// Defines a name. A name only referred to so far gets its definition, and its patches are
    /// applied, the newest first. Refusals and failures of patches go to the errors, by this
    /// function itself; so the result is always 0.
    std::int32_t AddID(const Definition& definition);

    /// Reserves `words`, which have to live as long as the table and are none of its names yet.
    /// They count as entered, but a record is made only of those that a source names.
    void Reserve(const WordSet& words) {
        reservedWords = &words;
        unmetCount = words.Count();
    }

    /// The record of `name` if it has a value, else null: a name that waits and one never seen are
    /// the same here. `markUsed` marks it as read.
    CIdentifier* FindID(const HashedName& name, bool markUsed);

    /// The value of `name`, marked as read. Result: 0 with `value`, or MSG_UNRESOLVED with
    /// `unresolved`.
    [[nodiscard]] Status ValueOf(std::string_view name, std::int32_t* value,
                                 UnresolvedName* unresolved) {
        const HashedName hashed(name);
        CIdentifier* const record = index.FindNear(hashed);
        if (record == nullptr || (record->flags & IDF_RESOLVED) == 0) {
            *unresolved = {name, hashed.hash, record, recordCount};
            const bool isMissed = record == nullptr && index.HasOverflow();
            return isMissed ? ValueFromOverflow(value, unresolved) : MSG_UNRESOLVED;
        }
        record->flags |= IDF_USED;
        *value = record->value;
        return 0;
    }

    /// Takes over `patch`, which waits for `name`, and hangs it on the record of that name, made if
    /// there is none. Result: 0, or that of `Backpatch` should the name have a value.
    Status AddPatch(const UnresolvedName& name, CPatchInfo* patch) {
        CIdentifier* const record = name.record != nullptr ? name.record : RecordOf(name);
        patch->identifier = record;
        if (log != nullptr) [[unlikely]] {
            TraceNewPatch(*patch);
        }
        if ((record->flags & IDF_RESOLVED) != 0) [[unlikely]] {
            return ApplyPatch(patch);
        }
        waitingCount += record->patches == nullptr ? 1 : 0;
        patch->next = record->patches;
        record->patches = patch;
        return 0;
    }

    /// Evaluates a patch that its caller has taken off its chain and still owns, now that its
    /// identifier has a value; writes the result, gives it to a waiting EQU and goes on with all
    /// that waits for that, or moves a copy of the patch to the next name that it waits for.
    /// Result: 0; MSG_BAD_EXPRESSION; MSG_OFFSET_TOO_BIG; `patchFailed` for a failure after an EQU,
    /// or a patch of no known kind.
    Status Backpatch(CPatchInfo* patch);

    /// Reports every name that something still waits for. Result: their number.
    std::int32_t ReportUnresolved();

    /// Releases the patches that still wait. The end of a run, before the pool of their texts goes.
    void ReleasePatches();

    /// Prints the body of the identifier list, in the order of the buckets. Result: 0.
    std::int32_t DumpIdentifiers(platform::OutputFile* file);
    /// Prints the lines of the status dump. Result: 0, or -1 for a null stream.
    std::int32_t DumpStatus(std::FILE* stream) const;

    /// Records in the table, of every kind.
    [[nodiscard]] std::int32_t TotalCount() const { return recordCount + unmetCount; }
    /// Those but for reserved words that nobody has named.
    [[nodiscard]] std::int32_t RecordCount() const { return recordCount; }
    /// The record `number`, from 0, in the order in which the names were met.
    [[nodiscard]] const CIdentifier& Record(std::int32_t number) const { return *RecordAt(number); }

  private:
    // Room for records.
    static constexpr std::uint32_t chunkSize = 128;
    struct Chunk {
        [[nodiscard]] CIdentifier* Records() { return reinterpret_cast<CIdentifier*>(memory); }
        alignas(CIdentifier) std::byte memory[chunkSize * sizeof(CIdentifier)];
    };

    [[nodiscard]] CIdentifier* RecordAt(std::int32_t number) const {
        const auto n = static_cast<std::uint32_t>(number);
        return &chunks[n / chunkSize]->Records()[n % chunkSize];
    }
    CIdentifier* Enter(const HashedName& name);
    void Refuse(const Definition& definition, bool isReserved);
    Status ValueFromOverflow(std::int32_t* value, UnresolvedName* unresolved);
    CIdentifier* RecordOf(const UnresolvedName& name);
    void TraceNewPatch(const CPatchInfo& patch) const;
    void LinkChains();
    void ApplyPatches(CIdentifier* identifier);
    Status ApplyPatch(CPatchInfo* patch);
    Status WorkReleased(CPatchInfo* root, CPatchInfo* released);
    Status WorkPatch(CPatchInfo* patch, CPatchInfo** released);
    Status EvaluatePatch(const CPatchInfo& patch, std::int32_t* value);
    CPatchInfo* LeavePatch(CPatchInfo* patch, const CPatchInfo* root, Status* result);
    void MovePatch(const CPatchInfo& patch, const UnresolvedName& unresolved);
    Status ResolveEqu(const CPatchInfo& patch, std::int32_t value, CPatchInfo** released);
    Status WritePatch(const CPatchInfo& patch, std::int32_t value);
    void TraceText(const char* text) const;

    std::int32_t tableSize;
    std::vector<CIdentifier*> buckets;  // heads of the sorted chains; empty until they are linked
    // Records stay where they are, and a number finds them.
    std::vector<std::unique_ptr<Chunk>> chunks;
    std::int32_t recordCount = 0;
    std::int32_t waitingCount = 0;           // records with patches
    const WordSet* reservedWords = nullptr;  // not owned
    std::int32_t unmetCount = 0;             // reserved words without a record
    CNameIndex index;
    CNamePool namePool;
    CMessageList* errors = nullptr;
    CMessageList* warnings = nullptr;
    const CFileNameRegistry* fileNames = nullptr;
    std::FILE* console;
    CAssembler* assembler = nullptr;
    BinBlock* target = nullptr;
    DebugStream* log = nullptr;  // the trace, or null
};

}  // namespace korv
