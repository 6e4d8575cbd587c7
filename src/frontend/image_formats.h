/// The image as file contents, in each output format of `korv-as`.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

/// A .com: the image alone.
[[nodiscard]] std::string ComImage(const Analysis& analysis);

/// A .bin: the load header from `analysis`, and the image.
[[nodiscard]] std::string BinImage(const Analysis& analysis);

/// Intel HEX: records of up to 16 bytes, with each block at its address, and the end record.
[[nodiscard]] std::string HexImage(const Analysis& analysis);

}  // namespace korv
