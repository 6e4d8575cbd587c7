/// Where a name is used that has to be changed: a proposal to rename a label without its uses would
/// lead to the next message.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

class StoredText;

/// The places in `text`, which is file `file`, where an operand has `name`, in upper case. A name
/// such as .LOOP or 1$, which is local elsewhere, is searched for between the labels around line
/// `line`. `budget` is the number of lines that may still be read; 0 after too many, and then
/// nothing is found.
[[nodiscard]] std::vector<Place> FindUses(const StoredText& text, std::int32_t file,
                                          std::string_view name, std::int32_t line,
                                          std::int32_t* budget);

}  // namespace korv
