#include "frontend/program_checks.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "diagnostics/report_writer.h"
#include "frontend/terminal_text.h"

namespace korv {
namespace {

Message WarningAt(Warning warning, const Place& place, std::int32_t opening, std::string detail) {
    Message message;
    message.warning = warning;
    message.place = place;
    message.opening = opening;
    message.detail = std::move(detail);
    return message;
}

}  // namespace

void AddMessage(Message message, Analysis* analysis) {
    const bool isKept = analysis->errorLimit == 0 || analysis->errorCount < analysis->errorLimit;
    ++(message.severity == Severity::error ? analysis->errorCount : analysis->warningCount);
    if (isKept) {
        analysis->messages.push_back(std::move(message));
    }
}

void AddWarning(const WarningChoice& choice, Message message, Analysis* analysis) {
    const Warning warning = *message.warning;
    if (choice.IsOn(warning)) {
        message.severity = choice.IsError(warning) ? Severity::error : Severity::warning;
        message.code = RowOf(warning).name;
        message.text = RowOf(warning).meaning;
        AddMessage(std::move(message), analysis);
    }
}

std::vector<Message> OverlapWarnings(const Analysis& analysis) {
    std::vector<Block> blocks = analysis.blocks;
    std::ranges::sort(blocks, {}, &Block::address);
    std::vector<Message> warnings;
    const Block* last = nullptr;  // the block with the highest end so far
    for (const Block& block : blocks) {
        if (last != nullptr && block.address < last->address + last->count) {
            const Block& second = block.offset > last->offset ? block : *last;
            char address[16];
            warnings.push_back(
                WarningAt(Warning::overlap, second.place, second.opening,
                          std::string(address, PutHex(address, block.address, 4)) + "H"));
        }
        if (last == nullptr || block.address + block.count > last->address + last->count) {
            last = &block;
        }
    }
    return warnings;
}

std::vector<Message> UnusedLabelWarnings(const Analysis& analysis) {
    std::vector<Message> warnings;
    for (const Name& name : analysis.names) {
        const bool isDefined = name.kind == NameKind::label || name.kind == NameKind::constant;
        if (isDefined && !name.isUsed && name.definition.IsSomewhere()) {
            warnings.push_back(
                WarningAt(Warning::unusedLabel, name.definition, name.opening, Quoted(name.text)));
        }
    }
    std::ranges::sort(warnings, {}, [](const Message& message) {
        return std::tuple(message.opening, message.place.line, message.place.column);
    });
    return warnings;
}

}  // namespace korv
