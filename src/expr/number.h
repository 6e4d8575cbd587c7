/// Reads numbers in all notations: with a prefix, with a suffix, decimal, or as a character.
#pragma once

#include <cstdint>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "source/char_class.h"

namespace korv {

/// Result of `ReadNumber`: the token does not have the form of a number, and may be a name.
inline constexpr Status notANumber = -1;

/// The base that a letter denotes, after "&" or at the end of a number; 0: none.
[[nodiscard]] constexpr std::int32_t RadixOf(char letter) {
    return letter == 'B' ? 2 : letter == 'O' ? 8 : letter == 'D' ? 10 : letter == 'H' ? 16 : 0;
}

/// Reads `token`, which must be neither empty nor just "$". Result: 0 with the number in `value`;
/// MSG_GENERAL_FAILURE for a number without digits; MSG_BAD_NUMBER for a number above 65535;
/// MSG_BAD_EXPRESSION for a string that is not one character; else `notANumber`. `value` is set
/// only if the result is 0.
[[nodiscard]] Status ReadNumber(std::string_view token, std::int32_t* value);

/// Reads `token` if it is a decimal number of at most four digits, as most numbers are. Four digits
/// cannot exceed the limit. `token` must not be empty. False: `token` is something else.
[[nodiscard]] inline bool ReadShortDecimal(std::string_view token, std::int32_t* value) {
    if (token.size() > 4) {
        return false;
    }
    std::int32_t number = 0;
    for (const char c : token) {
        if (!HasClass(c, CC_DIGIT)) {
            return false;
        }
        number = number * 10 + (c - '0');
    }
    *value = number;
    return true;
}

}  // namespace korv
