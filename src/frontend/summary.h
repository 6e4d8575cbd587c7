/// The sizes of a program and of its parts, and how long they take.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// As tables for a person, each line ended. Needs `Wanted::statements` and `Wanted::names`.
[[nodiscard]] std::string SummaryText(const Analysis& analysis);

/// The same as one line of JSON.
[[nodiscard]] std::string SummaryJson(const Analysis& analysis);

}  // namespace korv
