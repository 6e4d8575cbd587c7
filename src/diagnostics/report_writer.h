/// The text of a report file, formatted without the general routines and written by the block,
/// since a listing has a line for each of the source.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "source/short_text.h"

namespace korv {

class ReportWriter {
  public:
    /// Writes to `file`, which is not owned and has to live longer.
    explicit ReportWriter(std::FILE* file) : file(file) {}
    ~ReportWriter() { Flush(); }
    ReportWriter(const ReportWriter&) = delete;
    ReportWriter& operator=(const ReportWriter&) = delete;

    void Put(char c) {
        *Room(1) = c;
        ++used;
    }
    void Put(std::string_view text) {
        while (text.size() > block.size() - used)
            [[unlikely]] {
                const std::size_t fitting = block.size() - used;
                CopyText(block.data() + used, text.substr(0, fitting));
                used += fitting;
                Flush();
                text.remove_prefix(fitting);
            }
        CopyText(block.data() + used, text);
        used += text.size();
    }
    /// `text` and blanks after it, or before it, that make it `width` characters long.
    void PutLeft(std::string_view text, std::size_t width) {
        Put(text);
        PutBlanks(width - std::min(width, text.size()));
    }
    void PutRight(std::string_view text, std::size_t width) {
        PutBlanks(width - std::min(width, text.size()));
        Put(text);
    }
    /// In hexadecimal, with at least `minDigits` digits.
    void PutHex(std::uint32_t value, int minDigits) {
        const int digits = std::max(minDigits, (static_cast<int>(std::bit_width(value)) + 3) / 4);
        char* to = Room(8);
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
            *to++ = hexDigits[value >> shift & 15];
        }
        used += static_cast<std::size_t>(digits);
    }
    void PutByte(std::uint8_t value) {
        char* const to = Room(2);
        to[0] = hexDigits[value >> 4];
        to[1] = hexDigits[value & 15];
        used += 2;
    }
    void PutDecimal(std::int32_t value) {
        char* const to = Room(11);
        used += static_cast<std::size_t>(std::to_chars(to, to + 11, value).ptr - to);
    }

  private:
    static constexpr char hexDigits[] = "0123456789ABCDEF";

    // The place of the next `count` characters, which are few.
    char* Room(std::size_t count) {
        if (count > block.size() - used) [[unlikely]] {
            Flush();
        }
        return block.data() + used;
    }
    void PutBlanks(std::size_t count) {
        while (count-- > 0) {
            Put(' ');
        }
    }
    void Flush() {
        std::fwrite(block.data(), 1, used, file);
        used = 0;
    }

    std::FILE* file;
    std::size_t used = 0;  // characters in `block` that are not written yet
    std::array<char, 16384> block;
};

}  // namespace korv
