/// Finds the row of a mnemonic.
#pragma once

#include "codegen/handler.h"

namespace korv {

/// The row of the keyword at the start of `text`, which is in upper case; null for none. The whole
/// word, up to a blank or the terminator, must match exactly.
[[nodiscard]] const Keyword* RecogniseInstruction(const char* text);

}  // namespace korv
