/// A cleaned line cut into its parts, for messages about it.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "frontend/nearest.h"
#include "frontend/statement_view.h"

namespace korv {

/// All are views of the line; what is not there is empty, at the place where it would be.
struct LineParts {
    std::string_view label;  ///< without its colon
    bool hasColon = false;
    std::string_view word;                   ///< the mnemonic
    std::string_view rest;                   ///< all operands
    std::vector<std::string_view> operands;  ///< between the commas; may be empty
};

[[nodiscard]] LineParts SplitLine(std::string_view line);

/// Where `text` stands in `where` as a word of its own, outside of strings if it is none; npos: it
/// does not.
[[nodiscard]] std::size_t FindWhole(std::string_view where, std::string_view text);

/// Whether `text` is as `pattern` says: "*" is any characters, "?" one, "#" a digit, "^" a letter,
/// "|" parts alternatives, and a backslash takes away what a character means.
[[nodiscard]] bool Matches(std::string_view text, std::string_view pattern);

}  // namespace korv
