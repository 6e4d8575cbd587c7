/// From a mnemonic to its handler.
#pragma once

#include "codegen/handler.h"

namespace korv {

/// The keyword that a text begins with.
struct Recognised {
    InstructionHandler handler;  ///< null: none
    std::uint32_t length;        ///< of the keyword in characters
};

/// The keyword at the start of `text`, which is in upper case, up to a blank or the terminator. The
/// match is exact and whole.
[[nodiscard]] Recognised RecogniseInstruction(const char* text);

}  // namespace korv
