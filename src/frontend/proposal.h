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

/// A statement that one sign makes sound: a comma that is missing, a sign that changed places with
/// its neighbour, or a bracket for another one. Empty advice for none, or for several.
[[nodiscard]] Advice AdviseOnSlip(const RunFacts& facts, const FaultView& fault);

/// Completes the change that `advice` proposes if other parts of the statement are foreign too, or
/// withdraws it, with the note if that names it.
void CheckProposal(const RunFacts& facts, const FaultView& fault, Advice* advice);

/// The mnemonic that was meant: of the statement with the changes that are proposed, or of an
/// instruction that begins in column 1.
[[nodiscard]] std::string MeantMnemonic(const FaultView& fault, const Advice& advice);

/// Whether an operand that takes a byte has a name with a larger value.
[[nodiscard]] bool HasLargeName(const RunFacts& facts, const StatementView& statement);

}  // namespace korv
