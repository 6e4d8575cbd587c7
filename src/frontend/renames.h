/// Finds the uses of a name that is being renamed: renaming only the label would lead to another
/// error.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

class StoredText;

/// The places in `text` where an operand contains `name`. `text` is the file with index `file`;
/// `name` is in upper case. A name such as .LOOP or 1$, which is local in other assemblers, is only
/// searched for between the labels around `line`. `budget` is the number of lines that may still be
/// read. If it is too small, it becomes negative and nothing is found.
[[nodiscard]] std::vector<Place> FindUses(const StoredText& text, std::int32_t file,
                                          std::string_view name, std::int32_t line,
                                          std::int32_t* budget);

}  // namespace korv
