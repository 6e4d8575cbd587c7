#include "server/features/value_text.h"

#include <algorithm>
#include <bitset>

#include "diagnostics/report_writer.h"

namespace korv {

std::string Hex(std::uint32_t value, std::size_t digits) {
    char text[8];
    return {text, PutHex(text, value, digits)};
}

std::string ValueText(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    const std::string decimal = std::to_string(value);
    if (value < -0x8000 || value > 0xFFFF) {  // possible only as part of an expression
        return Hex(bits, 8) + "H, " + decimal;
    }
    const bool isByte = value >= 0 && value <= 255;
    const std::string digits = Hex(bits & 0xFFFF, isByte ? 2 : 4);
    const std::string binary = std::bitset<16>(bits).to_string().substr(isByte ? 8 : 0);
    std::string text = digits + "H, " + decimal + ", " + binary + "B";
    if (value > ' ' && value < 0x7F && value != '"') {
        text += std::string(", \"") + static_cast<char>(value) + '"';
    }
    return text;
}

std::string BytesText(const Analysis& analysis, const Statement& statement, std::uint32_t most) {
    std::string text;
    for (std::uint32_t i = 0; i < std::min(statement.count, most); ++i) {
        text += (i == 0 ? "" : " ") + Hex(analysis.image[statement.offset + i], 2);
    }
    return text + (statement.count > most ? " ..." : "");
}

}  // namespace korv
