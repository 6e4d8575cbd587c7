/// All names of a run in one flat table: labels, EQU identifiers, reserved words, version
/// identifiers, and names that were only referred to. A record also carries the patches that wait
/// for its value, so that defining a name is the moment at which all forward references to it are
/// filled in.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace korv {

class BinBlock;
class CAssembler;
class CFileNameRegistry;
class CMessageList;
class CPatchInfo;
class DebugStream;

/// Bits of `CIdentifier::flags`.
inline constexpr std::uint32_t IDF_LABEL = 0x001;  ///< defined as a label
inline constexpr std::uint32_t IDF_EQU = 0x002;    ///< defined by EQU
inline constexpr std::uint32_t IDF_USED = 0x004;   ///< an expression has read the value
inline constexpr std::uint32_t IDF_8BIT = 0x008;  ///< width, for the listing; nothing sets this one
inline constexpr std::uint32_t IDF_16BIT = 0x010;     ///< width
inline constexpr std::uint32_t IDF_32BIT = 0x020;     ///< width; nothing sets this one
inline constexpr std::uint32_t IDF_RESOLVED = 0x040;  ///< `value` is known
inline constexpr std::uint32_t IDF_INTERNAL = 0x200;  ///< the system's own; left out of the listing
inline constexpr std::uint32_t IDF_RESERVED = 0x800;  ///< may not be defined by a source line

/// The states in which a record is entered. A name only referred to has no bit at all.
inline constexpr std::uint32_t IDS_LABEL = IDF_LABEL | IDF_16BIT | IDF_RESOLVED;
inline constexpr std::uint32_t IDS_EQU = IDF_EQU | IDF_16BIT | IDF_RESOLVED;
inline constexpr std::uint32_t IDS_EQU_WAITING = IDF_EQU | IDF_16BIT;
inline constexpr std::uint32_t IDS_RESERVED_WORD = IDF_RESERVED | IDF_INTERNAL;
inline constexpr std::uint32_t IDS_SYSTEM = IDF_RESERVED | IDF_INTERNAL | IDF_RESOLVED;

/// What `AddID` is given: a name and its definition. The name has to stay valid during the call
/// only.
struct Definition {
    std::string_view name;
    std::int32_t line;
    std::int32_t file;
    std::int32_t value;
    std::uint32_t flags;
};

struct CIdentifier {
    CIdentifier* next = nullptr;  ///< in the bucket's chain, once the chains are linked
    std::uint32_t flags = 0;
    const char* name = nullptr;  ///< terminated, in the name pool; never moves
    std::uint32_t nameLength = 0;
    std::int32_t line = 0;          ///< of the definition; 0 for a name only referred to
    std::int32_t file = 0;          ///< of the definition; 0 for a name only referred to
    std::int32_t value = 0;         ///< meaningful with IDF_RESOLVED; -1 in an EQU that waits
    CPatchInfo* patches = nullptr;  ///< owned; what waits for this name, the newest first

    [[nodiscard]] std::string_view Name() const { return {name, nameLength}; }
};

/// Storage of names: blocks of 4096 bytes, filled from front to back, released as a whole.
class CNamePool {
  public:
    /// Makes the first block. `console` hears of a failed allocation, which ends the process.
    explicit CNamePool(std::FILE* console);
    ~CNamePool();
    CNamePool(const CNamePool&) = delete;
    CNamePool& operator=(const CNamePool&) = delete;

    /// Result: a terminated copy of `name`, valid as long as the pool.
    const char* Store(std::string_view name);

  private:
    struct Block;
    void AddBlock(std::size_t size);

    std::FILE* console;
    Block* blocks = nullptr;  // owned; the newest first, which is the current one
    std::size_t used = 0;     // bytes used in it
};

class CIdentifierManager {
  public:
    /// An empty table whose listing has `tableSize` buckets. `console` is not owned.
    CIdentifierManager(std::FILE* console, std::int32_t tableSize);
    ~CIdentifierManager();
    CIdentifierManager(const CIdentifierManager&) = delete;
    CIdentifierManager& operator=(const CIdentifierManager&) = delete;

    /// What the manager works with; none is owned, all are set before the first name enters.
    void SetLists(CMessageList* newErrors, CMessageList* newWarnings);
    void SetFileNames(const CFileNameRegistry* registry) { fileNames = registry; }
    /// These give the previous value.
    BinBlock* SetTarget(BinBlock* newTarget);
    CAssembler* SetAssembler(CAssembler* newAssembler);
    DebugStream* SetLog(DebugStream* newLog);

