/// Parts of an operand that other assemblers write differently, each with its spelling in Korv.
/// Strings are not searched.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frontend/statement_view.h"

namespace korv {

/// A change to the line.
struct TextEdit {
    LinePart part;
    std::string text;
};

/// A part with a foreign spelling.
struct Foreign {
    std::string_view part;
    std::string fix;   ///< its spelling in Korv; empty: there is none
    std::string note;  ///< why, or what to do instead; empty: "write " and the spelling
};

inline constexpr std::string_view decimalDigits = "0123456789";
inline constexpr const char* doubleQuoteNote = "use double quotes, also for one character";
inline constexpr const char* closeQuoteNote = "close the string with a double quote";
inline constexpr std::string_view largeNumberNote =
    "use at most 65535; a larger value has to be computed, as in 35000*2";

/// The first foreign part of `operand`; `part` has null data if there is none.
[[nodiscard]] Foreign FindForeign(const StatementView& statement, const OperandView& operand);

/// The value of an escape sequence or of a double quote; empty if `content` is neither.
[[nodiscard]] std::string EscapeValue(std::string_view content);

/// `token` converted from the notation of another assembler to a number in Korv's notation; empty
/// if it is not a number.
[[nodiscard]] std::string NumberSpelling(std::string_view token);

/// The offset of the first `name` in `text`, at or after `from`, that is not part of a longer name;
/// npos if there is none.
[[nodiscard]] std::size_t FindName(std::string_view text, std::string_view name,
                                   std::size_t from = 0);

/// `line` with `edits` applied. The edits must be sorted by offset.
[[nodiscard]] std::string Applied(std::string_view line, const std::vector<TextEdit>& edits);

}  // namespace korv
