#include "symbols/identifier_listing.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "diagnostics/report_writer.h"
#include "source/file_name_registry.h"

namespace korv {
namespace {

std::uint32_t BucketOf(std::string_view name) {
    std::uint32_t h = 0;
    for (const char c : name) {
        h = h * 16 + static_cast<std::uint32_t>(static_cast<signed char>(c));
        const std::uint32_t g = h & 0xF0000000;
        if (g != 0) {
            // Unlike in the published hash, this shift is arithmetic: the order of listings depends
            // on it.
            h ^= static_cast<std::uint32_t>(static_cast<std::int32_t>(g) >> 24);
            h ^= g;
        }
    }
    return (h & 0x7FFFFFFF) % tableSize;
}

// Writes one line of the listing.
void PutLine(ReportWriter* out, const CIdentifier& record, std::string_view fileName) {
    out->Put(record.Name());
    char* to = PutPadding(out->Room(80), record.nameLength, 15);
    to = PutText(to, "\t ");
    to = PutHex(to, static_cast<std::uint32_t>(record.value), 4);
    to = PutText(to, "h\t");
    FlagString(record.flags, to);
    to = PutText(to + 6, " \t");
    out->Advance(PutPadding(to, fileName.size(), 13));
    out->Put(fileName);
    to = out->Room(16);
    *to++ = '(';
    to = std::to_chars(to, to + 11, record.line).ptr;
    out->Advance(PutText(to, ")\n"));
}

}  // namespace

void SortForListing(std::span<CIdentifier*> records) {
    for (CIdentifier* const record : records) {
        record->bucket = BucketOf(record->Name());
    }
    std::ranges::sort(records, [](const CIdentifier* a, const CIdentifier* b) {
        return a->bucket != b->bucket ? a->bucket < b->bucket : a->Name() < b->Name();
    });
}

void WriteListing(std::span<CIdentifier* const> records, const CFileNameRegistry& fileNames,
                  platform::OutputFile* file) {
    ReportWriter out(file);
    out.Put("Identifier\t\tValue\tFlags\tFile(Line)\n");
    std::int32_t count = 0;
    for (const CIdentifier* const record : records) {
        if ((record->flags & IDF_INTERNAL) == 0) {
            ++count;
            PutLine(&out, *record, fileNames.NameOf(record->file));
        }
    }
    out.Put(std::to_string(count));
    out.Put(" user identifiers registered.\n");
}

void FlagString(std::uint32_t flags, char* text) {
    const auto has = [flags](std::uint32_t bit) { return (flags & bit) != 0; };
    const char* const width = has(IDF_8BIT)    ? "08"
                              : has(IDF_16BIT) ? "16"
                              : has(IDF_32BIT) ? "32"
                                               : "??";
    *text++ = has(IDF_LABEL) ? 'L' : has(IDF_EQU) ? 'E' : has(IDF_RESERVED) ? 'S' : '.';
    *text++ = has(IDF_USED) ? 'U' : '.';
    *text++ = width[0];
    *text++ = width[1];
    *text++ = has(IDF_RESOLVED) ? 'R' : '.';
    *text++ = has(IDF_INTERNAL) ? 'I' : '.';
    *text = '\0';
}

}  // namespace korv
