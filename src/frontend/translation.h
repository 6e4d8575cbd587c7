/// A statement with all foreign spellings replaced. A note can then propose a statement that
/// assembles, even if only one of the spellings was reported.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/spelling.h"
#include "frontend/statement_view.h"

namespace korv {

/// The offset in `typed` at which the statement ends, before the comment and the blanks in front of
/// it.
[[nodiscard]] std::size_t StatementEnd(std::string_view typed);

/// True if the changed part stays in the statement: it does not become a comment or a second line.
[[nodiscard]] bool IsWithin(const TextEdit& edit);

struct Translation {
    std::string typed;      ///< the line as typed, translated, without its comment
    std::string line;       ///< the same, cleaned
    std::uint32_t end = 0;  ///< where the translated part ends in the original line
    std::int32_t changes = 0;

    /// The translated statement, as views of `typed` and `line`.
    [[nodiscard]] StatementView View() const { return CutStatement(line, typed); }
    /// The edit that replaces `statement`, from its mnemonic on, with `text`.
    [[nodiscard]] TextEdit Whole(const StatementView& statement, std::string text) const;
};

/// `statement` with the edits `first` applied, and then with all foreign spellings replaced.
[[nodiscard]] Translation Translate(const StatementView& statement,
                                    const std::vector<TextEdit>& first = {});

}  // namespace korv
