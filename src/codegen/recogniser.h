/// Finds the row of a mnemonic.
#pragma once

#include "codegen/handler.h"

namespace korv {

/// The row of the keyword at the start of `text`, which is in upper case, up to a blank or the
/// terminator; null for none. The match is exact and whole.
[[nodiscard]] const Keyword* RecogniseInstruction(const char* text);

}  // namespace korv
