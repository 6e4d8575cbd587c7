/// From a name to where it is defined and used, from INCLUDE to its file, and renaming.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// Where the name at `place` is defined, or the file that an INCLUDE or BINCLUDE there reads.
[[nodiscard]] std::vector<lsp::Location> DefinitionAt(const Snapshot& snapshot, const Place& place);

/// All uses of the name at `place`, also in skipped blocks.
[[nodiscard]] std::vector<lsp::Location> ReferencesAt(const Snapshot& snapshot, const Place& place,
                                                      bool includesDefinition);

/// The same within the file of `place`.
[[nodiscard]] std::vector<lsp::DocumentHighlight> HighlightsAt(const Snapshot& snapshot,
                                                               const Place& place);

/// The name at `place`, or why it cannot be renamed.
[[nodiscard]] std::variant<lsp::PreparedRename, lsp::Refusal> PrepareRename(
    const Snapshot& snapshot, const Place& place);

/// The changes that give the name at `place` the name `newName`, or why that cannot be.
[[nodiscard]] std::variant<lsp::WorkspaceEdit, lsp::Refusal> Rename(const Snapshot& snapshot,
                                                                    const Place& place,
                                                                    const std::string& newName);

/// The files of INCLUDE and BINCLUDE in `file`.
[[nodiscard]] std::vector<lsp::DocumentLink> LinksIn(const Snapshot& snapshot, std::int32_t file);

}  // namespace korv
