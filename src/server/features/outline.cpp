#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "server/features/value_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// The protocol's number for a function or a constant.
int SymbolKindOf(const Name& name) {
    return name.kind == NameKind::label ? 12 : 14;
}

// The names defined in `file`, in line order. A name that is defined twice appears at the
// definition that gave it its value.
std::vector<const Name*> DefinedIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<const Name*> names;
    for (const Name& name : snapshot.analysis->names) {
        if (name.definition.file == file) {
            names.push_back(&name);
        }
    }
    std::ranges::sort(names, {}, [](const Name* name) { return name->definition.line; });
    return names;
}

// Adds a range of physical lines, counted from 1, unless there is nothing to fold.
void Add(std::int32_t first, std::int32_t last, const char* kind, Json::array_t* folds) {
    if (first != 0 && last > first) {
        folds->push_back({{"startLine", first - 1}, {"endLine", last - 1}, {"kind", kind}});
    }
}

void AddComments(const StoredText& text, Json::array_t* folds) {
    std::int32_t first = 0;  // of the current comment
    for (std::int32_t line = 1; line <= text.LineCount() + 1; ++line) {
        if (WithoutLeadingBlanks(text.Line(line)).starts_with(';')) {
            first = first == 0 ? line : first;
        } else {
            Add(first, line - 1, "comment", folds);
            first = 0;
        }
    }
}

void AddConditions(Statements statements, Json::array_t* folds) {
    std::vector<std::int32_t> open;  // the lines of open IFs and ELSEs
    for (const Statement* const statement : statements) {
        const InstructionHandler handler =
            statement->keyword == nullptr ? nullptr : statement->keyword->handler;
        if ((handler == AssembleElse || handler == AssembleEndif) && !open.empty()) {
            Add(open.back(), statement->line - 1, "region", folds);
            open.pop_back();
        }
        if (handler == AssembleIf || handler == AssembleElse) {
            open.push_back(statement->line);
        }
    }
}

void AddRoutines(const Snapshot& snapshot, std::int32_t file, Statements statements,
                 Json::array_t* folds) {
    auto names = DefinedIn(snapshot, file);
    std::erase_if(names, [](const Name* name) { return name->kind != NameKind::label; });
    auto next = names.begin();
    std::int32_t first = 0, last = 0;  // lines of the current routine
    for (const Statement* const statement : statements) {
        while (next != names.end() && (*next)->definition.line <= statement->line) {
            Add(first, last, "region", folds);
            first = (*next)->definition.line;
            ++next;
        }
        if (statement->count != 0) {
            last = LastLineOf(*statement);
        }
    }
    Add(first, last, "region", folds);
}

}  // namespace

Json DocumentSymbols(const Query& query) {
    const Snapshot& snapshot = query.snapshot;
    Json symbols = Json::array();
    for (const Name* const name : DefinedIn(snapshot, query.file)) {
        const Place line = snapshot.RestOf(query.file, name->definition.line, 0);
        const auto value = static_cast<std::uint32_t>(name->value);
        symbols.push_back({{"name", name->text},
                           {"detail", name->hasValue ? Hex(value, 4) + "H" : "no value"},
                           {"kind", SymbolKindOf(*name)},
                           {"range", snapshot.RangeOf(line)},
                           {"selectionRange", snapshot.RangeOf(name->definition)},
                           {"children", Json::array()}});
    }
    return symbols;
}

void AddSymbolsLike(const Snapshot& snapshot, std::string_view text, Json* symbols) {
    const std::string wanted = Raised(text);
    for (const Name& name : snapshot.analysis->names) {
        if (name.definition.IsSomewhere() && name.text.find(wanted) != std::string::npos) {
            symbols->push_back({{"name", name.text},
                                {"kind", SymbolKindOf(name)},
                                {"location", snapshot.LocationOf(name.definition)}});
        }
    }
}

Json FoldingRanges(const Query& query) {
    Json::array_t folds;
    const Statements statements = StatementsIn(query.snapshot, query.file, query.range);
    AddComments(query.snapshot.Text(query.file), &folds);
    AddConditions(statements, &folds);
    AddRoutines(query.snapshot, query.file, statements, &folds);
    std::ranges::stable_sort(folds, {}, [](const Json& fold) { return fold["startLine"]; });
    return folds;
}

Json InlayHints(const Query& query) {
    constexpr std::uint32_t mostBytes = 8;
    const Snapshot& snapshot = query.snapshot;
    const std::string& form = query.workspace.InlayHints();
    Json hints = Json::array();
    if (form != "address" && form != "addressAndBytes") {
        return hints;
    }
    for (const Statement* const statement : StatementsIn(snapshot, query.file, query.range)) {
        if (statement->count == 0) {
            continue;
        }
        std::string label = Hex(statement->address, 4);
        if (form == "addressAndBytes") {
            label += "  " + BytesText(*snapshot.analysis, *statement, mostBytes);
        }
        const Place last = snapshot.RestOf(query.file, LastLineOf(*statement), 0);
        hints.push_back(
            {{"position", snapshot.RangeOf(last).end}, {"label", label}, {"paddingLeft", true}});
    }
    return hints;
}

}  // namespace korv
