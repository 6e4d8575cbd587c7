#include "server/reply.h"

#include <nlohmann/json.hpp>

namespace korv::lsp {
namespace {

using Json = nlohmann::json;
using UriOf = std::function<std::string(const std::string& path)>;

std::string Text(const Json& json) {
    return json.dump(/*indent=*/-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

template <typename Element>
Json List(const std::vector<Element>& list, const UriOf& uriOf);

template <typename Choice>
int NumberOf(Choice choice) {
    return static_cast<int>(choice);
}

Json Markdown(const std::string& text) {
    return {{"kind", "markdown"}, {"value", text}};
}

Json ToJson(const Position& position) {
    return {{"line", position.line}, {"character", position.character}};
}
Json ToJson(const Range& range) {
    return {{"start", ToJson(range.start)}, {"end", ToJson(range.end)}};
}
Json ToJson(const Location& location, const UriOf& uriOf) {
    return {{"uri", uriOf(location.path)}, {"range", ToJson(location.range)}};
}
Json ToJson(const TextEdit& edit, const UriOf&) {
    return {{"range", ToJson(edit.range)}, {"newText", edit.newText}};
}
Json ToJson(const DocumentHighlight& highlight, const UriOf&) {
    return {{"range", ToJson(highlight.range)}, {"kind", NumberOf(highlight.kind)}};
}

Json ToJson(const WorkspaceEdit& edit, const UriOf& uriOf) {
    Json changes = Json::object();
    for (const auto& [path, edits] : edit) {
        changes[uriOf(path)] = List(edits, uriOf);
    }
    return {{"changes", std::move(changes)}};
}

Json ToJson(const RelatedInformation& related, const UriOf& uriOf) {
    return {{"location", ToJson(related.location, uriOf)}, {"message", related.message}};
}

Json ToJson(const Diagnostic& diagnostic, const UriOf& uriOf) {
    Json json = {{"range", ToJson(diagnostic.range)},
                 {"severity", diagnostic.isError ? 1 : 2},
                 {"source", "korv"},
                 {"message", diagnostic.message}};
    if (!diagnostic.code.empty()) {
        json["code"] = diagnostic.code;
    }
    if (!diagnostic.related.empty()) {
        json["relatedInformation"] = List(diagnostic.related, uriOf);
    }
    return json;
}

Json ToJson(const CompletionItem& item, const UriOf&) {
    Json json = {{"label", item.label}, {"kind", NumberOf(item.kind)}};
    if (!item.detail.empty()) {
        json["detail"] = item.detail;
    }
    if (!item.documentation.empty()) {
        json["documentation"] = Markdown(item.documentation);
    }
    if (!item.sortText.empty()) {
        json["sortText"] = item.sortText;
    }
    return json;
}

Json ToJson(const Signature& signature, const UriOf&) {
    Json parameters = Json::array();
    std::size_t end = signature.label.find(' ');  // "A" is also a part of "ADD"
    for (const std::string& each : signature.parameters) {
        const std::size_t start = signature.label.find(each, end);
        end = start + each.size();
        parameters.push_back({{"label", {start, end}}});
    }
    Json json = {{"label", signature.label}, {"parameters", std::move(parameters)}};
    if (!signature.documentation.empty()) {
        json["documentation"] = Markdown(signature.documentation);
    }
    return json;
}

Json ToJson(const DocumentSymbol& symbol, const UriOf& uriOf) {
    return {{"name", symbol.name},
            {"detail", symbol.detail},
            {"kind", NumberOf(symbol.kind)},
            {"range", ToJson(symbol.range)},
            {"selectionRange", ToJson(symbol.selectionRange)},
            {"children", List(symbol.children, uriOf)}};
}

Json ToJson(const WorkspaceSymbol& symbol, const UriOf& uriOf) {
    return {{"name", symbol.name},
            {"kind", NumberOf(symbol.kind)},
            {"location", ToJson(symbol.location, uriOf)}};
}

Json ToJson(const FoldingRange& range, const UriOf&) {
    return {{"startLine", range.startLine},
            {"endLine", range.endLine},
            {"kind", range.isComment ? "comment" : "region"}};
}

Json ToJson(const InlayHint& hint, const UriOf&) {
    return {{"position", ToJson(hint.position)}, {"label", hint.label}, {"paddingLeft", true}};
}

Json ToJson(const CodeAction& action, const UriOf& uriOf) {
    Json json = {{"title", action.title},
                 {"kind", "quickfix"},
                 {"edit", ToJson(action.edit, uriOf)},
                 {"isPreferred", action.isPreferred}};
    if (action.diagnostic) {
        json["diagnostics"] = Json::array({ToJson(*action.diagnostic, uriOf)});
    }
    return json;
}

Json ToJson(const DocumentLink& link, const UriOf& uriOf) {
    return {{"range", ToJson(link.range)}, {"target", uriOf(link.path)}};
}

// After all overloads of `ToJson`, so that it finds them.
template <typename Element>
Json List(const std::vector<Element>& list, const UriOf& uriOf) {
    Json json = Json::array();
    for (const Element& each : list) {
        json.push_back(ToJson(each, uriOf));
    }
    return json;
}

Json SemanticTokensOptions() {
    return {{"legend",
             {{"tokenTypes", Json(tokenTypeNames)}, {"tokenModifiers", Json(tokenModifierNames)}}},
            {"full", true},
            {"range", true}};
}

}  // namespace

std::string ResponseMessage(std::string_view id, std::string_view result) {
    return std::string(R"({"jsonrpc":"2.0","id":)")
        .append(id)
        .append(R"(,"result":)")
        .append(result)
        .append("}");
}

std::string ErrorMessage(std::string_view id, const Error& error) {
    const Json json = {{"code", NumberOf(error.code)}, {"message", error.message}};
    return std::string(R"({"jsonrpc":"2.0","id":)")
        .append(id)
        .append(R"(,"error":)")
        .append(Text(json))
        .append("}");
}

std::string ShowMessage(MessageType type, std::string_view text) {
    return Text({{"jsonrpc", "2.0"},
                 {"method", "window/showMessage"},
                 {"params", {{"type", NumberOf(type)}, {"message", text}}}});
}

std::string WatchFilesRequest() {
    const Json everything = {{"watchers", Json::array({{{"globPattern", "**/*"}}})}};
    const Json registration = {{"id", "files"},
                               {"method", "workspace/didChangeWatchedFiles"},
                               {"registerOptions", everything}};
    return Text({{"jsonrpc", "2.0"},
                 {"id", "watch files"},
                 {"method", "client/registerCapability"},
                 {"params", {{"registrations", Json::array({registration})}}}});
}

std::string InitializeResult(PositionEncoding encoding, std::string_view version) {
    const Json capabilities = {
        {"positionEncoding", encoding == PositionEncoding::utf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync",
         {{"openClose", true}, {"change", 2}, {"save", {{"includeText", false}}}}},
        {"hoverProvider", true},
        {"definitionProvider", true},
        {"declarationProvider", true},
        {"referencesProvider", true},
        {"documentHighlightProvider", true},
        {"renameProvider", {{"prepareProvider", true}}},
        {"completionProvider", {{"triggerCharacters", Json::array({" ", ",", "("})}}},
        {"signatureHelpProvider", {{"triggerCharacters", Json::array({" ", ","})}}},
        {"documentSymbolProvider", true},
        {"workspaceSymbolProvider", true},
        {"semanticTokensProvider", SemanticTokensOptions()},
        {"foldingRangeProvider", true},
        {"inlayHintProvider", true},
        {"codeActionProvider", {{"codeActionKinds", Json::array({"quickfix"})}}},
        {"documentFormattingProvider", true},
        {"documentRangeFormattingProvider", true},
        {"documentLinkProvider", {{"resolveProvider", false}}},
        {"workspace",
         {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}}};
    return Text({{"capabilities", capabilities},
                 {"serverInfo", {{"name", "korv-ls"}, {"version", version}}}});
}

std::string ReplyWriter::PublishDiagnostics(const std::string& path,
                                            std::optional<std::int64_t> version,
                                            const std::vector<Diagnostic>& diagnostics) const {
    Json params = {{"uri", uriOf(path)}, {"diagnostics", List(diagnostics, uriOf)}};
    if (version) {
        params["version"] = *version;
    }
    return Text({{"jsonrpc", "2.0"},
                 {"method", "textDocument/publishDiagnostics"},
                 {"params", std::move(params)}});
}

std::string ReplyWriter::Write(const std::optional<Hover>& hover) const {
    return hover ? Text({{"contents", Markdown(hover->markdown)}, {"range", ToJson(hover->range)}})
                 : "null";
}

std::string ReplyWriter::Write(const std::optional<SignatureHelp>& help) const {
    return help ? Text({{"signatures", List(help->signatures, uriOf)},
                        {"activeSignature", help->activeSignature},
                        {"activeParameter", help->activeParameter}})
                : "null";
}

std::string ReplyWriter::Write(const PreparedRename& rename) const {
    return Text({{"range", ToJson(rename.range)}, {"placeholder", rename.name}});
}

std::string ReplyWriter::Write(const WorkspaceEdit& edit) const {
    return Text(ToJson(edit, uriOf));
}

// Each token is five numbers; lines and columns count from the token before.
std::string ReplyWriter::Write(const std::vector<SemanticToken>& list) const {
    std::vector<std::uint32_t> data;
    data.reserve(list.size() * 5);
    Position last;
    for (const SemanticToken& token : list) {
        const bool isOnSameLine = token.start.line == last.line;
        data.insert(data.end(),
                    {token.start.line - last.line,
                     token.start.character - (isOnSameLine ? last.character : 0), token.length,
                     static_cast<std::uint32_t>(token.type), token.modifiers});
        last = token.start;
    }
    return Text({{"data", std::move(data)}});
}

std::string ReplyWriter::Write(const std::vector<Location>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<TextEdit>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<DocumentHighlight>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<CompletionItem>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<DocumentSymbol>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<WorkspaceSymbol>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<FoldingRange>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<InlayHint>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<CodeAction>& list) const {
    return Text(List(list, uriOf));
}
std::string ReplyWriter::Write(const std::vector<DocumentLink>& list) const {
    return Text(List(list, uriOf));
}

}  // namespace korv::lsp
