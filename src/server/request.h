/// A message of the client as plain data. request.cpp and reply.cpp alone know JSON.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/protocol.h"
#include "server/text_position.h"

namespace korv::lsp {

/// Numbers of the protocol.
enum class ErrorCode : std::int32_t {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParameters = -32602,
    notInitialized = -32002,
    requestCancelled = -32800,
    requestFailed = -32803,
};
struct Error {
    ErrorCode code = ErrorCode::invalidRequest;
    std::string message;
};

/// A change of a text; without a range it is the whole text.
struct ContentChange {
    std::optional<Range> range;
    std::string text;
};

/// Section "korv" of the client's settings.
struct Settings {
    std::string main;                    ///< the source of the program; empty: found out
    std::vector<std::string> arguments;  ///< words of a korv-as command line
    std::string inlayHints = "none";     ///< "none", "address" or "addressAndBytes"
};

/// The parameters of all methods: those that a message has and some method uses. What has another
/// type than the protocol requires counts as missing.
struct Parameters {
    std::optional<std::string> uri;  ///< of the document
    std::optional<std::int64_t> version;
    std::optional<std::string> text;
    std::optional<Position> position;
    std::optional<Range> range;
    std::optional<std::vector<ContentChange>> changes;
    std::optional<std::string> newName;
    std::optional<std::string> query;
    std::optional<std::string> cancelledId;  ///< as `Message::id`
    bool includesDeclaration = true;
    FormattingOptions formatting;
    std::optional<Settings> settings;
    std::vector<std::string> folders;       ///< URIs; of `initialize`, or those added
    std::vector<std::string> removed;       ///< URIs of workspace folders that were removed
    std::vector<std::string> changedFiles;  ///< URIs, of `didChangeWatchedFiles`
    bool offersUtf8 = false;                ///< of `initialize`
    bool watchesOnRequest = false;  ///< of `initialize`: the client can be asked to watch files
};

struct Message {
    std::string id;      ///< as JSON; empty: a notification
    std::string method;  ///< empty: the answer to a request of ours
    Parameters parameters;
    std::optional<Error> error;  ///< why it is not a message; `id` is that of the reply
};

[[nodiscard]] Message ReadMessage(std::string_view json);

}  // namespace korv::lsp
