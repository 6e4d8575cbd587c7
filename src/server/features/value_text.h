/// Values and bytes in the notation of the language.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// At least `digits` hexadecimal digits.
[[nodiscard]] std::string Hex(std::uint32_t value, std::size_t digits);

/// `value` in all bases; also as a character if that is visible.
[[nodiscard]] std::string ValueText(std::int32_t value);

/// The bytes of `statement`, separated by blanks; at most `most`, then "...".
[[nodiscard]] std::string BytesText(const Analysis& analysis, const Statement& statement,
                                    std::uint32_t most);

}  // namespace korv
