/// The listing: the source with its addresses and bytes, the messages, and the names.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "frontend/analysis.h"

namespace korv {

/// The T-states of an instruction by its bytes, as "10" or "17/10".
using CyclesOf = std::function<std::string(std::span<const std::uint8_t>)>;

/// Needs `Wanted::statements`, `Wanted::names` and `Wanted::uses`. Lists a source with errors too,
/// each message under its line. Without `cyclesOf` there is no column for T-states.
[[nodiscard]] std::string ListingText(const Analysis& analysis, const CyclesOf& cyclesOf = {});

}  // namespace korv
