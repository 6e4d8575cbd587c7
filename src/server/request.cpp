#include "server/request.h"

#include <nlohmann/json.hpp>

namespace korv::lsp {
namespace {

using Json = nlohmann::json;

// The part of `object` at `key`; null if there is none.
const Json* Find(const Json* object, const char* key) {
    if (object == nullptr || !object->is_object()) {
        return nullptr;
    }
    const auto found = object->find(key);
    return found == object->end() ? nullptr : &*found;
}
template <typename... Keys>
const Json* Find(const Json* object, const char* key, Keys... keys) {
    return Find(Find(object, key), keys...);
}

std::optional<std::string> StringIn(const Json* value) {
    return value != nullptr && value->is_string() ? std::optional(value->get<std::string>())
                                                  : std::nullopt;
}

template <typename Number>
std::optional<Number> NumberIn(const Json* value) {
    return value != nullptr && value->is_number_integer() ? std::optional(value->get<Number>())
                                                          : std::nullopt;
}

bool IsTrue(const Json* value) {
    return value != nullptr && value->is_boolean() && value->get<bool>();
}

std::optional<Position> PositionIn(const Json* value) {
    const auto line = NumberIn<std::int64_t>(Find(value, "line"));
    const auto character = NumberIn<std::int64_t>(Find(value, "character"));
    constexpr std::int64_t most = INT32_MAX - 1;  // lines count from 1 elsewhere
    if (!line || !character || *line < 0 || *character < 0) {
        return std::nullopt;
    }
    return Position{static_cast<std::uint32_t>(std::min(*line, most)),
                    static_cast<std::uint32_t>(std::min(*character, most))};
}

std::optional<Range> RangeIn(const Json* value) {
    const auto start = PositionIn(Find(value, "start"));
    const auto end = PositionIn(Find(value, "end"));
    return start && end ? std::optional(Range{*start, *end}) : std::nullopt;
}

std::vector<std::string> StringsIn(const Json* list) {
    std::vector<std::string> strings;
    if (list != nullptr && list->is_array()) {
        for (const Json& each : *list) {
            if (auto text = StringIn(&each)) {
                strings.push_back(std::move(*text));
            }
        }
    }
    return strings;
}

// The URIs of a list of workspace folders or of file events.
std::vector<std::string> UrisIn(const Json* list) {
    std::vector<std::string> uris;
    if (list != nullptr && list->is_array()) {
        for (const Json& each : *list) {
            if (auto uri = StringIn(Find(&each, "uri"))) {
                uris.push_back(std::move(*uri));
            }
        }
    }
    return uris;
}

// None: some element is not a change of a text.
std::optional<std::vector<ContentChange>> ChangesIn(const Json* list) {
    if (list == nullptr || !list->is_array()) {
        return std::nullopt;
    }
    std::vector<ContentChange> changes;
    for (const Json& each : *list) {
        auto text = StringIn(Find(&each, "text"));
        const Json* const range = Find(&each, "range");
        ContentChange change{RangeIn(range), text.value_or("")};
        if (!text || (range != nullptr && !change.range)) {
            return std::nullopt;
        }
        changes.push_back(std::move(change));
    }
    return changes;
}

// Clients send the section itself, or an object that has it.
std::optional<Settings> SettingsIn(const Json* value) {
    if (const Json* const section = Find(value, "korv")) {
        value = section;
    }
    if (value == nullptr || !value->is_object()) {
        return std::nullopt;
    }
    Settings settings;
    settings.main = StringIn(Find(value, "main")).value_or("");
    settings.arguments = StringsIn(Find(value, "arguments"));
    settings.inlayHints = StringIn(Find(value, "inlayHints")).value_or(settings.inlayHints);
    return settings;
}

void ReadInitialize(const Json* params, Parameters* parameters) {
    parameters->folders = UrisIn(Find(params, "workspaceFolders"));
    if (auto root = StringIn(Find(params, "rootUri")); root && parameters->folders.empty()) {
        parameters->folders.push_back(std::move(*root));
    }
    const Json* const capabilities = Find(params, "capabilities");
    for (const std::string& encoding :
         StringsIn(Find(capabilities, "general", "positionEncodings"))) {
        parameters->offersUtf8 = parameters->offersUtf8 || encoding == "utf-8";
    }
    parameters->watchesOnRequest =
        IsTrue(Find(capabilities, "workspace", "didChangeWatchedFiles", "dynamicRegistration"));
    parameters->settings = SettingsIn(Find(params, "initializationOptions"));
}

Parameters ReadParameters(const Json* params) {
    Parameters parameters;
    const Json* const document = Find(params, "textDocument");
    parameters.uri = StringIn(Find(document, "uri"));
    parameters.version = NumberIn<std::int64_t>(Find(document, "version"));
    parameters.text = StringIn(Find(document, "text"));
    parameters.position = PositionIn(Find(params, "position"));
    parameters.range = RangeIn(Find(params, "range"));
    parameters.changes = ChangesIn(Find(params, "contentChanges"));
    parameters.newName = StringIn(Find(params, "newName"));
    parameters.query = StringIn(Find(params, "query"));
    const Json* const includes = Find(params, "context", "includeDeclaration");
    parameters.includesDeclaration = includes == nullptr || IsTrue(includes);
    if (const auto size = NumberIn<std::int64_t>(Find(params, "options", "tabSize"))) {
        parameters.formatting.tabSize =
            static_cast<std::uint32_t>(std::clamp<std::int64_t>(*size, 1, 32));
    }
    if (const Json* const blanks = Find(params, "options", "insertSpaces")) {
        parameters.formatting.insertSpaces = IsTrue(blanks);
    }
    parameters.settings = SettingsIn(Find(params, "settings"));
    parameters.folders = UrisIn(Find(params, "event", "added"));
    parameters.removed = UrisIn(Find(params, "event", "removed"));
    parameters.changedFiles = UrisIn(Find(params, "changes"));
    if (const Json* const id = Find(params, "id")) {
        parameters.cancelledId = id->dump();
    }
    return parameters;
}

}  // namespace

Message ReadMessage(std::string_view text) {
    Message message;
    message.id = "null";
    const Json json = Json::parse(text, /*cb=*/nullptr, /*allow_exceptions=*/false);
    if (json.is_discarded()) {
        message.error = {ErrorCode::parseError, "the message is not JSON"};
        return message;
    }
    const Json* const id = Find(&json, "id");
    const bool isAnswer = id != nullptr && (json.contains("result") || json.contains("error"));
    auto method = StringIn(Find(&json, "method"));
    if (id != nullptr && (id->is_string() || id->is_number())) {
        message.id = id->dump();
    } else if (method && id == nullptr) {
        message.id.clear();
    } else if (!isAnswer) {
        method.reset();
    }
    if (!method && !isAnswer) {
        message.error = {ErrorCode::invalidRequest, "the message has no method or no proper id"};
        return message;
    }
    message.method = method.value_or("");
    const Json* const params = Find(&json, "params");
    message.parameters = ReadParameters(params);
    if (message.method == "initialize") {
        ReadInitialize(params, &message.parameters);
    }
    return message;
}

}  // namespace korv::lsp
