// The table of the methods, and the requests that a feature answers: each finds its snapshot, calls
// one function and writes the result.

#include <algorithm>
#include <utility>

#include "server/features/actions.h"
#include "server/features/completion.h"
#include "server/features/formatting.h"
#include "server/features/hover.h"
#include "server/features/navigation.h"
#include "server/features/outline.h"
#include "server/features/tokens.h"
#include "server/server_methods.h"

namespace korv {
namespace {

constexpr Range everything = {{0, 0}, {INT32_MAX - 1, 0}};

// What a request gets for a file that is not part of any program.
constexpr const char* nothingFound = "null";

}  // namespace

const Server::Method* Server::FindMethod(std::string_view name) {
    // clang-format off
    static constexpr Method methods[] = {
        {"initialize", &Server::Initialize},
        {"initialized", &Server::OnInitialized},
        {"shutdown", &Server::Shutdown},
        {"exit", &Server::Exit},
        {"$/setTrace", &Server::Ignore},
        {"$/cancelRequest", &Server::Ignore},  // of a request that has been answered
        {"window/workDoneProgress/cancel", &Server::Ignore},
        {"textDocument/didOpen", &Server::DidOpen, Method::uri | Method::text},
        {"textDocument/didChange", &Server::DidChange, Method::uri | Method::changes},
        {"textDocument/didClose", &Server::DidClose, Method::uri},
        {"textDocument/didSave", &Server::FilesChanged},
        {"workspace/didChangeWatchedFiles", &Server::FilesChanged},
        {"workspace/didChangeConfiguration", &Server::SettingsChanged},
        {"workspace/didChangeWorkspaceFolders", &Server::FoldersChanged},
        {"textDocument/hover", &Server::Hover, Method::uri | Method::position, true},
        {"textDocument/definition", &Server::Definition, Method::uri | Method::position, true},
        {"textDocument/declaration", &Server::Definition, Method::uri | Method::position, true},
        {"textDocument/references", &Server::References, Method::uri | Method::position, true},
        {"textDocument/documentHighlight", &Server::Highlights, Method::uri | Method::position, true},
        {"textDocument/prepareRename", &Server::PrepareRename, Method::uri | Method::position, true},
        {"textDocument/rename", &Server::Rename, Method::uri | Method::position | Method::newName, true},
        {"textDocument/completion", &Server::Complete, Method::uri | Method::position, true},
        {"textDocument/signatureHelp", &Server::Signatures, Method::uri | Method::position, true},
        {"textDocument/documentSymbol", &Server::DocumentSymbols, Method::uri, true},
        {"workspace/symbol", &Server::WorkspaceSymbols, Method::query, true},
        {"textDocument/semanticTokens/full", &Server::SemanticTokens, Method::uri, true},
        {"textDocument/semanticTokens/range", &Server::SemanticTokens, Method::uri | Method::range, true},
        {"textDocument/foldingRange", &Server::FoldingRanges, Method::uri, true},
        {"textDocument/inlayHint", &Server::InlayHints, Method::uri | Method::range, true},
        {"textDocument/codeAction", &Server::CodeActions, Method::uri | Method::range, true},
        {"textDocument/formatting", &Server::Format, Method::uri, true},
        {"textDocument/rangeFormatting", &Server::Format, Method::uri | Method::range, true},
        {"textDocument/documentLink", &Server::Links, Method::uri, true},
    };
    // clang-format on
    const auto* const found = std::ranges::find(methods, name, &Method::name);
    return found == std::end(methods) ? nullptr : found;
}

std::string_view Server::Method::Missing(const Parameters& parameters) const {
    const std::pair<Needs, std::string_view> missing[] = {
        {parameters.uri ? nothing : uri, "textDocument.uri"},
        {parameters.text ? nothing : text, "textDocument.text"},
        {parameters.changes ? nothing : changes, "contentChanges"},
        {parameters.position ? nothing : position, "position"},
        {parameters.range ? nothing : range, "range"},
        {parameters.newName ? nothing : newName, "newName"},
        {parameters.query ? nothing : query, "query"},
    };
    for (const auto& [need, name] : missing) {
        if ((needs & need) != 0) {
            return name;
        }
    }
    return "";
}

Server::Target Server::TargetOf(const Parameters& parameters) {
    Target target;
    target.path = PathOf(*parameters.uri);
    const Snapshot* const snapshot = programs.SnapshotOf(target.path);
    if (snapshot == nullptr || (target.file = snapshot->FileOf(target.path)) == noIndex) {
        return target;
    }
    target.snapshot = snapshot;
    if (parameters.position) {
        target.place = snapshot->PlaceOf(target.file, *parameters.position);
    }
    return target;
}

Server::Result Server::Hover(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(HoverAt(*target.snapshot, target.place)) : nothingFound;
}

Server::Result Server::Definition(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(DefinitionAt(*target.snapshot, target.place)) : nothingFound;
}

Server::Result Server::References(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(ReferencesAt(*target.snapshot, target.place,
                                              parameters.includesDeclaration))
                  : nothingFound;
}

Server::Result Server::Highlights(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(HighlightsAt(*target.snapshot, target.place)) : nothingFound;
}

Server::Result Server::PrepareRename(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    if (!target) {
        return nothingFound;
    }
    const auto prepared = korv::PrepareRename(*target.snapshot, target.place);
    if (const auto* const refusal = std::get_if<lsp::Refusal>(&prepared)) {
        return lsp::Error{lsp::ErrorCode::requestFailed, refusal->message};
    }
    return writer.Write(std::get<lsp::PreparedRename>(prepared));
}

Server::Result Server::Rename(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    if (!target) {
        return nothingFound;
    }
    const auto renamed = korv::Rename(*target.snapshot, target.place, *parameters.newName);
    if (const auto* const refusal = std::get_if<lsp::Refusal>(&renamed)) {
        return lsp::Error{lsp::ErrorCode::requestFailed, refusal->message};
    }
    return writer.Write(std::get<lsp::WorkspaceEdit>(renamed));
}

Server::Result Server::Complete(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    if (!target) {
        return nothingFound;
    }
    const auto line = target.snapshot->Line(target.file, target.place.line);
    return writer.Write(CompletionsFor(
        *target.snapshot, line.substr(0, target.place.column),
        [&](const std::string& name) { return workspace.FilesIn(target.path, name); }));
}

Server::Result Server::Signatures(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    if (!target) {
        return nothingFound;
    }
    const auto line = target.snapshot->Line(target.file, target.place.line);
    return writer.Write(SignaturesFor(line.substr(0, target.place.column)));
}

Server::Result Server::DocumentSymbols(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(SymbolsIn(*target.snapshot, target.file)) : nothingFound;
}

Server::Result Server::WorkspaceSymbols(const Parameters& parameters) {
    std::vector<lsp::WorkspaceSymbol> all;
    for (const Snapshot* const snapshot : programs.Snapshots()) {
        std::ranges::move(SymbolsLike(*snapshot, *parameters.query), std::back_inserter(all));
    }
    return writer.Write(all);
}

Server::Result Server::SemanticTokens(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(SemanticTokensIn(*target.snapshot, target.file,
                                                  parameters.range.value_or(everything)))
                  : nothingFound;
}

Server::Result Server::FoldingRanges(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(FoldingRangesIn(*target.snapshot, target.file)) : nothingFound;
}

Server::Result Server::InlayHints(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    const std::string& wanted = workspace.CurrentSettings().inlayHints;
    const HintForm form = wanted == "address"           ? HintForm::address
                          : wanted == "addressAndBytes" ? HintForm::addressAndBytes
                                                        : HintForm::none;
    return target
               ? writer.Write(InlayHintsIn(*target.snapshot, target.file, *parameters.range, form))
               : nothingFound;
}

Server::Result Server::CodeActions(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(ActionsIn(*target.snapshot, target.file, *parameters.range))
                  : nothingFound;
}

Server::Result Server::Format(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(FormattingEdits(*target.snapshot, target.file,
                                                 parameters.range.value_or(everything),
                                                 parameters.formatting))
                  : nothingFound;
}

Server::Result Server::Links(const Parameters& parameters) {
    const Target target = TargetOf(parameters);
    return target ? writer.Write(LinksIn(*target.snapshot, target.file)) : nothingFound;
}

}  // namespace korv
