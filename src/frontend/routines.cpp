#include "frontend/routines.h"

#include <algorithm>
#include <utility>

#include "frontend/cycles.h"

namespace korv {
namespace {

// The labels by opening and line, to find the label of a statement.
class Labels {
  public:
    explicit Labels(const Analysis& analysis) {
        for (const Name& name : analysis.names) {
            if (name.kind == NameKind::label) {
                labels.push_back(&name);
            }
        }
        std::ranges::sort(labels, {}, Position);
    }

    // The label of the statement; null if it has none.
    [[nodiscard]] const Name* Of(const Statement& statement) const {
        const auto found = std::ranges::lower_bound(
            labels, std::pair(statement.opening, statement.line), {}, Position);
        if (found == labels.end() || (*found)->opening != statement.opening ||
            std::int64_t{(*found)->definition.line} - statement.line >= statement.lineCount) {
            return nullptr;
        }
        return *found;
    }

  private:
    static std::pair<std::int32_t, std::int32_t> Position(const Name* name) {
        return {name->opening, name->definition.line};
    }

    std::vector<const Name*> labels;
};

}  // namespace

std::vector<Routine> RoutinesOf(const Analysis& analysis) {
    const Labels labels(analysis);
    std::vector<Routine> routines;
    Routine routine;
    std::uint32_t nextAddress = 0;
    const auto finish = [&] {
        if (routine.label != nullptr && routine.count != 0) {
            routines.push_back(routine);
        }
        routine = {};
    };
    for (const Statement& statement : analysis.statements) {
        if (statement.isSkipped) {
            continue;
        }
        if (const Name* const label = labels.Of(statement); label != nullptr) {
            finish();
            routine = {.label = label, .address = statement.address};
            nextAddress = statement.address;
        } else if (statement.count != 0 && statement.address != nextAddress) {
            finish();
        }
        if (statement.count != 0) {
            const Cycles cycles = CyclesOf(analysis, statement);
            routine.count += statement.count;
            routine.least += cycles.least;
            routine.most += cycles.most;
            nextAddress = statement.address + statement.count;
        }
    }
    finish();
    return routines;
}

}  // namespace korv