    /// Defines a name. A name only referred to so far gets its definition, and its patches are
    /// applied, the newest first. Refusals and failures of patches go to the errors. Result: 0,
    /// always.
    std::int32_t AddID(const Definition& definition);

    /// The record of `name` if it has a value, else null: a name that waits and one never seen are
    /// the same here. `markUsed` marks it as read.
    CIdentifier* FindID(std::string_view name, bool markUsed);

    /// Takes over `patch`, which waits for `name`, and hangs it on the record of that name, made if
    /// there is none. Result: 0, or that of `Backpatch` should the name have a value.
    std::int32_t AddPatch(std::string_view name, CPatchInfo* patch);

    /// Evaluates a patch that its caller has taken off its chain and still owns, now that its
    /// identifier has a value; writes the result, gives it to a waiting EQU and goes on with all
    /// that waits for that, or moves a copy of the patch to the next name that it waits for.
    /// Result: 0; 20 the expression is bad; 28 a relative offset is out of range; -1 a failure
    /// behind an EQU, or a patch of no known kind.
    std::int32_t Backpatch(CPatchInfo* patch);

    /// Reports every name that something still waits for. Result: their number.
    std::int32_t ReportUnresolved();

    /// Releases the patches that still wait. The end of a run, before the pool of their texts goes.
    void ReleasePatches();

    /// Prints the body of the identifier list, in the order of the buckets. Result: 0.
    std::int32_t DumpIdentifiers(std::FILE* file);
    /// Prints the lines of the status dump. Result: 0, or -1 for a null stream.
    std::int32_t DumpStatus(std::FILE* stream) const;

    /// Records in the table, of every kind.
    [[nodiscard]] std::int32_t TotalCount() const { return totalCount; }

  private:
    // An entry of the index; without a record it is free.
    struct IndexEntry {
        CIdentifier* record;
        std::uint64_t hash;
    };
    // Records are allocated by the chunk, so that they stay where they are and a number finds them.
    static constexpr std::uint32_t chunkSize = 256;

    [[nodiscard]] CIdentifier* RecordAt(std::uint32_t number) const {
        return &chunks[number / chunkSize][number % chunkSize];
    }
    [[nodiscard]] CIdentifier* Find(std::string_view name, std::uint64_t hash) const;
    [[nodiscard]] CIdentifier* Find(std::string_view name) const;
    CIdentifier* Enter(std::string_view name, std::uint64_t hash);
    static void Insert(IndexEntry* index, std::uint32_t mask, IndexEntry entry);
    void FreeIndex();
    bool GrowIndex();
    bool GrowChunks();
    void LinkChains();
    void ApplyPatches(CIdentifier* identifier);
    std::int32_t Apply(CPatchInfo* patch, CIdentifier** resolvedEqu);
    std::int32_t WritePatch(const CPatchInfo& patch, std::int32_t value);
    void TraceText(const char* text) const;

    std::int32_t tableSize;
    CIdentifier**
        buckets;  // owned; heads of the sorted chains, linked when somebody looks at the order
    std::int32_t totalCount = 0;
    std::int32_t waitingCount = 0;    // records with patches
    IndexEntry freeEntry{};           // the index of an empty table
    IndexEntry* index = &freeEntry;   // owned if it is another; open addressing, at most half full
    std::uint32_t indexMask = 0;      // its size, a power of 2, less 1
    CIdentifier** chunks = nullptr;   // owned, and so are the chunks
    std::uint32_t chunkCapacity = 0;  // entries of `chunks`
    CNamePool namePool;
    CMessageList* errors = nullptr;
    CMessageList* warnings = nullptr;
    const CFileNameRegistry* fileNames = nullptr;
    std::FILE* console;
    CAssembler* assembler = nullptr;
    BinBlock* target = nullptr;
    DebugStream* log = nullptr;  // the trace, or null
};

/// The bucket of `name` among `tableSize`: the order of the listing. Exposed for tests.
[[nodiscard]] std::uint32_t BucketOf(std::string_view name, std::int32_t tableSize);

/// Fills `out` with the six characters of the listing's column of flags, and a terminator.
void FlagString(std::uint32_t flags, char (&out)[7]);

}  // namespace korv
