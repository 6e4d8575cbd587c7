#include "frontend/condition_watch.h"

#include "frontend/statement_rules.h"
#include "frontend/statement_view.h"
#include "frontend/terminal_text.h"

namespace korv {

Findings ConditionWatch::Follow(const CAssembler& assembler, const CStatement& statement) {
    depth = assembler.conditionDepth;
    const bool isOn = assembler.assembling != 0;
    wasAssembling = assembler.assembling;
    Findings findings;
    const auto open = static_cast<std::size_t>(depth);
    if (open < levels.size()) {
        levels.pop_back();
        return findings;
    }
    if (open > levels.size()) {
        const bool isLiveOutside = levels.empty() || levels.back().isLive;
        levels.push_back({statement.PlaceOf(noText), false, isLiveOutside});
        const StatementView view = CutStatement(statement.text);
        const std::string_view surprise = SurpriseInCondition(view.operands.front());
        if (!surprise.empty()) {
            findings.push_back({Warning::condition, view.rest, Quoted(view.rest), surprise});
        }
    }
    // Each IF decides on its own whether lines are assembled, even inside a skipped block.
    Level& level = levels.back();
    level.isLive = level.isLiveOutside && isOn;
    if (isOn && !level.isLiveOutside) {
        findings.push_back({Warning::nestedIf, {}, "", "combine the conditions by AND"});
    }
    return findings;
}

std::vector<SourcePlace> ConditionWatch::Open() const {
    std::vector<SourcePlace> places;
    for (const Level& level : levels) {
        places.push_back(level.place);
    }
    return places;
}

}  // namespace korv
