/// What an editor shows about the word under the cursor.
#pragma once

#include <optional>

#include "server/protocol.h"
#include "server/snapshot.h"

namespace korv {

/// About a name its value, kind, definition, comment and uses; about a number its other bases;
/// about a mnemonic what it does, its address, bytes and T-states; about "$" the address. None for
/// anything else.
[[nodiscard]] std::optional<lsp::Hover> HoverAt(const Snapshot& snapshot, const Place& place);

/// The comment at the end of line `line` of `text`, or else the one in the lines directly above it;
/// without its semicolons. Empty for none.
[[nodiscard]] std::string CommentOf(const StoredText& text, std::int32_t line);

}  // namespace korv
