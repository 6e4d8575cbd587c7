#include "frontend/program_checks.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "diagnostics/report_writer.h"
#include "frontend/symbol_formats.h"

namespace korv {
namespace {

Message WarningAt(Warning warning, const Place& place, std::int32_t opening, std::string detail) {
    Message message;
    message.severity = Severity::warning;
    message.warning = warning;
    message.code = RowOf(warning).name;
    message.place = place;
    message.opening = opening;
    message.text = RowOf(warning).meaning;
    message.detail = std::move(detail);
    return message;
}

}  // namespace

std::vector<Message> OverlapWarnings(const Analysis& analysis) {
    std::vector<Block> blocks = analysis.blocks;
    std::ranges::sort(blocks, {}, &Block::address);
    std::vector<Message> warnings;
    const Block* last = nullptr;  // the one that reaches furthest so far
    for (const Block& block : blocks) {
        if (last != nullptr && block.address < last->address + last->count) {
            const Block& second = block.offset > last->offset ? block : *last;
            char address[16];
            warnings.push_back(WarningAt(Warning::overlap, second.place, second.opening,
                                         {address, PutHex(address, block.address, 4)}));
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
                WarningAt(Warning::unusedLabel, name.definition, name.opening, name.text));
        }
    }
    std::ranges::sort(warnings, {}, [](const Message& message) {
        return std::tuple(message.opening, message.place.line, message.place.column);
    });
    return warnings;
}

void AddProgramWarnings(const Options& options, Analysis* analysis) {
    std::vector<Message> warnings;
    const auto add = [&](std::vector<Message> more) {
        std::ranges::move(more, std::back_inserter(warnings));
    };
    if (options.format == ImageFormat::hex || !options.debug.empty()) {
        add(OverlapWarnings(*analysis));
    }
    if (options.warnings.IsOn(Warning::unusedLabel)) {
        add(UnusedLabelWarnings(*analysis));
    }
    if (!options.symbols.empty()) {
        if (std::string dropped = DroppedSymbols(*analysis, options.symbolFormat);
            !dropped.empty()) {
            add({WarningAt(Warning::symbolRange, {}, noIndex, std::move(dropped))});
        }
    }
    for (Message& message : warnings) {
        if (options.warnings.IsOn(*message.warning)) {
            const bool isError = options.warnings.IsError(*message.warning);
            message.severity = isError ? Severity::error : Severity::warning;
            ++(isError ? analysis->errorCount : analysis->warningCount);
            analysis->messages.push_back(std::move(message));
        }
    }
}

}  // namespace korv
