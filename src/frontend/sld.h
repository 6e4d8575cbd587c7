/// Source-level debugging data (SLD, version 1), which DeZog and other debuggers read.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// Needs `Wanted::statements` and `Wanted::names`. Memory is described as one slot of 64 KiB, page
/// 0.
[[nodiscard]] std::string SldText(const Analysis& analysis);

}  // namespace korv
