/// The open levels of IF, and what is surprising about them.
#pragma once

#include <vector>

#include "diagnostics/source_place.h"
#include "driver/assembler.h"
#include "frontend/checks.h"

namespace korv {

class ConditionWatch {
  public:
    /// Whether the statement that has just been assembled was an IF, ELSE or ENDIF which changed
    /// the state of the run. Asked for every statement.
    [[nodiscard]] bool HasChanged(const CAssembler& assembler) const {
        return assembler.assembling != wasAssembling || assembler.conditionDepth != depth;
    }
    /// Takes over that change. Result: what to warn about in `statement`.
    Findings Follow(const CAssembler& assembler, const CStatement& statement);
    /// The IFs that have no ENDIF yet.
    [[nodiscard]] std::vector<SourcePlace> Open() const;

  private:
    struct Level {
        SourcePlace place;
        bool isLive;         // what it holds now is assembled, by all levels around it too
        bool isLiveOutside;  // the same for the IF itself
    };
    std::vector<Level> levels;
    std::int32_t depth = 0;          // of `levels`, as it is compared with every statement
    std::int32_t wasAssembling = 1;  // after the last change
};

}  // namespace korv
