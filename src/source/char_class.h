/// The character classes used by the reader, the statement loop, the operands and the scanner. They
/// do not depend on the locale. Bytes from 0x80 up have no class.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace korv {

inline constexpr std::uint8_t CC_LETTER = 0x01;  ///< A to Z, a to z
inline constexpr std::uint8_t CC_DIGIT = 0x02;   ///< 0 to 9
inline constexpr std::uint8_t CC_HEX = 0x04;     ///< 0 to 9, A to F, a to i, "?", "@", "_"
inline constexpr std::uint8_t CC_BLANK = 0x08;   ///< tab, vertical tab, space
inline constexpr std::uint8_t CC_LOWER = 0x10;   ///< a to z

/// The characters of labels, and of names after the first character.
inline constexpr std::uint8_t CC_NAME = CC_LETTER | CC_DIGIT | CC_HEX;
/// The characters that can begin a name: letters, digits, "?", "@" and "_".
inline constexpr std::uint8_t CC_NAME_START = CC_LETTER | CC_HEX;

/// Bits CC_*, indexed by the character as an unsigned byte.
inline constexpr auto charClass = [] {
    std::array<std::uint8_t, 256> table{};
    const auto add = [&table](std::string_view characters, std::uint8_t bits) {
        for (const char c : characters) {
            table[static_cast<std::uint8_t>(c)] |= bits;
        }
    };
    add("ABCDEFGHIJKLMNOPQRSTUVWXYZ", CC_LETTER);
    add("abcdefghijklmnopqrstuvwxyz", CC_LETTER | CC_LOWER);
    add("0123456789", CC_DIGIT | CC_HEX);
    add("ABCDEFabcdefghi?@_", CC_HEX);  // lower-case letters up to i, others up to F
    add("\t\v ", CC_BLANK);
    return table;
}();

[[nodiscard]] constexpr bool HasClass(char c, std::uint8_t mask) noexcept {
    return (charClass[static_cast<unsigned char>(c)] & mask) != 0;
}

/// `c`, converted to upper case if it is a letter.
[[nodiscard]] constexpr char Raised(char c) noexcept {
    return HasClass(c, CC_LOWER) ? static_cast<char>(c - ('a' - 'A')) : c;
}

/// Skips the blanks at the start of the null-terminated `text`.
[[nodiscard]] constexpr const char* SkipBlanks(const char* text) noexcept {
    while (HasClass(*text, CC_BLANK)) {
        ++text;
    }
    return text;
}

/// The end, without trailing blanks, of the text from `start` to `end`.
template <typename Character>
[[nodiscard]] constexpr Character* WithoutBlanks(Character* start, Character* end) noexcept {
    while (end != start && HasClass(end[-1], CC_BLANK)) {
        --end;
    }
    return end;
}

/// `text` without its leading blanks.
[[nodiscard]] constexpr std::string_view WithoutLeadingBlanks(std::string_view text) noexcept {
    while (!text.empty() && HasClass(text.front(), CC_BLANK)) {
        text.remove_prefix(1);
    }
    return text;
}

/// `text` without the parentheses around it, if it has both. `text` must not be empty.
[[nodiscard]] constexpr std::string_view WithoutParentheses(std::string_view text) noexcept {
    const bool hasThem = text.front() == '(' && text.back() == ')';
    return hasThem ? std::string_view(text.data() + 1, text.size() - 2) : text;
}

static_assert(HasClass('7', CC_DIGIT) && HasClass('i', CC_HEX) && !HasClass('G', CC_HEX));
static_assert(!HasClass('\n', CC_BLANK) && !HasClass('\xE4', 0xFF));

}  // namespace korv
