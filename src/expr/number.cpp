#include "expr/number.h"

#include <algorithm>

namespace korv {
namespace {

constexpr std::int32_t maxNumber = 65535;

// In base 16, any character of class CC_HEX is a digit: "?", "@" and "_" get their values from
// their codes, as letters do. In base 2, dots may separate groups of digits.
Status ReadDigits(std::string_view digits, std::int32_t base, std::int32_t* value) {
    if (digits.empty()) {
        return MSG_GENERAL_FAILURE;
    }
    std::int32_t number = 0;
    for (const char c : digits) {
        if (base == 2 && c == '.') {
            continue;
        }
        std::int32_t digit = c - '0';
        if (digit < 0 || digit >= std::min(base, 10)) {
            if (base != 16 || !HasClass(c, CC_HEX)) {
                return notANumber;
            }
            digit = c - 'A' + 10;
        }
        number = number * base + digit;
        if (number > maxNumber) {
            return MSG_BAD_NUMBER;
        }
    }
    *value = number;
    return 0;
}

// Reads a number with a suffix for its base, or a decimal number. "B" is also a hexadecimal digit.
// "H" and "O" are not; each is a suffix only if nothing but digits precedes it.
Status ReadSuffixed(std::string_view token, std::int32_t* value) {
    const std::size_t last = token.size() - 1;
    const std::string_view digits = token.substr(0, last);
    std::size_t i = 0;
    while (i <= last && (HasClass(token[i], CC_HEX) || token[i] == '.')) {
        ++i;
    }
    if (i > last) {
        return token[last] == 'B' ? ReadDigits(digits, 2, value) : ReadDigits(token, 10, value);
    }
    if (i == last && (token[i] == 'H' || token[i] == 'O')) {
        return ReadDigits(digits, RadixOf(token[i]), value);
    }
    return notANumber;
}

}  // namespace

Status ReadNumber(std::string_view token, std::int32_t* value) {
    switch (token.front()) {
        case '"':
            if (token.size() != 3 || token[2] != '"') {
                return MSG_BAD_EXPRESSION;
            }
            *value = static_cast<signed char>(token[1]);
            return 0;
        case '$':
        case '#':
            return ReadDigits(token.substr(1), 16, value);
        case '%':
            return ReadDigits(token.substr(1), 2, value);
        case '&':
            return ReadDigits(token.substr(2), RadixOf(token[1]), value);
        default:
            return ReadSuffixed(token, value);
    }
}

}  // namespace korv
