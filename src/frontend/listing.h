/// The listing: the source with its addresses and bytes, the messages, and the names.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// Needs `Wanted::statements`, `Wanted::names` and `Wanted::useCounts`. A source with errors is
/// listed too, with each message under its line. Begins with the summary.
[[nodiscard]] std::string ListingText(const Analysis& analysis);

}  // namespace korv
