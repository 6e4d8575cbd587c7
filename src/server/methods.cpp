// The methods of the protocol: the table of features, and the handlers of notifications and of all
// other requests.

#include <algorithm>
#include <iterator>

#include "server/features/features.h"
#include "server/server.h"
#include "server/uri.h"

namespace korv {

struct Feature {
    std::string_view name;
    std::string_view provider;  // the capability that announces it
    std::string_view needed;    // the parameter required besides the document
    Json (*reply)(const Query& query);
};

namespace {

// clang-format off
constexpr Feature features[] = {
    {"textDocument/hover", "hoverProvider", "/position", Hover},
    {"textDocument/definition", "definitionProvider", "/position", Definition},
    {"textDocument/declaration", "declarationProvider", "/position", Definition},
    {"textDocument/references", "referencesProvider", "/position", References},
    {"textDocument/documentHighlight", "documentHighlightProvider", "/position", Highlights},
    {"textDocument/prepareRename", "renameProvider", "/position", PrepareRename},
    {"textDocument/rename", "renameProvider", "/position", Rename},
    {"textDocument/completion", "completionProvider", "/position", Completions},
    {"textDocument/signatureHelp", "signatureHelpProvider", "/position", Signatures},
    {"textDocument/documentSymbol", "documentSymbolProvider", "", DocumentSymbols},
    {"textDocument/semanticTokens/full", "semanticTokensProvider", "", SemanticTokens},
    {"textDocument/semanticTokens/range", "semanticTokensProvider", "/range", SemanticTokens},
    {"textDocument/foldingRange", "foldingRangeProvider", "", FoldingRanges},
    {"textDocument/inlayHint", "inlayHintProvider", "/range", InlayHints},
    {"textDocument/codeAction", "codeActionProvider", "/range", CodeActions},
    {"textDocument/formatting", "documentFormattingProvider", "", Formatting},
    {"textDocument/rangeFormatting", "documentRangeFormattingProvider", "/range", Formatting},
    {"textDocument/documentLink", "documentLinkProvider", "", Links},
};
// clang-format on

}  // namespace

Json Server::Answer(const std::string& name, const Json& parameters) {
    struct Notification {
        std::string_view name;
        void (Server::*take)(const Json& parameters);
    };
    // Others are ignored: a notification has no reply. For "$/cancelRequest", see `IsCancelled`.
    static constexpr Notification notifications[] = {
        {"initialized", &Server::OnInitialized},
        {"textDocument/didOpen", &Server::OnOpened},
        {"textDocument/didChange", &Server::OnChanged},
        {"textDocument/didClose", &Server::OnClosed},
        {"textDocument/didSave", &Server::OnFilesChanged},
        {"workspace/didChangeWatchedFiles", &Server::OnFilesChanged},
        {"workspace/didChangeConfiguration", &Server::OnSettingsChanged},
        {"workspace/didChangeWorkspaceFolders", &Server::OnFoldersChanged},
    };
    const bool isExit = name == "exit";
    const bool isInitialize = name == "initialize";
    if (phase == Phase::created && !isInitialize && !isExit) {
        throw RequestError{ErrorCode::notInitialized, "initialize comes first"};
    }
    if ((phase == Phase::shutDown && !isExit) || (phase != Phase::created && isInitialize)) {
        throw RequestError{ErrorCode::invalidRequest, "not possible in this state"};
    }
    if (isInitialize) {
        return Initialize(parameters);
    }
    if (isExit || name == "shutdown") {
        status = phase == Phase::shutDown ? 0 : 1;
        phase = isExit ? Phase::ended : Phase::shutDown;
        return nullptr;
    }
    if (name == "workspace/symbol") {
        return WorkspaceSymbols(parameters);
    }
    const auto* const feature = std::ranges::find(features, name, &Feature::name);
    if (feature != std::end(features)) {
        return AnswerFeature(*feature, parameters);
    }
    const auto* const notification = std::ranges::find(notifications, name, &Notification::name);
    if (notification == std::end(notifications)) {
        throw RequestError{ErrorCode::methodNotFound, "unknown method " + name};
    }
    (this->*notification->take)(parameters);
    return nullptr;
}

// The result is null for a file that is not part of any program.
Json Server::AnswerFeature(const Feature& feature, const Json& parameters) {
    constexpr Range everything = {{}, {UINT32_MAX, UINT32_MAX}};
    const std::string path = PathOfDocument(parameters);
    const auto position = FindPosition(parameters, "/position");
    const auto range = FindRange(parameters, "/range");
    if ((feature.needed == "/position" && !position) || (feature.needed == "/range" && !range)) {
        throw Missing(std::string(feature.needed));
    }
    Update();
    const Snapshot* const snapshot = programs.SnapshotOf(path);
    const std::int32_t file = snapshot == nullptr ? noIndex : snapshot->FileOf(path);
    if (file == noIndex) {
        return nullptr;
    }
    return feature.reply({*snapshot, file, snapshot->PlaceOf(file, position.value_or(Position())),
                          range.value_or(everything), parameters, workspace});
}

// A document that is not a file, such as a new one that has not been saved, is treated as a file in
// the current directory.
std::string Server::PathOf(const std::string& uri) {
    if (const auto path = PathOfUri(uri)) {
        return workspace.FullPath(*path);
    }
    std::string name = uri;
    std::ranges::replace_if(
        name, [](char c) { return c == ':' || c == '/' || c == '\\'; }, '_');
    return workspace.FullPath(name);
}

std::string Server::PathOfDocument(const Json& parameters) {
    return PathOf(Get<std::string>(parameters, "/textDocument/uri"));
}

Json Server::Initialize(const Json& parameters) {
    phase = Phase::initialized;
    const Strings encodings = StringsOf(parameters, "/capabilities/general/positionEncodings");
    const bool isUtf8 = std::ranges::count(encodings, "utf-8") != 0;
    documents.SetEncoding(isUtf8 ? PositionEncoding::utf8 : PositionEncoding::utf16);
    watchesOnRequest = Get<bool>(
        parameters, "/capabilities/workspace/didChangeWatchedFiles/dynamicRegistration", false);
    Strings folders = StringsOf(parameters, "/workspaceFolders", "/uri");
    const auto* const root = Find<std::string>(parameters, "/rootUri");
    if (folders.empty() && root != nullptr) {
        folders.push_back(*root);
    }
    for (const std::string& folder : folders) {
        workspace.AddFolder(PathOf(folder));
    }
    workspace.SetSettings(At(parameters, "/initializationOptions"));
    Json capabilities = Json::parse(R"({
        "textDocumentSync": {"openClose": true, "change": 2, "save": {"includeText": false}},
        "renameProvider": {"prepareProvider": true},
        "completionProvider": {"triggerCharacters": [" ", ",", "("]},
        "signatureHelpProvider": {"triggerCharacters": [" ", ","]},
        "workspaceSymbolProvider": true,
        "semanticTokensProvider": {"full": true, "range": true},
        "codeActionProvider": {"codeActionKinds": ["quickfix"]},
        "documentLinkProvider": {"resolveProvider": false},
        "workspace": {"workspaceFolders": {"supported": true, "changeNotifications": true}}
    })");
    capabilities["positionEncoding"] = isUtf8 ? "utf-8" : "utf-16";
    capabilities["semanticTokensProvider"]["legend"] = SemanticTokensLegend();
    for (const Feature& feature : features) {
        capabilities.emplace(feature.provider, true);  // unless it is set above, with options
    }
    return {{"capabilities", capabilities},
            {"serverInfo", {{"name", "korv-ls"}, {"version", version}}}};
}

