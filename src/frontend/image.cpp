// The image as bytes and as Intel HEX.

#include <algorithm>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "frontend/outputs.h"

namespace korv {
namespace {

// A record: ":", count, address, type 0, bytes, and what brings their sum to 0.
void AppendDataRecord(std::string* text, std::uint32_t address, std::string_view bytes) {
    char line[2 * 32 + 16];
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
    for (const char c : bytes) {
        put(static_cast<std::uint8_t>(c));
    }
    put(0U - sum);
    text->append(line, to).append("\n");
}

}  // namespace

std::string ImageBytes(CAssembler* assembler) {
    std::string image;
    if (assembler->flags.Has(RF_BINARY)) {
        const auto header = assembler->MakeLoadHeader();
        image.assign(header.begin(), header.end());
    }
    const std::span<const std::uint8_t> bytes = assembler->binary.Bytes();
    return image.append(bytes.begin(), bytes.end());
}

std::string HexText(const std::string& image, const std::vector<Block>& blocks) {
    constexpr std::uint32_t bytesPerRecord = 16;
    std::string text;
    for (const Block& block : blocks) {
        for (std::uint32_t done = 0; done < block.count; done += bytesPerRecord) {
            const std::uint32_t count = std::min(bytesPerRecord, block.count - done);
            AppendDataRecord(&text, block.address + done,
                             std::string_view(image).substr(block.offset + done, count));
        }
    }
    return text + ":00000001FF\n";
}

}  // namespace korv
