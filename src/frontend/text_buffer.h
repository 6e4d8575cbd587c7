/// The text of an output while it is being built. A listing has a row for each line of the source,
/// so its writer requests room once per row, not once per piece.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "diagnostics/report_writer.h"

namespace korv {

/// Length of the longest number in decimal.
inline constexpr std::size_t longestNumber = 20;

/// Writes `value` in decimal to `to`, which must have room for the longest number. Result: its end.
template <typename Number>
char* PutNumber(char* to, Number value) {
    return std::to_chars(to, to + longestNumber, value).ptr;
}

/// Writes blanks up to `end` if that is after `to`, and up to 15 more after it: writing whole
/// pieces is faster than a call to `memset` with the exact number. Result: the later of `to` and
/// `end`.
inline char* PutBlanks(char* to, char* end) {
    constexpr std::size_t piece = 16;
    for (char* at = to; at < end; at += piece) {
        std::memset(at, ' ', piece);
    }
    return std::max(to, end);
}

class TextBuffer {
  public:
    /// Creates an empty text. `size` is the number of characters to expect: growing copies the
    /// text.
    explicit TextBuffer(std::size_t size = 0) { text.reserve(size); }

    /// Room for at least `count` characters. After writing them, pass their end to `Advance`.
    char* Room(std::size_t count) {
        if (count > text.size() - used) [[unlikely]] {
            constexpr std::size_t step = 1024;  // small, since resize() fills it with zeros
            text.resize(used + std::max(count, step));
        }
        return text.data() + used;
    }
    void Advance(char* end) { used = static_cast<std::size_t>(end - text.data()); }

    void Put(std::string_view piece) { Advance(PutText(Room(piece.size()), piece)); }

    [[nodiscard]] std::string_view Text() const { return {text.data(), used}; }
    /// Returns the text, and leaves the buffer empty.
    [[nodiscard]] std::string Take() {
        text.resize(std::exchange(used, 0));
        return std::exchange(text, {});
    }

  private:
    std::string text;      // `used` characters, then free room
    std::size_t used = 0;  // characters
};

}  // namespace korv
