/// Lays lines out in columns: label, mnemonic, operands, comment.
#pragma once

#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// The changes that lay out the lines `range` of `file`, a file of the program. They replace blanks
/// between the parts of a line by other blanks and so change no byte of the image. Left alone are
/// lines that are continued, that are comments, whose mnemonic is unknown or whose reading is in
/// doubt, and those that would become long.
[[nodiscard]] std::vector<lsp::TextEdit> FormattingEdits(const Snapshot& snapshot,
                                                         std::int32_t file, const Range& range,
                                                         const lsp::FormattingOptions& options);

}  // namespace korv
