#include "frontend/name_collector.h"

#include <algorithm>
#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "driver/statement.h"
#include "frontend/message_maker.h"
#include "frontend/statement_view.h"
#include "symbols/identifier_manager.h"

namespace korv {
namespace {

NameKind KindOf(const CIdentifier& record) {
    if ((record.flags & IDF_INTERNAL) != 0) {
        return NameKind::internal;
    }
    if ((record.flags & IDF_LABEL) != 0) {
        return NameKind::label;
    }
    if ((record.flags & IDF_EQU) != 0) {
        return record.file == 0 ? NameKind::commandLine : NameKind::constant;
    }
    return NameKind::undefined;
}

}  // namespace

bool MayHoldName(CStatement& statement) {
    bool hasValue = statement.args.Count() == 0;  // also where nobody has looked at the operands
    for (const lsArg& arg : statement.args) {
        hasValue = hasValue || arg.IsValue();
    }
    return hasValue;
}

void NameCollector::AddUses(const CStatement& statement, bool isSkipped, MessageMaker* places) {
    const StatementView view = CutStatement(statement.text);
    if (view.keyword != nullptr &&
        (view.keyword->handler == AssembleInclude || view.keyword->handler == AssembleBinclude)) {
        return;  // its operand is the name of a file
    }
    for (const OperandView& operand : view.operands) {
        for (const Token& token : operand.tokens) {
            if (operand.HoldsAsName(token)) {
                uses[std::string(token.text)].push_back(
                    {places->PlaceOf(statement.PlaceOf(token.text)), isSkipped});
            }
        }
    }
}

std::vector<Name> NameCollector::Take(const CIdentifierManager& table, MessageMaker* places) {
    std::vector<Name> names;
    for (std::int32_t i = 0; i < table.RecordCount(); ++i) {
        const CIdentifier& record = table.Record(i);
        if ((record.flags & IDS_SYSTEM) == IDS_RESERVED_WORD) {
            continue;
        }
        Name name;
        name.text = record.Name();
        name.kind = KindOf(record);
        name.hasValue = (record.flags & IDF_RESOLVED) != 0;
        name.value = name.hasValue ? record.value : 0;
        name.isUsed = (record.flags & IDF_USED) != 0;
        if (record.file != 0) {  // a name is defined at the start of its line
            name.opening = places->OpeningOf(record.file);
            name.definition = places->PlaceOf(
                {.file = record.file, .line = record.line, .length = record.nameLength});
        }
        if (auto found = uses.extract(name.text)) {
            name.uses = std::move(found.mapped());
        }
        names.push_back(std::move(name));
    }
    for (auto& [text, rest] : uses) {  // only skipped blocks have these
        Name& name = names.emplace_back();
        name.text = text;
        name.uses = std::move(rest);
    }
    uses.clear();
    std::ranges::sort(names, {}, &Name::text);
    return names;
}

}  // namespace korv
