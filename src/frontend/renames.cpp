#include "frontend/renames.h"

#include <algorithm>

#include "frontend/spelling.h"
#include "frontend/statement_view.h"
#include "frontend/stored_text.h"
#include "frontend/translation.h"
#include "source/char_class.h"

namespace korv {
namespace {

// True if the line begins with a label that ends the scope of local labels.
bool HasLabel(std::string_view line) {
    return !line.empty() && HasClass(line.front(), CC_NAME_START) &&
           !HasClass(line.front(), CC_DIGIT);
}

void AddUsesIn(std::string_view typed, const Place& start, std::string_view name,
               std::vector<Place>* uses) {
    const std::string line = Raised(typed.substr(0, StatementEnd(typed)));
    if (line.find(name) == std::string::npos) {
        return;
    }
    const StatementView statement = CutStatement(line);
    const std::string_view rest = statement.rest;
    bool isString = false;
    for (std::size_t at = 0, seen = 0; (at = FindName(rest, name, at)) != std::string_view::npos;
         seen = at++) {
        isString = isString != (std::ranges::count(rest.substr(seen, at - seen), '"') % 2 != 0);
        if (!isString) {
            Place use = start;
            use.column = statement.PartOf(rest.substr(at)).offset;
            use.length = static_cast<std::uint32_t>(name.size());
            uses->push_back(use);
        }
    }
}

}  // namespace

std::vector<Place> FindUses(const StoredText& text, std::int32_t file, std::string_view name,
                            std::int32_t line, std::int32_t* budget) {
    if (*budget < 0) {
        return {};
    }
    std::int32_t first = 1, last = text.LineCount();
    if (name.starts_with('.') || name.ends_with('$')) {
        for (first = line; first > 1 && !HasLabel(text.Line(first));) {
            --first;
        }
        std::int32_t next = line + 1;
        while (next <= last && !HasLabel(text.Line(next))) {
            ++next;
        }
        last = next - 1;
    }
    *budget -= last - first + 1;
    std::vector<Place> uses;
    for (std::int32_t number = first; number <= last && *budget >= 0; ++number) {
        AddUsesIn(text.Line(number), {file, number, 0, 0}, name, &uses);
    }
    return uses;
}

}  // namespace korv
