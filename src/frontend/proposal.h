/// Tries a proposed change before it is offered, so that no advice leads to the next message.
#pragma once

#include <vector>

#include "frontend/notes.h"

namespace korv {

/// Whether the lines that `edits` make of the statement have no fault that the lines alone show:
/// an unknown mnemonic, operands without a form, a broken expression, a register in one, a name
/// that neither the statement nor the run has, a byte out of range.
[[nodiscard]] bool IsSound(const RunFacts& facts, const StatementView& statement,
                           const std::vector<TextEdit>& edits);

}  // namespace korv
