// The table. A name is looked up for every label and every name in an expression, so a lookup goes
// through an index that finds a record at once. The sorted chains of the buckets exist for the
// order of the listing and of the reports at the end, and are linked only when somebody looks at
// that order.

#include "symbols/identifier_manager.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "diagnostics/message_list.h"
#include "diagnostics/report_writer.h"
#include "driver/debug_stream.h"
#include "platform/platform.h"
#include "source/file_name_registry.h"
#include "source/short_text.h"
#include "symbols/patch.h"

namespace korv {
namespace {

// Hash of a name for the index, taken in pieces of up to 8 bytes. Independent of the order of the
// listing.
std::uint64_t HashOf(std::string_view name) {
    constexpr std::uint64_t multiplier =
        0x9E3779B97F4A7C15;  // 2 to the 64, divided by the golden ratio
    const char* next = name.data();
    std::size_t left = name.size();
    std::uint64_t hash = left;
    for (; left > 8; left -= 8, next += 8) {
        hash = (hash ^ LoadWord<std::uint64_t>(next)) * multiplier;
        hash ^= hash >> 32;
    }
    std::uint64_t tail = 0;  // the last 1 to 8 bytes, by two loads that may overlap
    if (left >= 4) {
        tail = static_cast<std::uint64_t>(LoadWord<std::uint32_t>(next)) << 32 |
               LoadWord<std::uint32_t>(next + left - 4);
    } else if (left > 0) {
        const auto byteAt = [next](std::size_t i) {
            return std::uint64_t{LoadWord<std::uint8_t>(next + i)};
        };
        tail = byteAt(0) << 16 | byteAt(left / 2) << 8 | byteAt(left - 1);
    }
    hash = (hash ^ tail) * multiplier;
    return hash ^ hash >> 32;
}

CIdentifier* Merge(CIdentifier* a, CIdentifier* b) {
    CIdentifier* merged = nullptr;
    CIdentifier** end = &merged;
    while (a != nullptr && b != nullptr) {
        CIdentifier*& smaller = b->Name() < a->Name() ? b : a;
        *end = smaller;
        end = &smaller->next;
        smaller = smaller->next;
    }
    *end = a != nullptr ? a : b;
    return merged;
}

// Sorts a chain by name, ascending. Merge sort, since it needs no memory: reports are made also
// when there is none.
CIdentifier* Sorted(CIdentifier* chain) {
    if (chain == nullptr || chain->next == nullptr) {
        return chain;
    }
    CIdentifier* middle = chain;
    for (const CIdentifier* fast = chain->next; fast != nullptr && fast->next != nullptr;
         fast = fast->next->next) {
        middle = middle->next;
    }
    CIdentifier* const second = std::exchange(middle->next, nullptr);
    return Merge(Sorted(chain), Sorted(second));
}

// A line of the listing.
void PutLine(ReportWriter* out, const CIdentifier& record, std::string_view fileName) {
    out->Put(record.Name());
    char* to = PutPadding(out->Room(80), record.nameLength, 15);
    to = PutText(to, "\t ");
    to = PutHex(to, static_cast<std::uint32_t>(record.value), 4);
    to = PutText(to, "h\t");
    char flagString[7];
    FlagString(record.flags, flagString);
    to = PutText(to, {flagString, 6});
    to = PutText(to, " \t");
    out->Advance(PutPadding(to, fileName.size(), 13));
    out->Put(fileName);
    to = out->Room(16);
    *to++ = '(';
    to = std::to_chars(to, to + 11, record.line).ptr;
    out->Advance(PutText(to, ")\n"));
}

}  // namespace

std::uint32_t BucketOf(std::string_view name, std::int32_t tableSize) {
    std::uint32_t h = 0;
    for (const char c : name) {
        h = h * 16 + static_cast<std::uint32_t>(static_cast<signed char>(c));
        const std::uint32_t g = h & 0xF0000000;
        if (g != 0) {
            // An arithmetic shift, unlike that of the published hash: the order of listings depends
            // on it.
            h ^= static_cast<std::uint32_t>(static_cast<std::int32_t>(g) >> 24);
            h ^= g;
        }
    }
    return (h & 0x7FFFFFFF) % static_cast<std::uint32_t>(tableSize);
}

void FlagString(std::uint32_t flags, char (&out)[7]) {
    const auto has = [flags](std::uint32_t bit) { return (flags & bit) != 0; };
    out[0] = has(IDF_LABEL) ? 'L' : has(IDF_EQU) ? 'E' : has(IDF_RESERVED) ? 'S' : '.';
    out[1] = has(IDF_USED) ? 'U' : '.';
    const char* const width = has(IDF_8BIT)    ? "08"
                              : has(IDF_16BIT) ? "16"
                              : has(IDF_32BIT) ? "32"
                                               : "??";
    out[2] = width[0];
    out[3] = width[1];
    out[4] = has(IDF_RESOLVED) ? 'R' : '.';
    out[5] = has(IDF_INTERNAL) ? 'I' : '.';
    out[6] = '\0';
}

// ------------------------------------------------------------------------------------------------
// name pool

struct CNamePool::Block {
    Block* next;
    char text[1];  // 4096 bytes, more for a name that is longer
};

namespace {
constexpr std::size_t poolBlockSize = 4096;
}

CNamePool::CNamePool(std::FILE* console) : console(console) {
    AddBlock(poolBlockSize);
}

CNamePool::~CNamePool() {
    while (blocks != nullptr) {
        platform::Free(std::exchange(blocks, blocks->next));
    }
}

void CNamePool::AddBlock(std::size_t size) {
    auto* const block = static_cast<Block*>(platform::Allocate(offsetof(Block, text) + size));
    if (block == nullptr) {
        std::fprintf(console, "Could not allocate more memory.\n");
        std::exit(-1);
    }
    block->next = blocks;
    blocks = block;
    used = 0;
}

const char* CNamePool::Store(std::string_view name) {
    const std::size_t size = name.size() + 1;
    if (used + size >= poolBlockSize) {
        AddBlock(size < poolBlockSize ? poolBlockSize : size);
    }
    char* const copy = blocks->text + used;
    CopyText(copy, name);
    copy[name.size()] = '\0';
    used += size;
    return copy;
}

// ------------------------------------------------------------------------------------------------
// table

CIdentifierManager::CIdentifierManager(std::FILE* console, std::int32_t tableSize)
    : tableSize(tableSize),
      buckets(new CIdentifier*[static_cast<std::size_t>(tableSize)]()),
      namePool(console),
      console(console) {}

CIdentifierManager::~CIdentifierManager() {
    ReleasePatches();
    for (std::uint32_t i = 0; i * chunkSize < static_cast<std::uint32_t>(totalCount); ++i) {
        platform::Free(chunks[i]);
    }
    platform::Free(chunks);
    FreeIndex();
    delete[] buckets;
}

void CIdentifierManager::SetLists(CMessageList* newErrors, CMessageList* newWarnings) {
    errors = newErrors;
    warnings = newWarnings;
}

BinBlock* CIdentifierManager::SetTarget(BinBlock* newTarget) {
    return std::exchange(target, newTarget);
}

CAssembler* CIdentifierManager::SetAssembler(CAssembler* newAssembler) {
    return std::exchange(assembler, newAssembler);
}

DebugStream* CIdentifierManager::SetLog(DebugStream* newLog) {
    return std::exchange(log, newLog);
}

CIdentifier* CIdentifierManager::Find(std::string_view name, std::uint64_t hash) const {
    auto at = static_cast<std::uint32_t>(hash);
    for (;;) {
        const IndexEntry& entry = index[at++ & indexMask];
        if (entry.record == nullptr ||
            (entry.hash == hash && EqualTexts(entry.record->Name(), name))) {
            return entry.record;
        }
    }
}

void CIdentifierManager::Insert(IndexEntry* index, std::uint32_t mask, IndexEntry entry) {
    auto at = static_cast<std::uint32_t>(entry.hash);
    while (index[at & mask].record != nullptr) {
        ++at;
    }
    index[at & mask] = entry;
}

CIdentifier* CIdentifierManager::Find(std::string_view name) const {
    return Find(name, HashOf(name));
}

// Makes a record for a name that is not in the table; everything but its name is at the defaults.
// Null: there is no memory, the failure hook has heard of it, and the run ends with the current
// statement.
CIdentifier* CIdentifierManager::Enter(std::string_view name, std::uint64_t hash) {
    const auto number = static_cast<std::uint32_t>(totalCount);
    if ((number >= (indexMask + 1) / 2 && !GrowIndex()) ||
        (number % chunkSize == 0 && !GrowChunks())) {
        return nullptr;
    }
    auto* const record = new (RecordAt(number)) CIdentifier;
    record->name = namePool.Store(name);
    record->nameLength = static_cast<std::uint32_t>(name.size());
    ++totalCount;
    Insert(index, indexMask, {record, hash});
    return record;
}

bool CIdentifierManager::GrowIndex() {
    const std::uint32_t grownSize = index == &freeEntry ? 512 : (indexMask + 1) * 2;
    auto* const grown =
        static_cast<IndexEntry*>(platform::Allocate(grownSize * sizeof(IndexEntry)));
    if (grown == nullptr) {
        return false;
    }
    std::memset(grown, 0, grownSize * sizeof(IndexEntry));
    for (std::uint32_t i = 0; i <= indexMask; ++i) {
        if (index[i].record != nullptr) {
            Insert(grown, grownSize - 1, index[i]);
        }
    }
    FreeIndex();
    index = grown;
    indexMask = grownSize - 1;
    return true;
}

void CIdentifierManager::FreeIndex() {
    if (index != &freeEntry) {
        platform::Free(index);
    }
}

bool CIdentifierManager::GrowChunks() {
    const std::uint32_t chunkNumber = static_cast<std::uint32_t>(totalCount) / chunkSize;
    if (chunkNumber == chunkCapacity) {
        const std::uint32_t grownCapacity = chunkCapacity == 0 ? 16 : chunkCapacity * 2;
        void* const grown = platform::Reallocate(chunks, grownCapacity * sizeof(CIdentifier*));
        if (grown == nullptr) {
            return false;
        }
        chunks = static_cast<CIdentifier**>(grown);
        chunkCapacity = grownCapacity;
    }
    void* const chunk = platform::Allocate(chunkSize * sizeof(CIdentifier));
    chunks[chunkNumber] = static_cast<CIdentifier*>(chunk);
    return chunk != nullptr;
}

std::int32_t CIdentifierManager::AddID(const Definition& definition) {
    const std::uint64_t hash = HashOf(definition.name);
    CIdentifier* record = Find(definition.name, hash);
    const bool isNew = record == nullptr;
    if (isNew) {
        record = Enter(definition.name, hash);
        if (record == nullptr) {
            return 0;
        }
    } else if ((record->flags & IDF_RESERVED) != 0) {
        if (log != nullptr) {
            log->AddText(
                {"Attempt to use command/instruction as a label! [", record->Name(), "]\n"});
        }
        errors->Report(MSG_RESERVED_NAME, definition.name, definition.file, definition.line);
        return 0;
    } else if ((record->flags & (IDF_LABEL | IDF_EQU)) != 0) {
        if (log != nullptr) {
            log->AddText({"Label redefinition! [", record->Name(), "]\n"});
        }
        errors->Report(MSG_REDEFINITION, definition.name, definition.file, definition.line);
        return 0;
    }
    record->flags |= definition.flags;
    record->line = definition.line;
    record->file = definition.file;
    record->value = definition.value;
    if (!isNew) {
        ApplyPatches(record);
    }
    return 0;
}

// `identifier` was only referred to and has got its definition: what waits for it gets its turn, if
// there is a value.
void CIdentifierManager::ApplyPatches(CIdentifier* identifier) {
    if ((identifier->flags & IDF_RESOLVED) == 0) {
        if (log != nullptr) {
            log->AddText({"Could not backpatch yet! [", identifier->Name(), "]\n"});
        }
        return;
    }
    CPatchInfo* patch = std::exchange(identifier->patches, nullptr);
    if (patch == nullptr) {
        errors->Report(MSG_NO_PATCHES, identifier->Name(), identifier->file, identifier->line);
        return;
    }
    --waitingCount;
    while (patch != nullptr) {
        CPatchInfo* const next = patch->next;
        if (const std::int32_t result = Backpatch(patch); result != 0) {
            errors->Report(result, identifier->Name(), patch->origin.file, patch->origin.line);
        }
        CPatchInfoMemBlock::FreePatchInfo(patch);
        patch = next;
    }
}

CIdentifier* CIdentifierManager::FindID(std::string_view name, bool markUsed) {
    CIdentifier* const record = Find(name);
    if (record == nullptr || (record->flags & IDF_RESOLVED) == 0) {
        return nullptr;
    }
    if (markUsed) {
        record->flags |= IDF_USED;
    }
    return record;
}

std::int32_t CIdentifierManager::AddPatch(std::string_view name, CPatchInfo* patch) {
    const std::uint64_t hash = HashOf(name);
    CIdentifier* record = Find(name, hash);
    if (log != nullptr) {
        log->AddText({"Adding patch for: [", name, "] -> [", patch->expression.View(), "]\n"});
    }
    if (record == nullptr) {
        record = Enter(name, hash);
        if (record == nullptr) {
            CPatchInfoMemBlock::FreePatchInfo(patch);
            return 0;
        }
    }
    patch->identifier = record;
    if ((record->flags & IDF_RESOLVED) != 0) {
        const std::int32_t result = Backpatch(patch);
        CPatchInfoMemBlock::FreePatchInfo(patch);
        return result;
    }
    if (record->patches == nullptr) {
        ++waitingCount;
    }
    patch->next = record->patches;
    record->patches = patch;
    return 0;
}

// Links all records into the chains of their buckets, sorted by name.
void CIdentifierManager::LinkChains() {
    const auto bucketCount = static_cast<std::size_t>(tableSize);
    std::memset(buckets, 0, bucketCount * sizeof *buckets);
    for (std::uint32_t number = 0; number < static_cast<std::uint32_t>(totalCount); ++number) {
        CIdentifier* const record = RecordAt(number);
        record->next = std::exchange(buckets[BucketOf(record->Name(), tableSize)], record);
    }
    for (std::size_t i = 0; i < bucketCount; ++i) {
        buckets[i] = Sorted(buckets[i]);
    }
}

std::int32_t CIdentifierManager::ReportUnresolved() {
    if (waitingCount == 0) {
        return 0;
    }
    LinkChains();
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < tableSize; ++i) {
        for (const CIdentifier* record = buckets[i]; record != nullptr; record = record->next) {
            if (record->patches != nullptr) {
                const PatchOrigin& origin = record->patches->origin;
                errors->Report(MSG_UNRESOLVED, record->Name(), origin.file, origin.line);
                ++count;
            }
        }
    }
    return count;
}

