// A record is a start byte, the number of bytes of the target as 32 bits, lowest byte first, the
// text, and an end byte. There is no escape: a start or end byte within a text is taken for one.

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

// Takes the text before the first `c` from the start of `text`, all of it if there is none.
std::string_view TakeUpTo(char c, std::string_view* text) {
    const std::string_view taken = text->substr(0, text->find(c));
    text->remove_prefix(taken.size());
    return taken;
}

// The lowest byte first on every machine. GCC makes one move of it where that is the machine's
// order.
void StoreCount(char* to, std::uint32_t count) {
    to[0] = static_cast<char>(count);
    to[1] = static_cast<char>(count >> 8);
    to[2] = static_cast<char>(count >> 16);
    to[3] = static_cast<char>(count >> 24);
}

// It is a signed number; what is below 0 counts as none.
std::uint32_t LoadCount(const char* from) {
    const auto byteAt = [from](int i) { return std::uint32_t{static_cast<std::uint8_t>(from[i])}; };
    const std::uint32_t count = byteAt(0) | byteAt(1) << 8 | byteAt(2) << 16 | byteAt(3) << 24;
    return count < 0x80000000 ? count : 0;
}

// A record may claim more bytes than the image has, since bytes of a source can pass for one: after
// the image so many are shown.
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
        StoreCount(to + 1, byteCount);
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
        const std::uint64_t following = offset + LoadCount(rest.data() + 1);
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
