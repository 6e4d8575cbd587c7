#include "server/text_position.h"

#include <algorithm>

#include "diagnostics/report_writer.h"

namespace korv {
namespace {

// The character at the start of `line`, which is not empty: its bytes, and its units.
struct Character {
    std::size_t bytes;
    std::uint32_t units;
};

Character CharacterAt(std::string_view line, PositionEncoding encoding) {
    const PrintableCharacter first = FirstCharacter(line);
    const std::size_t bytes = std::max<std::size_t>(first.size, 1);
    if (encoding == PositionEncoding::utf8) {
        return {bytes, static_cast<std::uint32_t>(bytes)};
    }
    return {bytes, bytes == 4 ? 2U : 1U};
}

}  // namespace

std::uint32_t UnitsOf(std::string_view line, std::size_t column, PositionEncoding encoding) {
    std::uint32_t units = 0;
    for (std::size_t at = 0; at < std::min(column, line.size());) {
        const Character next = CharacterAt(line.substr(at), encoding);
        at += next.bytes;
        units += next.units;
    }
    return units;
}

std::size_t ColumnOf(std::string_view line, std::uint32_t character, PositionEncoding encoding) {
    std::size_t column = 0;
    while (column < line.size()) {
        const Character next = CharacterAt(line.substr(column), encoding);
        if (next.units > character) {
            break;
        }
        column += next.bytes;
        character -= next.units;
    }
    return column;
}

std::size_t OffsetOf(std::string_view text, Position position, PositionEncoding encoding) {
    std::size_t start = 0;
    for (std::uint32_t line = 0; line < position.line; ++line) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            return text.size();
        }
        start = end + 1;
    }
    std::string_view line = text.substr(start);
    line = line.substr(0, line.find('\n'));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return start + ColumnOf(line, position.character, encoding);
}

void Replace(std::string* text, const Range& range, std::string_view replacement,
             PositionEncoding encoding) {
    const std::size_t start = OffsetOf(*text, range.start, encoding);
    const std::size_t end = std::max(start, OffsetOf(*text, range.end, encoding));
    text->replace(start, end - start, replacement);
}

}  // namespace korv
