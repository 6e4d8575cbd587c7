// A record is a start byte, the number of bytes of the target as 32 bits, lowest byte first, the
// text, and an end byte. There is no escape: a start or end byte within a text is taken for one.

#include "driver/debug_stream.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "codegen/bin_block.h"
#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "platform/platform.h"

namespace korv {
namespace {

constexpr char recordStart = '\xAE';
constexpr char recordEnd = '\xAF';
constexpr std::ptrdiff_t headSize = 1 + 4;  // start byte and count

// The first `c` from `start` on, `end` if there is none.
const char* Find(char c, const char* start, const char* end) {
    const void* const found = std::memchr(start, c, static_cast<std::size_t>(end - start));
    return found == nullptr ? end : static_cast<const char*>(found);
}

// The lowest byte comes first, whatever the machine. Written out, each is one move on most.
void StoreCount(char* to, std::uint32_t count) {
    to[0] = static_cast<char>(count);
    to[1] = static_cast<char>(count >> 8);
    to[2] = static_cast<char>(count >> 16);
    to[3] = static_cast<char>(count >> 24);
}

std::uint32_t LoadCount(const char* from) {
    const auto byteAt = [from](int i) { return std::uint32_t{static_cast<std::uint8_t>(from[i])}; };
    return byteAt(0) | byteAt(1) << 8 | byteAt(2) << 16 | byteAt(3) << 24;
}

// The bytes of the image, one record after the other.
class ListedBytes {
  public:
    explicit ListedBytes(const BinBlock& binary) : binary(binary) {}

    // Of the next one, as it is shown.
    [[nodiscard]] std::uint32_t Offset() const { return static_cast<std::uint32_t>(offset); }

    // Those of a record that claims `bits`, a signed number, of them. It may claim more than there
    // are: bytes of a source can pass for a record.
    void Put(std::uint32_t bits, const FlagsWord& flags, ReportWriter* out) {
        const std::uint64_t count = bits < 0x80000000 ? bits : 0;
        const std::uint64_t inside =
            std::min(count, binary.Position() - std::min<std::uint64_t>(offset, binary.Position()));
        const std::uint64_t outside = std::min(count - inside, mostOutside);
        mostOutside -= outside;
        std::uint64_t next = offset;
        offset += count;
        for (std::uint64_t left = inside + outside; left > 0 && !flags.Has(RF_ABORT);) {
            for (std::uint64_t piece = std::min<std::uint64_t>(left, 4096); piece > 0; --piece) {
                out->Advance(PutByte(out->Room(2), binary.At(static_cast<std::uint32_t>(next++))));
                --left;
            }
        }
    }

  private:
    const BinBlock& binary;
    std::uint64_t offset = 0;
    std::uint64_t mostOutside = 65536;  // bytes after the image that are still shown
};

}  // namespace

DebugStream::~DebugStream() {
    platform::Free(data);
}

bool DebugStream::Grow(std::size_t count) {
    constexpr std::size_t firstSize = 65536;
    const std::size_t grownSize = std::bit_ceil(std::max(used + count, firstSize));
    void* const grown = platform::Reallocate(data, grownSize);
    if (grown != nullptr) {
        data = static_cast<char*>(grown);
        capacity = grownSize;
    }
    return grown != nullptr;
}

char* DebugStream::Append(std::size_t count) {
    if (count > capacity - used && !Grow(count)) {
        return nullptr;
    }
    used += count;
    return data + used - count;
}

void DebugStream::AddText(std::initializer_list<std::string_view> pieces) {
    std::size_t size = 0;
    for (const std::string_view piece : pieces) {
        size += piece.size();
    }
    if (char* to = Append(size)) {
        for (const std::string_view piece : pieces) {
            to = PutText(to, piece);
        }
    }
}

void DebugStream::AddRecord(std::uint32_t byteCount, std::string_view line) {
    if (byteCount == 0 && line.empty()) {
        return;
    }
    if (char* const to = Append(static_cast<std::size_t>(headSize) + line.size() + 1)) {
        to[0] = recordStart;
        StoreCount(to + 1, byteCount);
        *PutText(to + headSize, line) = recordEnd;
    }
}

void DebugStream::WriteListing(const CAssembler* assembler, platform::OutputFile* listing) const {
    ReportWriter out(listing);
    ListedBytes bytes(assembler->binary);
    const char* next = data;
    const char* const end = data + used;
    while (next != end && !assembler->flags.Has(RF_ABORT)) {
        if (*next != recordStart) {
            const char* const start = Find(recordStart, next, end);
            out.Put({next, start});
            next = start;
        } else if (end - next < headSize) {
            return;
        } else {
            char* to = out.Room(12);
            *to++ = '<';
            out.Advance(PutText(PutHex(to, bytes.Offset(), 2), "> ["));
            bytes.Put(LoadCount(next + 1), assembler->flags, &out);
            out.Advance(PutText(out.Room(2), "] "));
            const char* const text = next + headSize;
            next = Find(recordEnd, text, end);
            out.Put({text, next});
            if (next != end) {
                out.Advance(PutText(out.Room(1), "\n"));
                ++next;
            }
        }
    }
}

}  // namespace korv