void CIdentifierManager::ReleasePatches() {
    for (std::uint32_t number = 0; waitingCount > 0; ++number) {
        CPatchInfo* patch = std::exchange(RecordAt(number)->patches, nullptr);
        waitingCount -= patch == nullptr ? 0 : 1;
        while (patch != nullptr) {
            CPatchInfoMemBlock::FreePatchInfo(std::exchange(patch, patch->next));
        }
    }
}

std::int32_t CIdentifierManager::DumpIdentifiers(std::FILE* file) {
    LinkChains();
    ReportWriter out(file);
    out.Put("Identifier\t\tValue\tFlags\tFile(Line)\n");
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < tableSize; ++i) {
        for (const CIdentifier* record = buckets[i]; record != nullptr; record = record->next) {
            if ((record->flags & IDF_INTERNAL) == 0) {
                ++count;
                PutLine(&out, *record, fileNames->NameOf(record->file));
            }
        }
    }
    out.Put(std::to_string(count));
    out.Put(" user identifiers registered.\n");
    return 0;
}

std::int32_t CIdentifierManager::DumpStatus(std::FILE* stream) const {
    if (stream == nullptr) {
        return -1;
    }
    std::fprintf(stream, "   Total Count: %5d.\n   Table Size:  %5d.\n", totalCount, tableSize);
    return 0;
}

}  // namespace korv
