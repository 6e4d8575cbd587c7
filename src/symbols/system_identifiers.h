/// The words that no source line may define.
#pragma once

#include <string_view>

namespace korv {

/// Separated by one tab each.
extern const std::string_view reservedWords;

}  // namespace korv
