#include "frontend/translation.h"

#include <algorithm>
#include <optional>

#include "frontend/note_rows.h"
#include "source/char_class.h"

namespace korv {
namespace {

// The first replacement of a foreign spelling that stays within the statement.
std::optional<TextEdit> FirstChange(const StatementView& statement) {
    for (const OperandView& operand : statement.operands) {
        const Foreign found = FindForeign(statement, operand);
        if (found.part.data() != nullptr) {
            const TextEdit edit{statement.PartOf(found.part), found.fix};
            if (IsWithin(edit)) {
                return edit;
            }
        } else if (const auto row = TokenAdvice(statement, operand);
                   row && row->edits.size() == 1 && IsWithin(row->edits[0])) {
            return row->edits[0];
        }
    }
    return std::nullopt;
}

}  // namespace

bool IsWithin(const TextEdit& edit) {
    return !edit.text.empty() && edit.text.find_first_of("\n;") != 0;
}

TextEdit Translation::Whole(const StatementView& statement, std::string text) const {
    const std::uint32_t start = statement.PartOf(statement.mnemonic).offset;
    return {{start, std::max(end, start) - start}, std::move(text)};
}

std::size_t StatementEnd(std::string_view typed) {
    const char* const start = typed.data();
    return static_cast<std::size_t>(WithoutBlanks(start, start + CommentStart(typed)) - start);
}

Translation Translate(const StatementView& statement, const std::vector<TextEdit>& first) {
    constexpr std::int32_t mostChanges = 32;
    constexpr std::size_t longest = 400;  // a bound for the work on one message
    Translation result;
    std::string typed = Applied(statement.typed, first);
    for (result.changes = first.empty() ? 0 : 1;; ++result.changes) {
        const std::size_t end = StatementEnd(typed);
        result.end = static_cast<std::uint32_t>(statement.typed.size() - (typed.size() - end));
        result.typed = typed.substr(0, end);
        result.line = Raised(result.typed);
        const auto change = end > longest || result.changes == mostChanges
                                ? std::nullopt
                                : FirstChange(CutStatement(result.line, typed));
        if (!change) {
            return result;
        }
        typed = Applied(typed, {*change});
    }
}

}  // namespace korv
