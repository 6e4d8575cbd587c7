/// Warnings about the program as a whole, from its analysis.
#pragma once

#include <vector>

#include "frontend/analysis.h"
#include "frontend/options.h"

namespace korv {

/// A warning for each block that has addresses in common with an earlier one: at the block that is
/// later in the source.
[[nodiscard]] std::vector<Message> OverlapWarnings(const Analysis& analysis);

/// A warning for each label or EQU that no expression reads, in the order of the source.
[[nodiscard]] std::vector<Message> UnusedLabelWarnings(const Analysis& analysis);

/// Appends to the messages those of the above, and of symbols that the symbol format cannot hold,
/// that `options` asks for. The outputs and warnings that are wanted say what it needs of
/// `analysis`.
void AddProgramWarnings(const Options& options, Analysis* analysis);

}  // namespace korv
