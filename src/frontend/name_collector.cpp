#include "frontend/name_collector.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "driver/statement.h"
#include "frontend/message_maker.h"
#include "frontend/statement_record.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"
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

bool IsDigit(char c) {
    return HasClass(c, CC_DIGIT);
}

// Whether the operand of a statement is the name of a file.
bool NamesFile(const Keyword* keyword) {
    return keyword != nullptr &&
           (keyword->handler == AssembleInclude || keyword->handler == AssembleBinclude);
}

// Whether nothing follows the mnemonic of `statement`, or its label if that is alone.
bool HasNoOperands(const CStatement& statement) {
    const std::string_view mnemonic = MnemonicOf(statement);
    return *SkipBlanks(mnemonic.data() + mnemonic.size()) == '\0';
}

}  // namespace

void NameCollector::AddUses(CStatement& statement, const Keyword* keyword, bool isSkipped,
                            bool isFaulty, MessageMaker* places) {
    if (NamesFile(keyword)) {
        return;
    }
    if (isSkipped || isFaulty || (statement.args.Count() == 0 && !HasNoOperands(statement))) {
        // Nobody has looked at the operands, or not at all of them.
        for (const OperandView& operand : CutStatement(statement.text).operands) {
            AddNames(statement, operand.text, operand.what, isSkipped, places);
        }
        return;
    }
    for (const lsArg& arg : statement.args) {
        if (arg.IsValue() && !std::ranges::all_of(arg.text, IsDigit)) {
            AddNames(statement, arg.text, arg, isSkipped, places);
        }
    }
}

void NameCollector::AddNames(const CStatement& statement, std::string_view text,
                             const OperandClass& operand, bool isSkipped, MessageMaker* places) {
    TokenCutter cutter(text);
    for (std::size_t index = 0; const std::optional<Token> token = cutter.Next(); ++index) {
        if (IsLookedUp(*token, index, operand)) {
            auto found = uses.find(token->text);
            if (found == uses.end()) {
                found = uses.emplace(token->text, std::vector<NameUse>()).first;
            }
            found->second.push_back({places->PlaceOf(statement.PlaceIn(token->text)), isSkipped});
        }
    }
}

std::vector<Name> NameCollector::Take(const CIdentifierManager& table, MessageMaker* places) {
    std::vector<Name> names;
    names.reserve(static_cast<std::size_t>(table.RecordCount()));
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
    std::vector<Name*> order;  // since a name is large, and moved often in a sort
    for (Name& name : names) {
        order.push_back(&name);
    }
    std::ranges::sort(order, {}, [](const Name* name) { return std::string_view(name->text); });
    std::vector<Name> sorted;
    sorted.reserve(names.size());
    for (Name* const name : order) {
        sorted.push_back(std::move(*name));
    }
    return sorted;
}

}  // namespace korv
