/// The routines of a program: its parts from label to label.
#pragma once

#include <cstdint>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

/// The code and data from a label to the next one, or to an ORG that changes the address.
struct Routine {
    const Name* label = nullptr;
    std::uint32_t address = 0;
    std::uint32_t count = 0;  ///< bytes; more than 0
    std::uint64_t least = 0;  ///< T-states if each instruction runs once and no condition is met
    std::uint64_t most = 0;   ///< the same if every condition is met
};

/// In the order of the source. Needs `Wanted::statements` and `Wanted::names`.
[[nodiscard]] std::vector<Routine> RoutinesOf(const Analysis& analysis);

}  // namespace korv
