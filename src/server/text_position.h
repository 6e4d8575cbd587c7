/// Positions in a text as editors count them, and the changes that they send.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korv {

/// How a client counts the characters of a line. UTF-16 unless it offers UTF-8.
enum class PositionEncoding : std::uint8_t { utf16, utf8 };

/// A place between two characters. Both count from 0.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t character = 0;  ///< in units of the encoding
    auto operator<=>(const Position&) const = default;
};

struct Range {
    Position start;
    Position end;  ///< exclusive
    bool operator==(const Range&) const = default;
};

/// Units of the first `column` bytes of `line`. A byte that is not UTF-8 counts as one character,
/// as an editor shows it.
[[nodiscard]] std::uint32_t UnitsOf(std::string_view line, std::size_t column,
                                    PositionEncoding encoding);

/// The byte column of `character` in `line`; the end of the line for one that is beyond it, the
/// start of the character for one inside a surrogate pair.
[[nodiscard]] std::size_t ColumnOf(std::string_view line, std::uint32_t character,
                                   PositionEncoding encoding);

/// The offset of `position` in `text`; the end of its line or of the text for one that is beyond.
[[nodiscard]] std::size_t OffsetOf(std::string_view text, Position position,
                                   PositionEncoding encoding);

/// Replaces what is at `range` in `text`.
void Replace(std::string* text, const Range& range, std::string_view replacement,
             PositionEncoding encoding);

}  // namespace korv
