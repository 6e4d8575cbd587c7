// The server's main loop: the order in which it handles messages, and when it analyses and
// publishes.

#include "server/server.h"

#include <algorithm>
#include <utility>

namespace korv {
namespace {

// The reply to the request `id`; `key` is "result" or "error".
std::string ReplyText(const Json& id, const char* key, const Json& value) {
    return R"({"jsonrpc":"2.0","id":)" + TextOf(id) + ",\"" + key + "\":" + TextOf(value) + "}";
}

}  // namespace

Server::Server(platform::Connection* connection, std::string version)
    : stream(connection), version(std::move(version)) {}

int Server::Run() {
    while (phase != Phase::ended && FillQueue()) {
        const Json next = std::move(queue.front());
        queue.pop_front();
        Take(next);
    }
    return status;
}

// Reads all waiting messages, so that a cancellation is seen before its request is handled. If no
// message is waiting, analyses and then waits for one. Result: false if the input has ended.
bool Server::FillQueue() {
    constexpr std::size_t longestQueue = 1000;
    while (queue.size() < longestQueue) {
        auto text = stream.Read(MessageStream::Wait::no);
        if (!text && queue.empty()) {
            Update();
            text = stream.Read(MessageStream::Wait::yes);
        }
        if (!text) {
            break;
        }
        queue.push_back(Json::parse(*text, /*cb=*/nullptr, /*allow_exceptions=*/false));
    }
    return !queue.empty();
}

// True if a waiting message cancels the request `id`.
bool Server::IsCancelled(const Json& id) const {
    const Json method = "$/cancelRequest";
    return std::ranges::any_of(queue, [&](const Json& each) {
        return At(each, "/method") == method && At(each, "/params/id") == id;
    });
}

void Server::Take(const Json& message) {
    const bool hasId = message.contains("id");
    if (hasId && (message.contains("result") || message.contains("error"))) {
        return;  // a reply to the server's own request; it is not needed
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
        if (hasId && IsCancelled(id)) {
            throw RequestError{ErrorCode::requestCancelled, "cancelled by the client"};
        }
        const Json result = Answer(*method, At(message, "/params"));
        if (!isNotification) {
            stream.Write(ReplyText(id, "result", result));
        }
    } catch (const RequestError& error) {
        if (!isNotification) {  // a notification has no reply
            stream.Write(
                ReplyText(id, "error", {{"code", error.code}, {"message", error.message}}));
        }
    }
}

// Analyses the programs that have changed. Then publishes each file's diagnostics if they or the
// version of its document have changed.
void Server::Update() {
    if (!programs.IsStale()) {
        return;
    }
    programs.Update();
    const auto publish = [this](const Json& parameters) {
        stream.Write(TextOf({{"jsonrpc", "2.0"},
                             {"method", "textDocument/publishDiagnostics"},
                             {"params", parameters}}));
    };
    auto previous = std::exchange(published, {});
    for (const auto& [path, list] : programs.Diagnostics()) {
        const Document* const document = documents.Find(path);
        const std::string uri = documents.UriOf(path);
        Json& parameters = published[uri] = {{"uri", uri}, {"diagnostics", list}};
        if (document != nullptr && !document->version.is_null()) {
            parameters["version"] = document->version;
        }
        const auto before = previous.extract(uri);
        if (before.empty() || before.mapped() != parameters) {
            publish(parameters);
        }
    }
    for (const auto& [uri, parameters] : previous) {
        publish({{"uri", uri}, {"diagnostics", Json::array()}});
    }
}

}  // namespace korv
