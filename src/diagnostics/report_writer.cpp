#include "diagnostics/report_writer.h"

namespace korv {
PrintableCharacter FirstCharacter(std::string_view text) {
    const auto byteAt = [text](std::size_t i) {
        return i < text.size() ? static_cast<std::uint8_t>(text[i]) : std::uint8_t{0};
    };
    const std::uint8_t first = byteAt(0);
    if (first < 0x80) {
        return {first >= ' ' && first != 0x7F ? 1U : 0U, first};
    }
    const std::size_t size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t code = first & (0x7F >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) {
            return {0, first};
        }
        code = code << 6 | (byteAt(i) & 0x3F);
    }
    // Excludes the control characters from 0x80 to 0x9F, overlong forms, surrogates, and codes
    // above U+10FFFF.
    constexpr char32_t lowest[] = {~0U, ~0U, 0xA0, 0x800, 0x10000};
    const bool isHalf = code >= 0xD800 && code < 0xE000;
    const bool isCharacter = size != 0 && code >= lowest[size] && !isHalf && code < 0x110000;
    return {isCharacter ? size : 0, code};
}

void ReportWriter::Flush() {
    Write({block.data(), next});
    next = block.data();
}

void ReportWriter::Write(std::string_view text) {
    if (file != nullptr) {
        file->Write(text.data(), text.size());
    } else {
        std::fwrite(text.data(), 1, text.size(), console);
    }
}

void ReportWriter::PutForeign(std::string_view text) {
    if (!isTerminal) {
        Put(text);
        return;
    }
    while (!text.empty()) {
        const std::size_t size = FirstCharacter(text).size;
        if (size != 0) {
            Put(text.substr(0, size));
        } else {
            Put("\\x");
            PutHexByte(static_cast<std::uint8_t>(text.front()));
        }
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
}

void PrintTexts(std::FILE* console, std::string_view format,
                std::initializer_list<std::string_view> texts) {
    ReportWriter out(console);
    for (const std::string_view text : texts) {
        const std::size_t place = format.find('%');
        out.Put(format.substr(0, place));
        out.PutForeign(text);
        format.remove_prefix(place + 1);
    }
    out.Put(format);
}

}  // namespace korv
