/// Changes of the text that an editor offers: what the notes of messages propose.
#pragma once

#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// The message as the editor shows it.
[[nodiscard]] lsp::Diagnostic DiagnosticOf(const Snapshot& snapshot, const Message& message);

/// The fixes of the messages in lines `range` of `file`, then for each of their codes one for all
/// messages of the program that have it and a fix, if there are several.
[[nodiscard]] std::vector<lsp::CodeAction> ActionsIn(const Snapshot& snapshot, std::int32_t file,
                                                     const Range& range);

}  // namespace korv
