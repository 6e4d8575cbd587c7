/// Parts of an operand that other assemblers write otherwise: each with its spelling here. None is
/// looked for in strings.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frontend/statement_view.h"

namespace korv {

/// A change of the line.
struct TextEdit {
    LinePart part;
    std::string text;
};

/// A part with a foreign spelling.
struct Foreign {
    std::string_view part;
    std::string fix;   ///< its spelling here; empty: there is none
    std::string note;  ///< why, or what to do instead; empty: "write " and the spelling
};

inline constexpr const char* doubleQuoteNote = "use double quotes, also for one character";
inline constexpr const char* closeQuoteNote = "close the string with a double quote";
inline constexpr std::string_view largeNumberNote =
    "use at most 65535; a larger value has to be computed, as in 35000*2";

/// The first of `operand`; `part` without data for none.
[[nodiscard]] Foreign FindForeign(const StatementView& statement, const OperandView& operand);

/// What an escape sequence stands for, or a double quote; empty if `content` is neither.
[[nodiscard]] std::string EscapeValue(std::string_view content);

/// A number as it is written here, from `token` as another assembler writes it; empty if it is
/// none.
[[nodiscard]] std::string NumberSpelling(std::string_view token);

/// Where `name` begins in `text`, at or after `from`, as no part of a longer name; npos for
/// nowhere.
[[nodiscard]] std::size_t FindName(std::string_view text, std::string_view name,
                                   std::size_t from = 0);

/// `line` with `edits`, which are in its order.
[[nodiscard]] std::string Applied(std::string_view line, const std::vector<TextEdit>& edits);

}  // namespace korv
