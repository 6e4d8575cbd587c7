/// Keeps track of the open IFs, and warns about surprising ones.
#pragma once

#include <vector>

#include "diagnostics/source_place.h"
#include "driver/assembler.h"
#include "frontend/checks.h"

namespace korv {

class ConditionWatch {
  public:
    /// True if the statement that has just been assembled was an IF, ELSE or ENDIF that changed the
    /// state of the run. Called for every statement.
    [[nodiscard]] bool HasChanged(const CAssembler& assembler) const {
        return assembler.assembling != wasAssembling || assembler.conditionDepth != depth;
    }
    /// Records the change that `HasChanged` found. Result: the warnings about `statement`.
    Findings Follow(const CAssembler& assembler, const CStatement& statement);
    /// The places of the IFs that have no ENDIF so far.
    [[nodiscard]] std::vector<SourcePlace> Open() const;

  private:
    struct Level {
        SourcePlace place;
        bool isLive;         // the conditions of this level and all outer levels are true
        bool isLiveOutside;  // the conditions of all outer levels are true
    };
    std::vector<Level> levels;
    std::int32_t depth = 0;          // size of `levels`, in the type of `conditionDepth`
    std::int32_t wasAssembling = 1;  // after the last change
};

}  // namespace korv
