// The loop of the server: in which order messages are taken, and when it analyses and publishes.

#include "server/server.h"

#include <algorithm>
#include <utility>

namespace korv {
namespace {

// A reply to the request with that `id`; `key` is "result" or "error".
std::string ReplyText(const Json& id, const char* key, const Json& value) {
    return R"({"jsonrpc":"2.0","id":)" + TextOf(id) + ",\"" + key + "\":" + TextOf(value) + "}";
}

}  // namespace

Server::Server(Channel* channel, std::string version)
    : stream(channel), version(std::move(version)) {}

// Reads a message into the queue. A request that is cancelled before its turn is refused.
void Server::Enqueue(std::string_view text) {
    Json message = Json::parse(text, /*cb=*/nullptr, /*allow_exceptions=*/false);
    const auto* const method = Find<std::string>(message, "/method");
    if (method != nullptr && *method == "$/cancelRequest") {
        for (Queued& each : queue) {
            const bool isIt = each.message.contains("id") && message.contains("params") &&
                              message["params"].contains("id") &&
                              each.message["id"] == message["params"]["id"];
            each.isCancelled = each.isCancelled || isIt;
        }
    }
    queue.push_back({std::move(message)});
}

// The next message; none: the input has ended. What is waiting is read first, so that a request to
// cancel another one comes in time. When nothing is waiting, there is time to analyse.
std::optional<Server::Queued> Server::NextMessage() {
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
        const auto text = stream.Read(MessageStream::Wait::yes);
        if (!text) {
            return std::nullopt;
        }
        Enqueue(*text);
    }
    Queued next = std::move(queue.front());
    queue.pop_front();
    return next;
}

int Server::Run() {
    while (phase != Phase::ended) {
        const auto next = NextMessage();
        if (!next) {
            break;
        }
        Take(*next);
    }
    return status;
}

void Server::Take(const Queued& queued) {
    const Json& message = queued.message;
    const bool hasId = message.contains("id");
    if (hasId && (message.contains("result") || message.contains("error"))) {
        return;  // the answer to a request of ours, which needs none
    }
    const bool isIdProper = hasId && (message["id"].is_string() || message["id"].is_number());
    const Json id = isIdProper ? message["id"] : Json();
    const auto* const method = Find<std::string>(message, "/method");
    const bool isNotification = !hasId && method != nullptr;
    try {
        if (message.is_discarded()) {
            throw RequestError{ErrorCode::parseError, "the message is not JSON"};
        }
        if (method == nullptr || (hasId && !isIdProper)) {
            throw RequestError{ErrorCode::invalidRequest,
                               "the message has no method or no proper id"};
        }
        if (queued.isCancelled) {
            throw RequestError{ErrorCode::requestCancelled, "cancelled by the client"};
        }
        const Json none;
        const Json result = Answer(*method, message.contains("params") ? message["params"] : none);
        if (!isNotification) {
            stream.Write(ReplyText(id, "result", result));
        }
    } catch (const RequestError& error) {
        if (!isNotification) {  // of which nobody is told what became of it
            stream.Write(
                ReplyText(id, "error", {{"code", error.code}, {"message", error.message}}));
        }
    }
}

void Server::Notify(const char* method, const Json& parameters) {
    stream.Write(TextOf({{"jsonrpc", "2.0"}, {"method", method}, {"params", parameters}}));
}

void Server::Update() {
    if (programs.IsStale()) {
        programs.Update();
        Publish();
    }
}

// Sends the diagnostics of files where they have changed, and of all documents that have changed.
void Server::Publish() {
    std::map<std::string, Json> next;
    for (const auto& [path, list] : programs.Diagnostics()) {
        const Document* const document = documents.Find(path);
        const std::string uri = documents.UriOf(path);
        next[uri] = {{"uri", uri}, {"diagnostics", list}};
        if (document != nullptr && document->version) {
            next[uri]["version"] = *document->version;
        }
    }
    const std::map<std::string, Json> previous = std::exchange(published, std::move(next));
    for (const auto& [uri, parameters] : previous) {
        if (!published.contains(uri)) {
            Notify(publishDiagnostics, {{"uri", uri}, {"diagnostics", Json::array()}});
        }
    }
    for (const auto& [uri, parameters] : published) {
        const auto before = previous.find(uri);
        if (before == previous.end() || before->second != parameters) {
            Notify(publishDiagnostics, parameters);
        }
    }
}

}  // namespace korv
