// The loop of the server, and what changes its state. The features are called in
// server_features.cpp.

#include "server/server.h"

#include <algorithm>
#include <utility>

#include "server/server_methods.h"
#include "server/uri.h"

namespace korv {

Server::Server(Channel* channel, std::string version)
    : stream(channel),
      version(std::move(version)),
      writer([this](const std::string& path) { return UriOf(path); }) {}

std::string Server::UriOf(const std::string& path) const {
    const Documents::Document* const document = documents.Find(path);
    return document == nullptr ? UriOfPath(path) : document->uri;
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

// Reads a message into the queue. A request that is cancelled before its turn is refused.
void Server::Enqueue(std::string_view text) {
    lsp::Message message = lsp::ReadMessage(text);
    if (message.method == "$/cancelRequest" && message.parameters.cancelledId) {
        const auto found =
            std::ranges::find(queue, *message.parameters.cancelledId, &lsp::Message::id);
        if (found != queue.end() && !found->error) {
            found->error = {lsp::ErrorCode::requestCancelled, "cancelled by the client"};
        }
        return;
    }
    queue.push_back(std::move(message));
}

// The next message; none: the input has ended. What is waiting is read first, so that a request to
// cancel another one comes in time. When nothing is waiting, there is time to analyse.
std::optional<lsp::Message> Server::NextMessage() {
    constexpr std::size_t longestQueue = 1000;
    while (queue.size() < longestQueue) {
        const auto text = stream.Read(MessageStream::Wait::no);
        if (!text) {
            break;
        }
        Enqueue(*text);
    }
    if (queue.empty()) {
        Update();
    }
    while (queue.empty()) {
        const auto text = stream.Read(MessageStream::Wait::yes);
        if (!text) {
            return std::nullopt;
        }
        Enqueue(*text);
    }
    lsp::Message message = std::move(queue.front());
    queue.pop_front();
    return message;
}

int Server::Run() {
    while (phase != Phase::ended) {
        const auto message = NextMessage();
        if (!message) {
            break;
        }
        Take(*message);
    }
    return status;
}

void Server::Take(const lsp::Message& message) {
    if (message.error) {
        stream.Write(lsp::ErrorMessage(message.id, *message.error));
        return;
    }
    if (message.method.empty()) {
        return;  // the answer to a request of ours, which needs none
    }
    Result result = Answer(FindMethod(message.method), message);
    if (message.id.empty()) {
        return;  // a notification, whatever became of it
    }
    if (const auto* const error = std::get_if<lsp::Error>(&result)) {
        stream.Write(lsp::ErrorMessage(message.id, *error));
    } else {
        stream.Write(lsp::ResponseMessage(message.id, std::get<std::string>(result)));
    }
}

Server::Result Server::Answer(const Method* method, const lsp::Message& message) {
    using lsp::ErrorCode;
    const bool isExit = message.method == "exit";
    const bool isInitialize = message.method == "initialize";
    if (phase == Phase::created && !isInitialize && !isExit) {
        return lsp::Error{ErrorCode::notInitialized, "initialize comes first"};
    }
    if ((phase == Phase::shutDown && !isExit) || (phase != Phase::created && isInitialize)) {
        return lsp::Error{ErrorCode::invalidRequest, "not possible in this state"};
    }
    if (method == nullptr) {
        return lsp::Error{ErrorCode::methodNotFound, "unknown method " + message.method};
    }
    if (const std::string_view missing = method->Missing(message.parameters); !missing.empty()) {
        return lsp::Error{ErrorCode::invalidParameters,
                          "missing or wrong: " + std::string(missing)};
    }
    if (method->isFeature) {
        Update();
    }
    return (this->*method->take)(message.parameters);
}

void Server::Update() {
    if (programs.IsStale()) {
        programs.Update();
        Publish();
    }
}

// Sends the diagnostics of files where they have changed, and of all documents that have changed.
void Server::Publish() {
    const auto diagnostics = programs.Diagnostics();
    for (const auto& each : published) {
        if (!diagnostics.contains(each.first)) {
            stream.Write(writer.PublishDiagnostics(each.first, std::nullopt, {}));
        }
    }
    std::map<std::string, std::string> messages;
    for (const auto& [path, list] : diagnostics) {
        const Documents::Document* const document = documents.Find(path);
        std::string message = writer.PublishDiagnostics(
            path, document == nullptr ? std::nullopt : document->version, list);
        const auto previous = published.find(path);
        if (previous == published.end() || previous->second != message) {
            stream.Write(message);
        }
        messages[path] = std::move(message);
    }
    published = std::move(messages);
}

Server::Result Server::Initialize(const Parameters& parameters) {
    phase = Phase::initialized;
    encoding = parameters.offersUtf8 ? PositionEncoding::utf8 : PositionEncoding::utf16;
    programs.SetEncoding(encoding);
    watchesOnRequest = parameters.watchesOnRequest;
    for (const std::string& folder : parameters.folders) {
        workspace.AddFolder(PathOf(folder));
    }
    if (parameters.settings) {
        workspace.SetSettings(*parameters.settings);
    }
    return lsp::InitializeResult(encoding, version);
}

Server::Result Server::OnInitialized(const Parameters&) {
    if (watchesOnRequest) {
        stream.Write(lsp::WatchFilesRequest());
    }
    return "null";
}

Server::Result Server::Shutdown(const Parameters&) {
    phase = Phase::shutDown;
    return "null";
}

Server::Result Server::Exit(const Parameters&) {
    status = phase == Phase::shutDown ? 0 : 1;
    phase = Phase::ended;
    return "null";
}

Server::Result Server::Ignore(const Parameters&) {
    return "null";
}

Server::Result Server::DidOpen(const Parameters& parameters) {
    documents.Open(PathOf(*parameters.uri),
                   {*parameters.uri, parameters.version, nullptr, *parameters.text});
    programs.OnFilesChanged();
    return "null";
}

Server::Result Server::DidChange(const Parameters& parameters) {
    const std::string path = PathOf(*parameters.uri);
    if (documents.Change(path, parameters.version, *parameters.changes, encoding)) {
        programs.OnTextChanged(path);
    }
    return "null";
}

Server::Result Server::DidClose(const Parameters& parameters) {
    const std::string path = PathOf(*parameters.uri);
    // What was published under the client's spelling of the URI is taken back under it.
    if (published.erase(path) != 0) {
        stream.Write(writer.PublishDiagnostics(path, std::nullopt, {}));
    }
    documents.Close(path);
    programs.OnFilesChanged();
    return "null";
}

Server::Result Server::FilesChanged(const Parameters& parameters) {
    const bool areOptions = std::ranges::any_of(
        parameters.changedFiles,
        [](const std::string& uri) { return uri.ends_with(Workspace::argumentFileName); });
    areOptions ? programs.OnConfigurationChanged() : programs.OnFilesChanged();
    return "null";
}

Server::Result Server::SettingsChanged(const Parameters& parameters) {
    if (parameters.settings) {
        workspace.SetSettings(*parameters.settings);
        programs.OnConfigurationChanged();
    }
    return "null";
}

Server::Result Server::FoldersChanged(const Parameters& parameters) {
    for (const std::string& folder : parameters.removed) {
        workspace.RemoveFolder(PathOf(folder));
    }
    for (const std::string& folder : parameters.folders) {
        workspace.AddFolder(PathOf(folder));
    }
    programs.OnConfigurationChanged();
    return "null";
}

}  // namespace korv
