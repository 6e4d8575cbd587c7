// A record is a start byte, the number of bytes of the target as 32 bits, lowest byte first, the
// text, and an end byte. There is no escape: a start or end byte within a text is taken for one.

#include "driver/debug_stream.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "codegen/bin_block.h"
#include "diagnostics/report_writer.h"
#include "platform/platform.h"
#include "source/short_text.h"

namespace korv {
namespace {

constexpr char recordStart = '\xAE';
constexpr char recordEnd = '\xAF';
constexpr std::size_t headSize = 1 + 4;  // start byte and count

// The text before the first `c`, all of it if there is none.
std::string_view Before(char c, std::string_view text) {
    return text.substr(0, std::min(text.find(c), text.size()));
}

// The lowest byte comes first, whatever the machine.
void StoreCount(char* to, std::uint32_t count) {
    for (int i = 0; i < 4; ++i, count >>= 8) {
        to[i] = static_cast<char>(count);
    }
}

std::uint32_t LoadCount(const char* from) {
    std::uint32_t count = 0;
    for (int i = 4; i-- > 0;) {
        count = count << 8 | static_cast<std::uint8_t>(from[i]);
    }
    return count;
}

}  // namespace

DebugStream::~DebugStream() {
    platform::Free(data);
}

bool DebugStream::Grow(std::size_t count) {
    constexpr std::size_t firstSize = 65536;
    const std::size_t grownSize = std::bit_ceil(std::max(used + count, firstSize));
    void* const grown = platform::Reallocate(data, grownSize);
    if (grown == nullptr) {
        return false;
    }
    data = static_cast<char*>(grown);
    capacity = grownSize;
    return true;
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
            CopyText(to, piece);
            to += piece.size();
        }
    }
}

void DebugStream::AddRecord(std::uint32_t byteCount, std::string_view line) {
    if (byteCount == 0 && line.empty()) {
        return;
    }
    if (char* const to = Append(headSize + line.size() + 1)) {
        to[0] = recordStart;
        StoreCount(to + 1, byteCount);
        CopyText(to + headSize, line);
        to[headSize + line.size()] = recordEnd;
    }
}

void DebugStream::WriteListing(const BinBlock& binary, std::FILE* listing) const {
    ReportWriter out(listing);
    std::uint32_t offset = 0;
    std::string_view rest(data, used);
    for (;;) {
        const std::string_view freeText = Before(recordStart, rest);
        out.Put(freeText);
        rest.remove_prefix(freeText.size());
        if (rest.size() < headSize) {
            return;
        }
        const std::uint32_t bits = LoadCount(rest.data() + 1);
        const auto count = static_cast<std::int32_t>(bits);
        rest.remove_prefix(headSize);
        out.Put('<');
        out.PutHex(offset, 2);
        out.Put("> [");
        for (std::int32_t i = 0; i < count; ++i) {
            out.PutByte(binary.At(offset + static_cast<std::uint32_t>(i)));
        }
        offset += count > 0 ? bits : 0;
        out.Put("] ");
        const std::string_view text = Before(recordEnd, rest);
        out.Put(text);
        if (text.size() == rest.size()) {
            return;
        }
        out.Put('\n');
        rest.remove_prefix(text.size() + 1);
    }
}

}  // namespace korv
