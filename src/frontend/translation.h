/// A statement with everything replaced that other assemblers write otherwise, so that what a note
/// proposes assembles even where only one part of it was reported.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frontend/spelling.h"
#include "frontend/statement_view.h"

namespace korv {

/// Where the comment of `typed` begins, or the blanks before it.
[[nodiscard]] std::size_t StatementEnd(std::string_view typed);

struct Translation {
    std::string typed;      ///< the line as typed, replaced, without its comment
    std::string line;       ///< the same, cleaned
    std::uint32_t end = 0;  ///< of what it replaces in the line as typed
    std::int32_t changes = 0;

    /// Views of `typed` and `line`.
    [[nodiscard]] StatementView View() const { return CutStatement(line, typed); }
    /// The change of `statement` from its mnemonic on to `text`.
    [[nodiscard]] TextEdit Whole(const StatementView& statement, std::string text) const;
};

/// `statement` with `first` and then with all other spellings replaced.
[[nodiscard]] Translation Translate(const StatementView& statement,
                                    const std::vector<TextEdit>& first = {});

}  // namespace korv
