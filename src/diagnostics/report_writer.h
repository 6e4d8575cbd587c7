/// Formats the text of a report without the library's formatting routines and writes it in blocks,
/// since a listing has a line for each source line.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "platform/platform.h"

namespace korv {

/// These write to `to`, which must have room, and return the position after the last character.
inline char* PutText(char* to, std::string_view text) {
    return to + text.copy(to, text.size());  // `copy` also accepts a view without data
}

/// The two hexadecimal digits of each byte.
inline constexpr auto hexadecimal = [] {
    constexpr char digits[] = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        table[byte] = {digits[byte >> 4], digits[byte & 15]};
    }
    return table;
}();

inline char* PutHexByte(char* to, std::uint8_t value) {
    std::memcpy(to, hexadecimal[value].data(), 2);
    return to + 2;
}

/// Writes at least `minDigits` and at most 8 hexadecimal digits. There must be room for 8.
inline char* PutHex(char* to, std::uint32_t value, std::size_t minDigits) {
    std::array<char, 16> all{};
    for (std::size_t i = 0; i < 4; ++i) {
        PutHexByte(&all[2 * i], static_cast<std::uint8_t>(value >> (24 - 8 * i)));
    }
    const std::size_t digits = std::max(minDigits, (std::bit_width(value) + std::size_t{3}) / 4);
    std::memcpy(to, all.data() + 8 - digits, 8);
    return to + digits;
}

/// Writes the blanks that pad a text of `size` characters to `width` characters.
inline char* PutPadding(char* to, std::size_t size, std::size_t width) {
    return std::fill_n(to, std::max(size, width) - size, ' ');
}

/// The UTF-8 character at the start of a text.
struct PrintableCharacter {
    std::size_t size;  ///< in bytes; 0 for a control character or invalid UTF-8
    char32_t code;
};
/// `text` must not be empty.
[[nodiscard]] PrintableCharacter FirstCharacter(std::string_view text);

class ReportWriter {
  public:
    static constexpr std::size_t blockSize = 16384;

    /// Writes to a file or to the console, which is not owned and must outlive the writer.
    explicit ReportWriter(platform::OutputFile* file) : file(file) {}
    explicit ReportWriter(std::FILE* console)
        : console(console), isTerminal(platform::IsTerminal(console)) {}
    ~ReportWriter() { Flush(); }
    ReportWriter(const ReportWriter&) = delete;
    ReportWriter& operator=(const ReportWriter&) = delete;

    /// Returns a position with room for `count` characters, at most `blockSize`. `Advance` then
    /// appends the characters up to `end`.
    char* Room(std::size_t count) {
        if (count > static_cast<std::size_t>(block.data() + blockSize - next)) [[unlikely]] {
            Flush();
        }
        return next;
    }
    void Advance(char* end) { next = end; }

    /// Appends `text`, of any length.
    void Put(std::string_view text) {
        if (text.size() > blockSize) [[unlikely]] {
            Flush();
            Write(text);
        } else {
            Advance(PutText(Room(text.size()), text));
        }
    }

    void PutHexByte(std::uint8_t value) { Advance(korv::PutHexByte(Room(2), value)); }

    /// Like `Put`, for a text from a source or for a file name. On a terminal, "\xHH" replaces
    /// control characters and invalid UTF-8, so that the text can neither control the terminal nor
    /// imitate other output.
    void PutForeign(std::string_view text);

  private:
    void Flush();
    void Write(std::string_view text);

    platform::OutputFile* file = nullptr;
    std::FILE* console = nullptr;
    bool isTerminal = false;
    std::array<char, blockSize> block;
    char* next = block.data();
};

/// Prints `format` on the console, replacing each "%" with the next of `texts`. The texts are
/// written with `PutForeign`.
void PrintTexts(std::FILE* console, std::string_view format,
                std::initializer_list<std::string_view> texts);

}  // namespace korv
