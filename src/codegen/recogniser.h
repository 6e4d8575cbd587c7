/// From a mnemonic to its handler.
#pragma once

#include "codegen/handler.h"

namespace korv {

/// The handler of the keyword `token`, which is terminated and in upper case, or null. The match is
/// exact and whole.
[[nodiscard]] InstructionHandler RecogniseInstruction(const char* token);

}  // namespace korv
