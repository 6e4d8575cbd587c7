/// What is before the cursor in a line that need not assemble yet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korv {

/// The offset of the comment in a raw line; its size for none.
[[nodiscard]] std::size_t CommentStart(std::string_view line);

/// The text from the start of a line up to the cursor, as far as the line has been written: what
/// may follow depends on it. Works for lines that do not assemble.
struct LinePrefix {
    enum class Part : std::uint8_t { label, mnemonic, operand, string, comment };
    Part part = Part::label;       ///< in which the cursor is
    std::string mnemonic;          ///< in capitals; complete if the cursor is after it
    std::size_t operand = 0;       ///< index of the operand, if the cursor is in one
    std::string_view operandText;  ///< of that operand, up to the cursor
    std::string_view word;         ///< the unfinished word before the cursor, in `operandText`
};
/// `text` is the raw line up to the cursor; the views are of it.
[[nodiscard]] LinePrefix CutPrefix(std::string_view text);

}  // namespace korv
