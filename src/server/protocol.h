/// The protocol: positions in a text as editors count them, the refusal of a request, and the
/// reading of parameters. What has another type than the protocol requires counts as missing.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korv {

using Json = nlohmann::json;
using Strings = std::vector<std::string>;

/// How a client counts the characters of a line. UTF-16 unless it offers UTF-8.
enum class PositionEncoding : std::uint8_t { utf16, utf8 };

/// A place between two characters. Both count from 0.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t character = 0;  ///< in units of the encoding
    auto operator<=>(const Position&) const = default;
};

struct Range {
    Position start;
    Position end;  ///< exclusive
    bool operator==(const Range&) const = default;
};

/// Units of the first `column` bytes of `line`. A byte that is not UTF-8 counts as one character,
/// as an editor shows it.
[[nodiscard]] std::uint32_t UnitsOf(std::string_view line, std::size_t column,
                                    PositionEncoding encoding);

/// The byte column of `character` in `line`; the end of the line for one that is beyond it, the
/// start of the character for one inside a surrogate pair.
[[nodiscard]] std::size_t ColumnOf(std::string_view line, std::uint32_t character,
                                   PositionEncoding encoding);

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

/// Thrown where a request has no result; the client shows the message to a person.
struct RequestError {
    ErrorCode code = ErrorCode::requestFailed;
    std::string message;
};

/// The refusal of a request without the parameter at `path`.
[[nodiscard]] RequestError Missing(std::string path);

/// The value at a path, such as "/textDocument/uri"; null if there is none of this type, which is
/// one that a `Json` holds.
template <typename Value>
[[nodiscard]] const Value* Find(const Json& json, const std::string& path) {
    const Json::json_pointer pointer(path);
    return json.contains(pointer) ? json[pointer].get_ptr<const Value*>() : nullptr;
}
/// The same for a value that the request cannot do without.
template <typename Value>
[[nodiscard]] const Value& Get(const Json& json, const std::string& path) {
    const Value* const found = Find<Value>(json, path);
    return found != nullptr ? *found : throw Missing(path);
}
/// The strings at `path` in the elements of the list at `listPath`.
[[nodiscard]] Strings StringsOf(const Json& json, const std::string& listPath,
                                const std::string& path = "");
[[nodiscard]] std::optional<Position> FindPosition(const Json& json, const std::string& path);
[[nodiscard]] std::optional<Range> FindRange(const Json& json, const std::string& path);

void to_json(Json& json, const Position& position);
void to_json(Json& json, const Range& range);

/// A change of a text.
[[nodiscard]] inline Json TextEdit(const Range& range, std::string_view newText) {
    return {{"range", range}, {"newText", newText}};
}
[[nodiscard]] inline Json Markdown(std::string_view text) {
    return {{"kind", "markdown"}, {"value", text}};
}

/// As the client gets it. What is no character in a text of the source becomes U+FFFD.
[[nodiscard]] inline std::string TextOf(const Json& json) {
    return json.dump(/*indent=*/-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

}  // namespace korv
