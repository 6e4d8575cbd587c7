/// How a text is shown: in quotes, and on a terminal with which of its bytes escaped and in how
/// many columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korv {

[[nodiscard]] inline std::string Quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

/// `text` with "\xHH" for control characters and bytes that are no UTF-8, so that no text acts on
/// the terminal. Tabs and line feeds stay.
[[nodiscard]] std::string EscapedText(std::string_view text);

/// Columns up to the end of `text` when it begins at `column`, from 0; a tab ends at a multiple
/// of 8. `isEscaped`: it is shown as `EscapedText` has it.
[[nodiscard]] std::size_t EndColumn(std::string_view text, std::size_t column, bool isEscaped);

/// Blanks and tabs that are as wide as `text`, whatever the width of a tab is.
[[nodiscard]] std::string BlankText(std::string_view text, bool isEscaped);

}  // namespace korv
