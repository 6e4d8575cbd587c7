/// Source-level debugging data (SLD, version 1), as DeZog and other debuggers read it.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// Needs `Wanted::statements` and `Wanted::names`. The memory is one slot of 64 KiB, page 0.
[[nodiscard]] std::string SldText(const Analysis& analysis);

}  // namespace korv
