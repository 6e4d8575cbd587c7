#include "frontend/image_formats.h"

#include <algorithm>
#include <span>

#include "diagnostics/report_writer.h"

namespace korv {
namespace {

constexpr std::uint32_t bytesPerRecord = 16;

// A data record: ":", count, address, type 0, the bytes, and a byte that makes the sum 0.
void AppendDataRecord(std::uint32_t address, std::span<const std::uint8_t> bytes,
                      std::string* text) {
    char line[2 * (5 + bytesPerRecord) + 2];
    char* to = line;
    std::uint8_t sum = 0;
    const auto put = [&to, &sum](std::uint32_t value) {
        const auto byte = static_cast<std::uint8_t>(value);
        sum = static_cast<std::uint8_t>(sum + byte);
        to = PutHexByte(to, byte);
    };
    *to++ = ':';
    put(static_cast<std::uint32_t>(bytes.size()));
    put(address >> 8);
    put(address);
    put(0);
    std::ranges::for_each(bytes, put);
    put(0U - sum);
    *to++ = '\n';
    text->append(line, to);
}

}  // namespace

std::string ComImage(const Analysis& analysis) {
    return {analysis.image.begin(), analysis.image.end()};
}

std::string BinImage(const Analysis& analysis) {
    std::string text = "\xFE";
    for (const std::uint32_t word :
         {analysis.header.start, analysis.header.end, analysis.header.exec}) {
        text += static_cast<char>(word & 0xFF);
        text += static_cast<char>(word >> 8 & 0xFF);
    }
    return text.append(analysis.image.begin(), analysis.image.end());
}

std::string HexImage(const Analysis& analysis) {
    std::string text;
    for (const Block& block : analysis.blocks) {
        const auto bytes = std::span(analysis.image).subspan(block.offset, block.count);
        for (std::uint32_t done = 0; done < block.count; done += bytesPerRecord) {
            const std::uint32_t count = std::min(bytesPerRecord, block.count - done);
            AppendDataRecord(block.address + done, bytes.subspan(done, count), &text);
        }
    }
    return text + ":00000001FF\n";
}

}  // namespace korv
