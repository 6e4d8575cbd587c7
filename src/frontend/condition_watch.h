/// Follows the open levels of IF, and warns about those that may be surprising.
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
    /// The IFs without an ENDIF so far.
    [[nodiscard]] std::vector<SourcePlace> Open() const;

  private:
    struct Level {
        SourcePlace place;
        bool isLive;         // its lines are being assembled, also according to all outer levels
        bool isLiveOutside;  // the same for the line of the IF itself
    };
    std::vector<Level> levels;
    std::int32_t depth = 0;          // of `levels`, as it is compared with every statement
    std::int32_t wasAssembling = 1;  // after the last change
};

}  // namespace korv
