/// The colours of a file: what each word of it is to the assembler.
#pragma once

#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// The tokens in lines `range` of `file`, in the order of the text. A skipped line is a comment.
[[nodiscard]] std::vector<lsp::SemanticToken> SemanticTokensIn(const Snapshot& snapshot,
                                                               std::int32_t file,
                                                               const Range& range);

}  // namespace korv
