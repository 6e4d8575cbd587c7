// A record is a start byte, the number of bytes of the target as 32 bits, lowest byte first, the
// text, and an end byte. There is no escape: a start or end byte within a text is taken for one.

#include "driver/debug_stream.h"

#include <array>
#include <cstring>

#include "codegen/bin_block.h"

namespace korv {
namespace {

constexpr int recordStart = 0xAE;
constexpr int recordEnd = 0xAF;

// Prints the bytes of the target from `offset` on.
void PrintBytes(const BinBlock& binary, std::uint32_t offset, std::int32_t count,
                std::FILE* listing) {
    constexpr char digits[] = "0123456789ABCDEF";
    for (std::int32_t i = 0; i < count; ++i) {
        const std::uint8_t byte = binary.At(offset + static_cast<std::uint32_t>(i));
        std::fputc(digits[byte >> 4], listing);
        std::fputc(digits[byte & 15], listing);
    }
}

}  // namespace

void WriteDebugRecord(std::FILE* stream, std::uint32_t byteCount, const char* text) {
    if (byteCount == 0 && *text == '\0') {
        return;
    }
    std::fputc(recordStart, stream);
    for (int shift = 0; shift < 32; shift += 8) {
        std::fputc(static_cast<int>(byteCount >> shift & 0xFF), stream);
    }
    std::fputs(text, stream);
    std::fputc(recordEnd, stream);
}

void ConvertDebugStream(std::FILE* stream, const BinBlock& binary, std::FILE* listing) {
    std::uint32_t offset = 0;
    std::rewind(stream);
    for (int c = std::fgetc(stream); c != EOF; c = std::fgetc(stream)) {
        if (c != recordStart) {
            std::fputc(c, listing);
            continue;
        }
        std::array<std::uint8_t, 4> raw{};
        if (std::fread(raw.data(), 1, raw.size(), stream) != raw.size()) {
            return;
        }
        std::uint32_t bits = 0;
        for (std::size_t i = raw.size(); i-- > 0;) {
            bits = bits << 8 | raw[i];
        }
        const auto count = static_cast<std::int32_t>(bits);
        std::fprintf(listing, "<%02X> [", offset);
        PrintBytes(binary, offset, count, listing);
        offset += count > 0 ? bits : 0;
        std::fputs("] ", listing);
        while ((c = std::fgetc(stream)) != EOF && c != recordEnd) {
            std::fputc(c, listing);
        }
        if (c == EOF) {
            return;
        }
        std::fputc('\n', listing);
    }
}

}  // namespace korv
