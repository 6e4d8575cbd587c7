#include "frontend/routines.h"

#include <algorithm>
#include <utility>

#include "frontend/cycles.h"

namespace korv {
namespace {

// The labels by opening and line, which is where a statement finds its own.
class Labels {
  public:
    explicit Labels(const Analysis& analysis) {
        for (const Name& name : analysis.names) {
            if (name.kind == NameKind::label && name.opening != noIndex) {
                labels.push_back(&name);
            }
        }
        std::ranges::sort(labels, {}, Position);
        std::size_t next = 0;
        for (std::size_t opening = 0; opening < analysis.openings.size(); ++opening) {
            nextOf.push_back(next);
            while (next < labels.size() &&
                   static_cast<std::size_t>(labels[next]->opening) == opening) {
                ++next;
            }
        }
    }

    // The label of `statement`; null for none. The statements of a file are asked for in their
    // order.
    [[nodiscard]] const Name* Of(const Statement& statement) {
        std::size_t& next = nextOf[static_cast<std::size_t>(statement.opening)];
        while (next < labels.size() && labels[next]->opening == statement.opening &&
               labels[next]->definition.line < statement.line) {
            ++next;
        }
        if (next == labels.size() || labels[next]->opening != statement.opening ||
            std::int64_t{labels[next]->definition.line} - statement.line >= statement.lineCount) {
            return nullptr;
        }
        return labels[next];
    }

  private:
    static std::pair<std::int32_t, std::int32_t> Position(const Name* name) {
        return {name->opening, name->definition.line};
    }

    std::vector<const Name*> labels;
    std::vector<std::size_t> nextOf;  // by opening: its first label not before the last statement
};

}  // namespace

std::vector<Routine> RoutinesOf(const Analysis& analysis) {
    Labels labels(analysis);
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
