/// Values and bytes in the notation of the language.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// `value` in at least `digits` hexadecimal digits.
[[nodiscard]] std::string Hex(std::uint32_t value, std::size_t digits);

/// `value` in several bases, and as a character if it is printable.
[[nodiscard]] std::string ValueText(std::int32_t value);

/// The bytes of `statement`, separated by blanks. If there are more than `most`, "..." follows.
[[nodiscard]] std::string BytesText(const Analysis& analysis, const Statement& statement,
                                    std::uint32_t most);

}  // namespace korv
