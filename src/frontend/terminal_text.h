/// Quotes a text, escapes some of its bytes for a terminal, and counts the columns that it
/// occupies.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korv {

[[nodiscard]] inline std::string Quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

/// `text` with "\xHH" for control characters and bytes that are not UTF-8, so that it cannot
/// control the terminal. Tabs and line feeds are kept.
[[nodiscard]] std::string EscapedText(std::string_view text);

/// The column after `text` if it begins at `column`, from 0; a tab ends at a multiple of 8.
/// `isEscaped`: the text is shown as returned by `EscapedText`.
[[nodiscard]] std::size_t EndColumn(std::string_view text, std::size_t column, bool isEscaped);

/// Blanks and tabs that are as wide as `text` for any tab width.
[[nodiscard]] std::string BlankText(std::string_view text, bool isEscaped);

}  // namespace korv
