/// T-states of the processor's instructions, as its manufacturer publishes them: without wait
/// states, contended memory and interrupts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "frontend/analysis.h"

namespace korv {

/// They differ where a condition may be met or a block instruction may repeat.
struct Cycles {
    std::uint8_t least = 0;
    std::uint8_t most = 0;
    bool operator==(const Cycles&) const = default;
};

/// The T-states of the instruction that `bytes` begin with; 0 if no source assembles to them.
[[nodiscard]] Cycles CyclesOf(std::span<const std::uint8_t> bytes);

/// The same of a statement; 0 if it is not an instruction or has no bytes.
[[nodiscard]] Cycles CyclesOf(const Analysis& analysis, const Statement& statement);

/// Of the text of any `Cycles`.
inline constexpr std::size_t longestCycles = 7;
/// Writes that text to `to`, which has room for the longest. Result: its end.
char* PutCycles(char* to, Cycles cycles);

/// "10", or "17/10" with the longer time first; empty for 0.
[[nodiscard]] std::string CyclesText(Cycles cycles);

}  // namespace korv
