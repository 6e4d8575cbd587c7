// The table. A lookup goes through the index. The sorted chains of the buckets exist for the order
// of the listing and of the reports at the end, and are linked only when somebody looks at that
// order.

#include "symbols/identifier_manager.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>

#include "diagnostics/message_list.h"
#include "diagnostics/report_writer.h"
#include "driver/debug_stream.h"
#include "source/file_name_registry.h"
#include "symbols/patch.h"

namespace korv {
namespace {

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

// The bucket of `name` among `tableSize`: the order of the listing.
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

// The listing's column of flags.
std::array<char, 6> FlagString(std::uint32_t flags) {
    const auto has = [flags](std::uint32_t bit) { return (flags & bit) != 0; };
    const char* const width = has(IDF_8BIT)    ? "08"
                              : has(IDF_16BIT) ? "16"
                              : has(IDF_32BIT) ? "32"
                                               : "??";
    return {has(IDF_LABEL)      ? 'L'
            : has(IDF_EQU)      ? 'E'
            : has(IDF_RESERVED) ? 'S'
                                : '.',
            has(IDF_USED) ? 'U' : '.',
            width[0],
            width[1],
            has(IDF_RESOLVED) ? 'R' : '.',
            has(IDF_INTERNAL) ? 'I' : '.'};
}

// A line of the listing.
void PutLine(ReportWriter* out, const CIdentifier& record, std::string_view fileName) {
    out->Put(record.Name());
    char* to = PutPadding(out->Room(80), record.nameLength, 15);
    to = PutText(to, "\t ");
    to = PutHex(to, static_cast<std::uint32_t>(record.value), 4);
    to = PutText(to, "h\t");
    const std::array<char, 6> flagString = FlagString(record.flags);
    to = PutText(to, {flagString.data(), flagString.size()});
    to = PutText(to, " \t");
    out->Advance(PutPadding(to, fileName.size(), 13));
    out->Put(fileName);
    to = out->Room(16);
    *to++ = '(';
    to = std::to_chars(to, to + 11, record.line).ptr;
    out->Advance(PutText(to, ")\n"));
}

}  // namespace

CIdentifierManager::CIdentifierManager(std::FILE* console, std::int32_t tableSize)
    : tableSize(tableSize), namePool(console), console(console) {
    buckets.reserve(static_cast<std::size_t>(tableSize));
}

// Makes a record for a name that is not in the table.
[[gnu::noinline]] CIdentifier* CIdentifierManager::Enter(const HashedName& name) {
    if (static_cast<std::uint32_t>(recordCount) % chunkSize == 0) {
        chunks.push_back(std::make_unique_for_overwrite<Chunk>());
    }
    auto* const record = new (RecordAt(recordCount++))
        CIdentifier{.name = namePool.Store(name.text),
                    .nameLength = static_cast<std::uint32_t>(name.text.size())};
    if (reservedWords != nullptr && reservedWords->Has(name)) {
        record->flags = IDS_RESERVED_WORD;
        --unmetCount;
    }
    index.Insert(record, name.hash);
    return record;
}

std::int32_t CIdentifierManager::AddID(const Definition& definition) {
    const HashedName name = definition.name;
    CIdentifier* record = index.Find(name);
    const bool isNew = record == nullptr;
    if (isNew) {
        record = Enter(name);
    }
    if ((record->flags & (IDF_RESERVED | IDF_LABEL | IDF_EQU)) != 0) [[unlikely]] {
        Refuse(definition, (record->flags & IDF_RESERVED) != 0);
        return 0;
    }
    record->flags |= definition.flags;
    record->line = definition.place.line;
    record->file = definition.place.file;
    record->value = definition.value;
    if (!isNew) {
        ApplyPatches(record);
    }
    return 0;
}

// Reports that `definition` is of a name which may not be defined, or not again.
void CIdentifierManager::Refuse(const Definition& definition, bool isReserved) {
    if (log != nullptr) {
        log->AddText({isReserved ? "Attempt to use command/instruction as a label! ["
                                 : "Label redefinition! [",
                      definition.name, "]\n"});
    }
    errors->Report(isReserved ? MSG_RESERVED_NAME : MSG_REDEFINITION, definition.name,
                   definition.place);
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
        errors->Report(MSG_NO_PATCHES, identifier->Name(),
                       {.file = identifier->file, .line = identifier->line});
        return;
    }
    --waitingCount;
    while (patch != nullptr) {
        CPatchInfo* const next = patch->next;
        const SourcePlace place = patch->origin.place;
        if (const Status result = ApplyPatch(patch); result != 0) {
            errors->Report(result, identifier->Name(), place);
        }
        patch = next;
    }
}

Status CIdentifierManager::ApplyPatch(CPatchInfo* patch) {
    const Status result = Backpatch(patch);
    CPatchInfoMemBlock::FreePatchInfo(patch);
    return result;
}

Status CIdentifierManager::AddPatch(std::string_view name, CPatchInfo* patch) {
    const HashedName hashed = name;
    CIdentifier* const known = index.Find(hashed);
    CIdentifier* const record = known != nullptr ? known : Enter(hashed);
    patch->identifier = record;
    if (log != nullptr) [[unlikely]] {
        log->AddText({"Adding patch for: [", name, "] -> [", patch->Expression(), "]\n"});
    }
    if ((record->flags & IDF_RESOLVED) != 0) [[unlikely]] {
        return ApplyPatch(patch);
    }
    waitingCount += record->patches == nullptr ? 1 : 0;
    patch->next = std::exchange(record->patches, patch);
    return 0;
}

// Links all records into the chains of their buckets, sorted by name.
void CIdentifierManager::LinkChains() {
    buckets.assign(static_cast<std::size_t>(tableSize), nullptr);
    for (std::int32_t number = 0; number < recordCount; ++number) {
        CIdentifier* const record = RecordAt(number);
        record->next = std::exchange(buckets[BucketOf(record->Name(), tableSize)], record);
    }
    std::transform(buckets.begin(), buckets.end(), buckets.begin(), Sorted);
}

std::int32_t CIdentifierManager::ReportUnresolved() {
    if (waitingCount == 0) {
        return 0;
    }
    LinkChains();
    std::int32_t count = 0;
    for (const CIdentifier* record : buckets) {
        for (; record != nullptr; record = record->next) {
            if (record->patches != nullptr) {
                errors->Report(MSG_UNRESOLVED, record->Name(), record->patches->origin.place);
                ++count;
            }
        }
    }
    return count;
}

void CIdentifierManager::ReleasePatches() {
    for (std::int32_t number = 0; waitingCount > 0; ++number) {
        CPatchInfo* patch = std::exchange(RecordAt(number)->patches, nullptr);
        waitingCount -= patch == nullptr ? 0 : 1;
        while (patch != nullptr) {
            CPatchInfoMemBlock::FreePatchInfo(std::exchange(patch, patch->next));
        }
    }
}

std::int32_t CIdentifierManager::DumpIdentifiers(platform::OutputFile* file) {
    LinkChains();
    ReportWriter out(file);
    out.Put("Identifier\t\tValue\tFlags\tFile(Line)\n");
    std::int32_t count = 0;
    for (const CIdentifier* record : buckets) {
        for (; record != nullptr; record = record->next) {
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
    std::fprintf(stream, "   Total Count: %5d.\n   Table Size:  %5d.\n", TotalCount(), tableSize);
    return 0;
}

}  // namespace korv
