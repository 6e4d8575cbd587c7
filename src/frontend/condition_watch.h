/// Follows the open levels of IF, and warns about those that may be surprising.
#pragma once

#include <vector>

#include "diagnostics/source_place.h"
#include "frontend/checks.h"

namespace korv {

class CAssembler;

class ConditionWatch {
  public:
    /// Whether the statement just assembled was an IF, ELSE or ENDIF that changed the state of the
    /// run. Called for every statement.
    [[nodiscard]] bool HasChanged(const CAssembler& assembler) const;
    /// Records that change. Result: the warning to give for `statement`, if any.
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
    std::int32_t wasAssembling = 1;  // after the last change
};

}  // namespace korv
