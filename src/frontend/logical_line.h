/// A logical line as cleaned by the reader, with the place of each character in the file. The
/// places matter only if an offset in the cleaned line differs from the column: after a
/// continuation, or after a byte that the reader drops.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

struct LogicalLine {
    /// The place of a character in the file.
    struct Position {
        std::int32_t line = 0;     ///< from 1
        std::uint32_t column = 0;  ///< in bytes, from 0
    };
    std::string text;
    std::vector<Position> positions;          ///< of each character of `text`
    std::vector<Position> continuedComments;  ///< the backslashes that continue the comment
    std::int32_t lastLine = 0;                ///< its last physical line
};

/// The logical line that begins at physical line `number` of `text`. It is truncated to
/// `longestLine`, since longer lines do not assemble.
[[nodiscard]] LogicalLine LogicalLineAt(const StoredText& text, std::int32_t number);

/// Converts places in cleaned lines to places in files. Caches the last line, since a line often
/// has several messages.
class PlaceMap {
  public:
    /// The cleaned line that begins at line `number` of `text`; valid until the next call.
    const LogicalLine& LineAt(const StoredText& text, std::int32_t number);

    /// The place of the `length` characters at `offset` in the cleaned line that begins at `line`
    /// of the file with index `file` and contents `text`.
    Place PlaceOf(std::int32_t file, const StoredText& text, std::int32_t line, std::size_t offset,
                  std::size_t length);

  private:
    const StoredText* lastText = nullptr;
    std::int32_t lastNumber = 0;
    LogicalLine last;
};

}  // namespace korv
