/// T-states of the processor's instructions as published by its manufacturer, that is, without
/// wait states, contended memory or interrupts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "frontend/analysis.h"

namespace korv {

/// The numbers differ only if the instruction has a condition or is a repeating block instruction.
struct Cycles {
    std::uint8_t least = 0;
    std::uint8_t most = 0;
    bool operator==(const Cycles&) const = default;
};

/// The T-states of the instruction at the start of `bytes`; 0 if no source assembles to it.
[[nodiscard]] Cycles CyclesOf(std::span<const std::uint8_t> bytes);

/// The T-states of a statement; 0 if it is not an instruction or has no bytes.
[[nodiscard]] Cycles CyclesOf(const Analysis& analysis, const Statement& statement);

/// An upper bound for the length, in characters, of the text that `CyclesText` returns.
inline constexpr std::size_t longestCycles = 7;
/// Writes the text of `cycles` to `to`, which must have room for `longestCycles` characters.
/// Result: the end of the text.
char* PutCycles(char* to, Cycles cycles);

/// "10", or "17/10" with the longer time first; empty for 0.
[[nodiscard]] std::string CyclesText(Cycles cycles);

}  // namespace korv