// Asks the client to report changes to files on disk.
void Server::OnInitialized(const Json&) {
    if (watchesOnRequest) {
        stream.Write(R"({"jsonrpc":"2.0","id":"watch files","method":"client/registerCapability",)"
                     R"("params":{"registrations":[{"id":"files",)"
                     R"("method":"workspace/didChangeWatchedFiles",)"
                     R"("registerOptions":{"watchers":[{"globPattern":"**/*"}]}}]}})");
    }
}

void Server::OnOpened(const Json& parameters) {
    documents.Open(PathOfDocument(parameters), At(parameters, "/textDocument"));
    programs.OnFilesChanged();
}

void Server::OnChanged(const Json& parameters) {
    const std::string path = PathOfDocument(parameters);
    documents.Change(path, parameters);
    programs.OnTextChanged(path);
}

void Server::OnClosed(const Json& parameters) {
    documents.Close(PathOfDocument(parameters));
    programs.OnFilesChanged();
}

void Server::OnFilesChanged(const Json& parameters) {
    const bool areOptions = std::ranges::any_of(
        StringsOf(parameters, "/changes", "/uri"),
        [](const std::string& uri) { return uri.ends_with(Workspace::argumentFileName); });
    areOptions ? programs.OnConfigurationChanged() : programs.OnFilesChanged();
}

void Server::OnSettingsChanged(const Json& parameters) {
    workspace.SetSettings(At(parameters, "/settings"));
    programs.OnConfigurationChanged();
}

void Server::OnFoldersChanged(const Json& parameters) {
    for (const std::string& folder : StringsOf(parameters, "/event/removed", "/uri")) {
        workspace.RemoveFolder(PathOf(folder));
    }
    for (const std::string& folder : StringsOf(parameters, "/event/added", "/uri")) {
        workspace.AddFolder(PathOf(folder));
    }
    programs.OnConfigurationChanged();
}

Json Server::WorkspaceSymbols(const Json& parameters) {
    const auto& query = Get<std::string>(parameters, "/query");
    Update();
    Json symbols = Json::array();
    for (const auto& [key, program] : programs.All()) {
        AddSymbolsLike(program.snapshot, query, &symbols);
    }
    return symbols;
}

}  // namespace korv
