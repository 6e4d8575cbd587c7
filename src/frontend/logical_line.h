/// A logical line as the reader cleans it, with the way back to the file. Needed only where an
/// offset in the cleaned line is not the column: after a continuation, or after a byte that the
/// reader drops.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

struct LogicalLine {
    /// Where a character of the file is.
    struct Position {
        std::int32_t line = 0;     ///< from 1
        std::uint32_t column = 0;  ///< in bytes, from 0
    };
    std::string text;
    std::vector<Position> positions;          ///< of each character of `text`
    std::vector<Position> continuedComments;  ///< the backslashes with which its comment goes on
    std::int32_t lastLine = 0;                ///< its last physical line
};

/// The logical line that begins at physical line `number` of `text`.
[[nodiscard]] LogicalLine LogicalLineAt(const StoredText& text, std::int32_t number);

/// Turns places in cleaned lines into places in files. Keeps the last line, since a line has often
/// several messages.
class PlaceMap {
  public:
    /// The cleaned line that begins at line `number` of `text`; valid until the next call.
    const LogicalLine& LineAt(const StoredText& text, std::int32_t number);

    /// The place in file `file`, whose text is `text`, of `length` characters from `offset` on in
    /// the cleaned line that begins at `line`.
    Place PlaceOf(std::int32_t file, const StoredText& text, std::int32_t line, std::size_t offset,
                  std::size_t length);

  private:
    const StoredText* lastText = nullptr;
    std::int32_t lastNumber = 0;
    LogicalLine last;
};

}  // namespace korv
