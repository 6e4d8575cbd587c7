/// Tries a proposed change before it is offered, so that no advice leads to another error.
#pragma once

#include <vector>

#include "frontend/notes.h"

namespace korv {

/// True if the lines that result from `edits` have none of these faults: an unknown mnemonic,
/// operands that match no form, a broken expression, a register in an expression, a name that is
/// neither defined nor already in the statement, a byte out of range.
[[nodiscard]] bool IsSound(const RunFacts& facts, const StatementView& statement,
                           const std::vector<TextEdit>& edits);

/// Advice on a statement with one punctuation mistake, such as a missing comma, a wrong bracket,
/// or a mark swapped with its neighbour. Empty unless exactly one change makes the statement sound.
[[nodiscard]] Advice AdviseOnSlip(const RunFacts& facts, const FaultView& fault);

/// If the change that `advice` proposes is not sound, extends it to other foreign parts of the
/// statement, or else withdraws it and any note that names it.
void CheckProposal(const RunFacts& facts, const FaultView& fault, Advice* advice);

/// The mnemonic of the statement after the proposed change. An instruction in column 1 counts as
/// indented.
[[nodiscard]] std::string MeantMnemonic(const FaultView& fault, const Advice& advice);

/// True if a number or name exceeds the range of its operand: a byte, or a bit number.
[[nodiscard]] bool HasLargeName(const RunFacts& facts, const StatementView& statement);

}  // namespace korv
