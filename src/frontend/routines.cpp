#include "frontend/routines.h"

#include <algorithm>
#include <cstddef>

#include "frontend/cycles.h"

namespace korv {
namespace {

// The labels, sorted by opening and line, to find the label of a statement.
class Labels {
  public:
    explicit Labels(const Analysis& analysis) {
        for (const Name& name : analysis.names) {
            if (name.kind == NameKind::label) {
                labels.push_back({PositionOf(name.opening, name.definition.line), &name});
            }
        }
        std::ranges::sort(labels, {}, &Label::position);
        std::size_t next = 0;
        for (std::size_t opening = 0; opening < analysis.openings.size(); ++opening) {
            next = Next(next, PositionOf(static_cast<std::int32_t>(opening), 0));
            nextOf.push_back(next);
        }
    }

    // The label of `statement`; null if it has none. Must be called for the statements of each
    // opening in order.
    [[nodiscard]] const Name* Of(const Statement& statement) {
        const std::uint64_t position = PositionOf(statement.opening, statement.line);
        std::size_t& next = nextOf[static_cast<std::size_t>(statement.opening)];
        next = Next(next, position);
        return next != labels.size() && labels[next].position - position < statement.lineCount
                   ? labels[next].name
                   : nullptr;
    }

  private:
    struct Label {
        std::uint64_t position;
        const Name* name;
    };
    static std::uint64_t PositionOf(std::int32_t opening, std::int32_t line) {
        return static_cast<std::uint64_t>(opening) << 32 | static_cast<std::uint32_t>(line);
    }
    // The first label from `label` on that is at or after `position`.
    [[nodiscard]] std::size_t Next(std::size_t label, std::uint64_t position) const {
        while (label != labels.size() && labels[label].position < position) {
            ++label;
        }
        return label;
    }

    std::vector<Label> labels;
    // By opening: the first label at or after the statement last passed to `Of`.
    std::vector<std::size_t> nextOf;
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
