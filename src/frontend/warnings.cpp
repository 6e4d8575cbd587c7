#include "frontend/warnings.h"

#include <algorithm>

#include "diagnostics/message_numbers.h"

namespace korv {

std::optional<Warning> WarningOf(std::int32_t number) {
    switch (number) {
        case MSG_NOT_SIGNED_BYTE:
        case MSG_NOT_WORD:
        case MSG_NOT_BYTE:
            return Warning::range;
        case MSG_NO_CLOSING_QUOTE:
            return Warning::openString;
        case MSG_ORG_AFTER_CODE:
            return Warning::orgGap;
        case MSG_ORG_IN_CODE:
        case MSG_ORG_USED:
            return Warning::org;
        case MSG_LABEL_WITHOUT_COLON:
            return Warning::labelWithoutColon;
        case MSG_COMMAND_LINE_SKIPPED:
            return Warning::skippedLine;
        case MSG_EXPECTED_ARGUMENT:
            return Warning::emptyOperand;
        default:
            return std::nullopt;
    }
}

WarningChoice::WarningChoice() {
    for (std::size_t i = 0; i < warningTable.size(); ++i) {
        on[i] = warningTable[i].isOn;
    }
}

bool WarningChoice::Take(std::string_view word) {
    const auto takePrefix = [&word](std::string_view prefix) {
        const bool isThere = word.starts_with(prefix);
        word.remove_prefix(isThere ? prefix.size() : 0);
        return isThere;
    };
    const bool isWanted = !takePrefix("no-");
    if (word == "error") {
        isWanted ? errors.set() : errors.reset();
        return true;
    }
    const bool isAboutErrors = takePrefix("error=");
    const auto* const row = std::ranges::find(warningTable, word, &WarningRow::name);
    if (row == warningTable.end()) {
        return false;
    }
    const auto index = static_cast<std::size_t>(row - warningTable.begin());
    if (isAboutErrors) {
        errors[index] = isWanted;
    }
    if (isWanted || !isAboutErrors) {  // a warning that counts as an error is also turned on
        on[index] = isWanted;
    }
    return true;
}

void WarningChoice::TakeNone() {
    on.reset();
}

}  // namespace korv
