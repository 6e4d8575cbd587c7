/// The sizes and T-states of a program and its parts.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// As tables for people to read. Needs `Wanted::statements` and `Wanted::names`.
[[nodiscard]] std::string SummaryText(const Analysis& analysis);

/// The same as one line of JSON.
[[nodiscard]] std::string SummaryJson(const Analysis& analysis);

}  // namespace korv
