#include <algorithm>
#include <string>
#include <vector>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "server/features/value_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Numbers of the protocol: function or constant.
int SymbolKindOf(const Name& name) {
    return name.kind == NameKind::label ? 12 : 14;
}

// In the order of the lines. A name that is defined twice counts where it got its value.
std::vector<const Name*> DefinedIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<const Name*> names;
    for (const Name& name : snapshot.analysis->names) {
        if (name.definition.file == file && name.definition.IsSomewhere()) {
            names.push_back(&name);
        }
    }
    std::ranges::sort(names, {}, [](const Name* name) { return name->definition.line; });
    return names;
}

// Physical lines, from 1.
struct Fold {
    std::int32_t first;
    std::int32_t last;
    bool isComment;
};

void AddComments(const StoredText& text, std::vector<Fold>* folds) {
    std::int32_t first = 0;  // of the comment in hand
    for (std::int32_t line = 1; line <= text.LineCount() + 1; ++line) {
        if (WithoutLeadingBlanks(text.Line(line)).starts_with(';')) {
            first = first == 0 ? line : first;
        } else if (first != 0) {
            folds->push_back({first, line - 1, /*isComment=*/true});
            first = 0;
        }
    }
}

void AddConditions(Statements statements, std::vector<Fold>* folds) {
    std::vector<std::int32_t> open;  // the lines of IF and ELSE
    for (const Statement* const statement : statements) {
        const InstructionHandler handler =
            statement->keyword == nullptr ? nullptr : statement->keyword->handler;
        if ((handler == AssembleElse || handler == AssembleEndif) && !open.empty()) {
            folds->push_back({open.back(), statement->line - 1, /*isComment=*/false});
            open.pop_back();
        }
        if (handler == AssembleIf || handler == AssembleElse) {
            open.push_back(statement->line);
        }
    }
}

void AddRoutines(const Snapshot& snapshot, std::int32_t file, Statements statements,
                 std::vector<Fold>* folds) {
    auto names = DefinedIn(snapshot, file);
    std::erase_if(names, [](const Name* name) { return name->kind != NameKind::label; });
    auto next = names.begin();
    Fold routine = {0, 0, /*isComment=*/false};
    for (const Statement* const statement : statements) {
        while (next != names.end() && (*next)->definition.line <= statement->line) {
            folds->push_back(routine);
            routine.first = (*next)->definition.line;
            ++next;
        }
        if (statement->count != 0) {
            routine.last = LastLineOf(*statement);
        }
    }
    folds->push_back(routine);
}

}  // namespace

Json DocumentSymbols(const Query& query) {
    const Snapshot& snapshot = query.snapshot;
    Json symbols = Json::array();
    for (const Name* const name : DefinedIn(snapshot, query.file)) {
        Place line = name->definition;
        line.column = 0;
        line.length = static_cast<std::uint32_t>(snapshot.Line(query.file, line.line).size());
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
    std::vector<Fold> folds;
    const Statements statements = StatementsIn(query.snapshot, query.file, query.range);
    AddComments(*query.snapshot.File(query.file).text, &folds);
    AddConditions(statements, &folds);
    AddRoutines(query.snapshot, query.file, statements, &folds);
    std::ranges::stable_sort(folds, {}, &Fold::first);
    Json ranges = Json::array();
    for (const Fold& fold : folds) {
        if (fold.first != 0 && fold.last > fold.first) {  // else there is nothing to fold
            ranges.push_back({{"startLine", fold.first - 1},
                              {"endLine", fold.last - 1},
                              {"kind", fold.isComment ? "comment" : "region"}});
        }
    }
    return ranges;
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
        const std::int32_t last = LastLineOf(*statement);
        const auto size = static_cast<std::uint32_t>(snapshot.Line(query.file, last).size());
        hints.push_back({{"position", snapshot.RangeOf({query.file, last, size, 0}).start},
                         {"label", label},
                         {"paddingLeft", true}});
    }
    return hints;
}

}  // namespace korv
