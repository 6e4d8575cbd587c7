/// The structure of a program: its names as symbols, and what can be folded.
#pragma once

#include <string_view>
#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// The labels and constants that `file` defines, in the order of the text. The list is flat: which
/// labels are routines and which are places within one is not certain.
[[nodiscard]] std::vector<lsp::DocumentSymbol> SymbolsIn(const Snapshot& snapshot,
                                                         std::int32_t file);

/// The names of the whole program that contain `query`, without regard to case.
[[nodiscard]] std::vector<lsp::WorkspaceSymbol> SymbolsLike(const Snapshot& snapshot,
                                                            std::string_view query);

/// Blocks from IF to ENDIF, comments of several lines, and routines: a label that is followed by
/// code, up to the next such label.
[[nodiscard]] std::vector<lsp::FoldingRange> FoldingRangesIn(const Snapshot& snapshot,
                                                             std::int32_t file);

/// Address and bytes of a line after its end, where they move nothing.
enum class HintForm : std::uint8_t { none, address, addressAndBytes };
[[nodiscard]] std::vector<lsp::InlayHint> InlayHintsIn(const Snapshot& snapshot, std::int32_t file,
                                                       const Range& range, HintForm form);

}  // namespace korv
