/// The ranges of values that a byte or a word can hold, each with the message for a value outside
/// it.
#pragma once

#include <cstdint>

#include "diagnostics/message_numbers.h"
#include "symbols/patch.h"

namespace korv {

struct ValueRange {
    std::int32_t low;
    std::int32_t high;
    Status message;

    [[nodiscard]] constexpr bool Holds(std::int32_t value) const {
        return value >= low && value <= high;
    }
};

inline constexpr ValueRange byteRange{-128, 255, MSG_NOT_BYTE};
inline constexpr ValueRange signedByteRange{-128, 127, MSG_NOT_SIGNED_BYTE};
inline constexpr ValueRange wordRange{-32768, 65535, MSG_NOT_WORD};
inline constexpr ValueRange signedWordRange{-32768, 32767, MSG_NOT_SIGNED_WORD};
/// Data bytes and port numbers: the same values as `byteRange`, but a known value outside the range
/// is an error.
inline constexpr ValueRange dataByteRange{-128, 255, MSG_NOT_UNSIGNED_BYTE};
/// Distances of relative jumps, with the message that a patch reports.
inline constexpr ValueRange relativeRange{-128, 127, MSG_OFFSET_TOO_BIG};

/// Indexed by the bits PF_8BIT and PF_SIGNED.
inline constexpr ValueRange widthRanges[2][2] = {{wordRange, signedWordRange},
                                                 {byteRange, signedByteRange}};

/// The range of a value of `kind` (PF_* bits), whether the value is known at once or patched later.
[[nodiscard]] constexpr const ValueRange& RangeOf(std::uint32_t kind) {
    if ((kind & PF_RELATIVE) != 0) {
        return relativeRange;
    }
    return widthRanges[kind / PF_8BIT % 2][kind / PF_SIGNED % 2];
}

/// The distance to `target` of a relative jump at `address`, counted from the end of its two bytes.
[[nodiscard]] constexpr std::int32_t RelativeOffset(std::int32_t target, std::uint32_t address) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(target) - address - 2);
}

}  // namespace korv
