// The methods of the protocol: what changes the state of the server, and the table of the features.

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "server/features/features.h"
#include "server/server.h"
#include "server/uri.h"

namespace korv {

struct Server::Feature {
    std::string_view name;
    std::string_view provider;                                        // its capability
    enum class About : std::uint8_t { file, position, range } about;  // what it cannot do without
    Json (*reply)(const Query& query);

    static std::span<const Feature> All();
};

std::span<const Server::Feature> Server::Feature::All() {
    // clang-format off
    static constexpr Feature all[] = {
        {"textDocument/hover", "hoverProvider", About::position, Hover},
        {"textDocument/definition", "definitionProvider", About::position, Definition},
        {"textDocument/declaration", "declarationProvider", About::position, Definition},
        {"textDocument/references", "referencesProvider", About::position, References},
        {"textDocument/documentHighlight", "documentHighlightProvider", About::position, Highlights},
        {"textDocument/prepareRename", "renameProvider", About::position, PrepareRename},
        {"textDocument/rename", "renameProvider", About::position, korv::Rename},
        {"textDocument/completion", "completionProvider", About::position, Completions},
        {"textDocument/signatureHelp", "signatureHelpProvider", About::position, Signatures},
        {"textDocument/documentSymbol", "documentSymbolProvider", About::file, DocumentSymbols},
        {"textDocument/semanticTokens/full", "semanticTokensProvider", About::file, SemanticTokens},
        {"textDocument/semanticTokens/range", "semanticTokensProvider", About::range, SemanticTokens},
        {"textDocument/foldingRange", "foldingRangeProvider", About::file, FoldingRanges},
        {"textDocument/inlayHint", "inlayHintProvider", About::range, InlayHints},
        {"textDocument/codeAction", "codeActionProvider", About::range, CodeActions},
        {"textDocument/formatting", "documentFormattingProvider", About::file, Formatting},
        {"textDocument/rangeFormatting", "documentRangeFormattingProvider", About::range, Formatting},
        {"textDocument/documentLink", "documentLinkProvider", About::file, Links},
    };
    // clang-format on
    return all;
}

Json Server::Answer(const std::string& name, const Json& parameters) {
    struct Notification {
        std::string_view name;
        void (Server::*take)(const Json& parameters);  // null: it does no harm
    };
    static constexpr Notification notifications[] = {
        {"initialized", &Server::OnInitialized},
        {"$/setTrace", nullptr},
        {"$/cancelRequest", nullptr},  // is done already
        {"window/workDoneProgress/cancel", nullptr},
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
    const auto features = Feature::All();
    const auto feature = std::ranges::find(features, name, &Feature::name);
    if (feature != features.end()) {
        return AnswerFeature(*feature, parameters);
    }
    const auto* const notification = std::ranges::find(notifications, name, &Notification::name);
    if (notification == std::end(notifications)) {
        throw RequestError{ErrorCode::methodNotFound, "unknown method " + name};
    }
    if (notification->take != nullptr) {
        (this->*notification->take)(parameters);
    }
    return nullptr;
}

// Null for a file that is not part of any program.
Json Server::AnswerFeature(const Feature& feature, const Json& parameters) {
    constexpr Range everything = {{0, 0}, {INT32_MAX - 1, 0}};
    const std::string path = PathOfDocument(parameters);
    const auto position = FindPosition(parameters, "/position");
    const auto range = FindRange(parameters, "/range");
    if (feature.about == Feature::About::position && !position) {
        throw Missing("/position");
    }
    if (feature.about == Feature::About::range && !range) {
        throw Missing("/range");
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

// A document that is no file, such as one without a name yet, is one in the current directory.
std::string Server::PathOf(const std::string& uri) {
    if (const auto path = PathOfUri(uri)) {
        return workspace.FullPath(*path);
    }
    std::string name = uri;
    std::ranges::replace_if(
        name, [](char c) { return std::string_view(":/\\").find(c) != std::string_view::npos; },
        '_');
    return workspace.FullPath(name);
}

std::string Server::PathOfDocument(const Json& parameters) {
    return PathOf(Get<std::string>(parameters, "/textDocument/uri"));
}

Json Server::Initialize(const Json& parameters) {
    phase = Phase::initialized;
    const Strings encodings = StringsOf(parameters, "/capabilities/general/positionEncodings");
    encoding = std::ranges::count(encodings, "utf-8") != 0 ? PositionEncoding::utf8
                                                           : PositionEncoding::utf16;
    programs.SetEncoding(encoding);
    const auto* const watches =
        Find<bool>(parameters, "/capabilities/workspace/didChangeWatchedFiles/dynamicRegistration");
    watchesOnRequest = watches != nullptr && *watches;
    Strings folders = StringsOf(parameters, "/workspaceFolders", "/uri");
    const auto* const root = Find<std::string>(parameters, "/rootUri");
    if (folders.empty() && root != nullptr) {
        folders.push_back(*root);
    }
    for (const std::string& folder : folders) {
        workspace.AddFolder(PathOf(folder));
    }
    if (parameters.contains("initializationOptions")) {
        workspace.SetSettings(parameters["initializationOptions"]);
    }
    Json capabilities = {
        {"positionEncoding", encoding == PositionEncoding::utf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync",
         {{"openClose", true}, {"change", 2}, {"save", {{"includeText", false}}}}},
        {"renameProvider", {{"prepareProvider", true}}},
        {"completionProvider", {{"triggerCharacters", Json::array({" ", ",", "("})}}},
        {"signatureHelpProvider", {{"triggerCharacters", Json::array({" ", ","})}}},
        {"workspaceSymbolProvider", true},
        {"semanticTokensProvider",
         {{"legend", SemanticTokensLegend()}, {"full", true}, {"range", true}}},
        {"codeActionProvider", {{"codeActionKinds", Json::array({"quickfix"})}}},
        {"documentLinkProvider", {{"resolveProvider", false}}},
        {"workspace",
         {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}}};
    for (const Feature& feature : Feature::All()) {
        capabilities.emplace(feature.provider, true);  // unless it is there, with options
    }
    return {{"capabilities", capabilities},
            {"serverInfo", {{"name", "korv-ls"}, {"version", version}}}};
}

// Asks the client to report what happens to files on the disk.
void Server::OnInitialized(const Json&) {
    if (watchesOnRequest) {
        const Json everything = {{"watchers", Json::array({{{"globPattern", "**/*"}}})}};
        const Json registration = {{"id", "files"},
                                   {"method", "workspace/didChangeWatchedFiles"},
                                   {"registerOptions", everything}};
        stream.Write(TextOf({{"jsonrpc", "2.0"},
                             {"id", "watch files"},
                             {"method", "client/registerCapability"},
                             {"params", {{"registrations", Json::array({registration})}}}}));
    }
}

void Server::OnOpened(const Json& parameters) {
    documents.Open(PathOfDocument(parameters), parameters["textDocument"]);
    programs.OnFilesChanged();
}

void Server::OnChanged(const Json& parameters) {
    const std::string path = PathOfDocument(parameters);
    if (documents.Change(path, parameters, encoding)) {
        programs.OnTextChanged(path);
    }
}

void Server::OnClosed(const Json& parameters) {
    const std::string path = PathOfDocument(parameters);
    // What was published under the client's spelling of the URI is taken back under it.
    const std::string uri = documents.UriOf(path);
    if (published.erase(uri) != 0) {
        Notify(publishDiagnostics, {{"uri", uri}, {"diagnostics", Json::array()}});
    }
    documents.Close(path);
    programs.OnFilesChanged();
}

void Server::OnFilesChanged(const Json& parameters) {
    const bool areOptions = std::ranges::any_of(
        StringsOf(parameters, "/changes", "/uri"),
        [](const std::string& uri) { return uri.ends_with(Workspace::argumentFileName); });
    areOptions ? programs.OnConfigurationChanged() : programs.OnFilesChanged();
}

void Server::OnSettingsChanged(const Json& parameters) {
    if (parameters.contains("settings") && workspace.SetSettings(parameters["settings"])) {
        programs.OnConfigurationChanged();
    }
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
    for (const Snapshot* const snapshot : programs.Snapshots()) {
        AddSymbolsLike(*snapshot, query, &symbols);
    }
    return symbols;
}

}  // namespace korv
