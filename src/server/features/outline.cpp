#include "server/features/outline.h"

#include <algorithm>
#include <string>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/statement_view.h"
#include "server/features/value_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

lsp::SymbolKind KindOf(const Name& name) {
    return name.kind == NameKind::label ? lsp::SymbolKind::function : lsp::SymbolKind::constant;
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

bool IsComment(std::string_view line) {
    return WithoutLeadingBlanks(line).starts_with(';');
}

// Lines are from 1 here; a range of one line is none.
void AddRange(std::vector<lsp::FoldingRange>* ranges, std::int32_t first, std::int32_t last,
              bool isComment) {
    if (last > first) {
        ranges->push_back({static_cast<std::uint32_t>(first - 1),
                           static_cast<std::uint32_t>(last - 1), isComment});
    }
}

void AddComments(const StoredText& text, std::vector<lsp::FoldingRange>* ranges) {
    std::int32_t first = 0;  // of the comment in hand
    for (std::int32_t line = 1; line <= text.LineCount() + 1; ++line) {
        if (IsComment(text.Line(line))) {
            first = first == 0 ? line : first;
        } else if (first != 0) {
            AddRange(ranges, first, line - 1, /*isComment=*/true);
            first = 0;
        }
    }
}

void AddConditions(Statements statements, std::vector<lsp::FoldingRange>* ranges) {
    std::vector<std::int32_t> open;  // the lines of IF and ELSE
    for (const Statement* const statement : statements) {
        const InstructionHandler handler =
            statement->keyword == nullptr ? nullptr : statement->keyword->handler;
        if ((handler == AssembleElse || handler == AssembleEndif) && !open.empty()) {
            AddRange(ranges, open.back(), statement->line - 1, /*isComment=*/false);
            open.pop_back();
        }
        if (handler == AssembleIf || handler == AssembleElse) {
            open.push_back(statement->line);
        }
    }
}

void AddRoutines(const Snapshot& snapshot, std::int32_t file, Statements statements,
                 std::vector<lsp::FoldingRange>* ranges) {
    std::int32_t lastCode = 0;  // line of the last statement with bytes
    std::int32_t label = 0;
    auto names = DefinedIn(snapshot, file);
    std::erase_if(names, [](const Name* name) { return name->kind != NameKind::label; });
    auto next = names.begin();
    for (const Statement* const statement : statements) {
        if (next != names.end() && (*next)->definition.line <= statement->line) {
            if (label != 0) {
                AddRange(ranges, label, lastCode, /*isComment=*/false);
            }
            label = (*next)->definition.line;
            while (next != names.end() && (*next)->definition.line <= statement->line) {
                ++next;
            }
        }
        if (statement->count != 0) {
            lastCode = statement->line + static_cast<std::int32_t>(statement->lineCount) - 1;
        }
    }
    if (label != 0) {
        AddRange(ranges, label, lastCode, /*isComment=*/false);
    }
}

}  // namespace

std::vector<lsp::DocumentSymbol> SymbolsIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<lsp::DocumentSymbol> symbols;
    for (const Name* const name : DefinedIn(snapshot, file)) {
        lsp::DocumentSymbol symbol;
        symbol.name = name->text;
        symbol.detail =
            name->hasValue ? Hex(static_cast<std::uint32_t>(name->value), 4) + "H" : "no value";
        symbol.kind = KindOf(*name);
        symbol.selectionRange = snapshot.RangeOf(name->definition);
        Place line = name->definition;
        line.column = 0;
        line.length = static_cast<std::uint32_t>(snapshot.Line(file, line.line).size());
        symbol.range = snapshot.RangeOf(line);
        symbols.push_back(std::move(symbol));
    }
    return symbols;
}

std::vector<lsp::WorkspaceSymbol> SymbolsLike(const Snapshot& snapshot, std::string_view query) {
    const std::string wanted = Raised(query);
    std::vector<lsp::WorkspaceSymbol> symbols;
    for (const Name& name : snapshot.analysis->names) {
        if (name.definition.IsSomewhere() && name.text.find(wanted) != std::string::npos) {
            symbols.push_back({name.text, KindOf(name), snapshot.LocationOf(name.definition)});
        }
    }
    return symbols;
}

std::vector<lsp::FoldingRange> FoldingRangesIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<lsp::FoldingRange> ranges;
    const Statements statements = StatementsOf(snapshot, file);
    AddComments(*snapshot.File(file).text, &ranges);
    AddConditions(statements, &ranges);
    AddRoutines(snapshot, file, statements, &ranges);
    std::ranges::stable_sort(ranges, {}, &lsp::FoldingRange::startLine);
    return ranges;
}

std::vector<lsp::InlayHint> InlayHintsIn(const Snapshot& snapshot, std::int32_t file,
                                         const Range& range, HintForm form) {
    constexpr std::uint32_t mostBytes = 8;
    std::vector<lsp::InlayHint> hints;
    if (form == HintForm::none) {
        return hints;
    }
    for (const Statement* const statement : StatementsIn(snapshot, file, range)) {
        if (statement->count == 0) {
            continue;
        }
        std::string label = Hex(statement->address, 4);
        if (form == HintForm::addressAndBytes) {
            label += "  " + BytesText(*snapshot.analysis, *statement, mostBytes);
        }
        const std::int32_t last =
            statement->line + static_cast<std::int32_t>(statement->lineCount) - 1;
        const auto size = static_cast<std::uint32_t>(snapshot.Line(file, last).size());
        hints.push_back({snapshot.RangeOf({file, last, size, 0}).start, std::move(label)});
    }
    return hints;
}

}  // namespace korv
