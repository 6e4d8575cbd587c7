#include "frontend/terminal_text.h"

#include <algorithm>
#include <span>

#include "diagnostics/report_writer.h"
#include "frontend/width_table.h"

namespace korv {
namespace {

bool IsIn(std::span<const CharacterRange> ranges, char32_t code) {
    const auto range = std::ranges::lower_bound(ranges, code, {}, &CharacterRange::last);
    return range != ranges.end() && range->first <= code;
}

std::size_t WidthOf(const PrintableCharacter& character, bool isEscaped) {
    constexpr std::size_t escapedWidth = 4;  // of "\xHH"
    if (character.size == 0) {
        return isEscaped ? escapedWidth : 1;
    }
    return IsIn(zeroWidthTable, character.code)     ? 0
           : IsIn(doubleWidthTable, character.code) ? 2
                                                    : 1;
}

// Calls `take` with the bytes and the width of each character of `text`.
template <typename Take>
void ForEachCharacter(std::string_view text, bool isEscaped, Take take) {
    while (!text.empty()) {
        const PrintableCharacter character = FirstCharacter(text);
        const std::size_t size = std::max<std::size_t>(character.size, 1);
        take(text.substr(0, size), WidthOf(character, isEscaped));
        text.remove_prefix(size);
    }
}

}  // namespace

std::string EscapedText(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        const bool isKept = text[0] == '\t' || text[0] == '\n';
        const std::size_t size = isKept ? 1 : FirstCharacter(text).size;
        if (size == 0) {
            const auto& digits = hexadecimal[static_cast<unsigned char>(text[0])];
            escaped.append("\\x").append(digits.data(), digits.size());
        }
        escaped += text.substr(0, size);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return escaped;
}

std::size_t EndColumn(std::string_view text, std::size_t column, bool isEscaped) {
    if (std::ranges::all_of(text, [](char c) { return c >= ' ' && c < '\x7F'; })) {
        return column + text.size();
    }
    constexpr std::size_t tabWidth = 8;
    ForEachCharacter(text, isEscaped, [&column](std::string_view bytes, std::size_t width) {
        column = bytes == "\t" ? (column / tabWidth + 1) * tabWidth : column + width;
    });
    return column;
}

std::string BlankText(std::string_view text, bool isEscaped) {
    std::string blanks;
    ForEachCharacter(text, isEscaped, [&blanks](std::string_view bytes, std::size_t width) {
        const bool isTab = bytes == "\t";
        blanks.append(isTab ? 1 : width, isTab ? '\t' : ' ');
    });
    return blanks;
}

}  // namespace korv
