/// What may be written at the cursor.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// The names in the directory `name`, as an INCLUDE of the file of the cursor would find it; those
/// of directories end with a slash.
using DirectoryListing = std::function<std::vector<std::string>(const std::string& name)>;

/// Mnemonics where one belongs; registers, conditions and names where the forms of the mnemonic
/// take them; files after INCLUDE. `line` is the raw line up to the cursor, which the last analysis
/// need not have seen. Nothing in strings and comments.
[[nodiscard]] std::vector<lsp::CompletionItem> CompletionsFor(const Snapshot& snapshot,
                                                              std::string_view line,
                                                              const DirectoryListing& filesIn);

/// The forms of the mnemonic before the cursor that agree with the operands before the one in hand;
/// none where the cursor is not among operands.
[[nodiscard]] std::optional<lsp::SignatureHelp> SignaturesFor(std::string_view line);

}  // namespace korv
