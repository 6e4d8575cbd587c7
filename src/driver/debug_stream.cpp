// A record consists of a start byte, the number of target bytes (32 bits, lowest byte first), the
// text, and an end byte. Bytes are not escaped: a start or end byte within the text is read as
// such.

#include "driver/debug_stream.h"

#include <algorithm>

#include "codegen/bin_block.h"
#include "diagnostics/report_writer.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr char recordStart = '\xAE';
constexpr char recordEnd = '\xAF';
constexpr std::size_t headSize = 1 + 4;  // start byte and count

// Removes the text before the first `c` from `text`, or all of it if there is no `c`. Result: the
// removed text.
std::string_view TakeUpTo(char c, std::string_view* text) {
    const std::string_view taken = text->substr(0, text->find(c));
    text->remove_prefix(taken.size());
    return taken;
}

// The number of target bytes in the record at `record`. It is signed; a negative number counts as
// 0.
std::uint32_t CountOf(std::string_view record) {
    std::uint32_t count = 0;
    for (std::size_t i = 4; i > 0; --i) {
        count = count << 8 | static_cast<std::uint8_t>(record[i]);
    }
    return count < 0x80000000 ? count : 0;
}

// A source can contain bytes that look like a record with more bytes than the image has. At most
// this many bytes after the end of the image are shown.
constexpr std::uint64_t mostOutside = 65536;

}  // namespace

void DebugStream::AddText(std::initializer_list<std::string_view> pieces) {
    std::size_t size = 0;
    for (const std::string_view piece : pieces) {
        size += piece.size();
    }
    if (char* to = records.Room(size)) {
        records.Advance(size);
        for (const std::string_view piece : pieces) {
            to = PutText(to, piece);
        }
    }
}

void DebugStream::AddRecord(std::uint32_t position, std::string_view line) {
    const std::uint32_t byteCount = position - std::exchange(binarySizeAtLineStart, position);
    if (byteCount == 0 && line.empty()) {
        return;
    }
    const std::size_t size = headSize + line.size() + 1;
    if (char* const to = records.Room(size)) {
        records.Advance(size);
        to[0] = recordStart;
        for (unsigned i = 0; i < 4; ++i) {
            to[1 + i] = static_cast<char>(byteCount >> 8 * i);
        }
        *PutText(to + headSize, line) = recordEnd;
    }
}

void DebugStream::WriteListing(const CAssembler* assembler, platform::OutputFile* listing) const {
    ReportWriter out(listing);
    const BinBlock& binary = assembler->binary;
    const FlagsWord& flags = assembler->flags;
    std::uint64_t offset = 0;
    std::string_view rest = records.Bytes();
    while (!rest.empty() && !flags.Has(RF_ABORT)) {
        if (rest.front() != recordStart) {
            out.Put(TakeUpTo(recordStart, &rest));
            continue;
        }
        if (rest.size() < headSize) {
            return;
        }
        char* const to = out.Room(12);
        *to = '<';
        out.Advance(PutText(PutHex(to + 1, static_cast<std::uint32_t>(offset), 2), "> ["));
        const std::uint64_t following = offset + CountOf(rest);
        const std::uint64_t shown = std::min(following, binary.Position() + mostOutside);
        for (; offset < shown && !flags.Has(RF_ABORT); ++offset) {
            out.PutHexByte(binary.At(static_cast<std::uint32_t>(offset)));
        }
        offset = following;
        out.Put("] ");
        rest.remove_prefix(headSize);
        out.Put(TakeUpTo(recordEnd, &rest));
        if (!rest.empty()) {
            out.Put("\n");
            rest.remove_prefix(1);
        }
    }
}

}  // namespace korv
