/// Warnings about the program as a whole, from its analysis.
#pragma once

#include <vector>

#include "frontend/analysis.h"

namespace korv {

/// Adds `message`, a warning with its name, to those of `analysis` if `choice` wants it; as an
/// error if that says so. Its text and code are filled in.
void AddWarning(const WarningChoice& choice, Message message, Analysis* analysis);
/// Adds `message` if the limit of errors allows, and counts it in any case.
void AddMessage(Message message, Analysis* analysis);

/// A warning for each block that has addresses in common with an earlier one: at the block that is
/// later in the source.
[[nodiscard]] std::vector<Message> OverlapWarnings(const Analysis& analysis);

/// A warning for each label or EQU that no expression reads, in the order of the source.
[[nodiscard]] std::vector<Message> UnusedLabelWarnings(const Analysis& analysis);

}  // namespace korv
