/// Appends numbers as decimal text, without making a string for each.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>

namespace korv {

inline void AppendNumber(std::string* text, std::int64_t value) {
    char digits[24];
    text->append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace korv
