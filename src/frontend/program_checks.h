/// Warnings about the program as a whole, from its analysis.
#pragma once

#include <vector>

#include "frontend/analysis.h"

namespace korv {

/// Adds the named warning `message` to `analysis`, as a warning or an error, if `choice` enables
/// it. Fills in its text and code.
void AddWarning(const WarningChoice& choice, Message message, Analysis* analysis);
/// Counts `message`, and adds it unless the error limit has been reached.
void AddMessage(Message message, Analysis* analysis);

/// Warns about overlapping blocks, at the later one in the source.
[[nodiscard]] std::vector<Message> OverlapWarnings(const Analysis& analysis);

/// Warns about each label or EQU that no expression uses, in the order of the source.
[[nodiscard]] std::vector<Message> UnusedLabelWarnings(const Analysis& analysis);

}  // namespace korv
