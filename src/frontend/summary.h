/// The sizes and T-states of a program and its parts.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

class TextBuffer;

/// The sizes and T-states as tables for people to read. Needs `Wanted::statements` and
/// `Wanted::names`.
[[nodiscard]] std::string SummaryText(const Analysis& analysis);
/// Appends these tables to `text`.
void PutSummary(const Analysis& analysis, TextBuffer* text);

/// The sizes and T-states as one line of JSON.
[[nodiscard]] std::string SummaryJson(const Analysis& analysis);

}  // namespace korv
