/// The protocol: positions in a text as editors count them, refusals of requests, and access to
/// parameters. A parameter of the wrong type counts as missing.
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

/// How a client counts the characters of a line. UTF-16 unless the client offers UTF-8.
enum class PositionEncoding : std::uint8_t { utf16, utf8 };

/// A place between two characters. Both numbers count from 0.
struct Position {
    std::uint32_t line = 0;
    std::uint32_t character = 0;  ///< in code units of the encoding
    auto operator<=>(const Position&) const = default;
};

struct Range {
    Position start;
    Position end;  ///< exclusive
    bool operator==(const Range&) const = default;
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Position, line, character)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Range, start, end)

/// The number of code units in the first `column` bytes of `line`. A byte that is not valid UTF-8
/// counts as one character, as an editor shows it.
[[nodiscard]] std::uint32_t UnitsOf(std::string_view line, std::size_t column,
                                    PositionEncoding encoding);

/// The byte column of `character` in `line`: the end of the line if `character` is beyond it, and
/// the start of a surrogate pair if `character` is inside it.
[[nodiscard]] std::size_t ColumnOf(std::string_view line, std::uint32_t character,
                                   PositionEncoding encoding);

/// Numbered as in the protocol.
enum class ErrorCode : std::int32_t {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParameters = -32602,
    notInitialized = -32002,
    requestCancelled = -32800,
    requestFailed = -32803,
};

/// Thrown to refuse a request; the client shows the message to the user.
struct RequestError {
    ErrorCode code = ErrorCode::requestFailed;
    std::string message;
};

/// The error for a request that lacks the parameter at `path`.
[[nodiscard]] RequestError Missing(std::string path);

/// The value at a path, such as "/textDocument/uri"; JSON null if there is none.
[[nodiscard]] const Json& At(const Json& json, const std::string& path);
/// The value at a path if it is a `Value`, one of the types that a `Json` can hold; else null.
template <typename Value>
[[nodiscard]] const Value* Find(const Json& json, const std::string& path) {
    return At(json, path).get_ptr<const Value*>();
}
/// A value that the request must have. Throws `Missing` if there is none.
template <typename Value>
[[nodiscard]] const Value& Get(const Json& json, const std::string& path) {
    const Value* const found = Find<Value>(json, path);
    return found != nullptr ? *found : throw Missing(path);
}
/// A value, or `otherwise` if there is none.
template <typename Value>
[[nodiscard]] Value Get(const Json& json, const std::string& path, const Value& otherwise) {
    const Value* const found = Find<Value>(json, path);
    return found != nullptr ? *found : otherwise;
}
/// The strings at `path` in the elements of the list at `listPath`.
[[nodiscard]] Strings StringsOf(const Json& json, const std::string& listPath,
                                const std::string& path = "");
[[nodiscard]] std::optional<Position> FindPosition(const Json& json, const std::string& path);
[[nodiscard]] std::optional<Range> FindRange(const Json& json, const std::string& path);

/// A change to a text.
[[nodiscard]] inline Json TextEdit(const Range& range, std::string_view newText) {
    return {{"range", range}, {"newText", newText}};
}
[[nodiscard]] inline Json Markdown(std::string_view text) {
    return {{"kind", "markdown"}, {"value", text}};
}

/// The JSON text to send. Bytes from a source that are not UTF-8 become U+FFFD.
[[nodiscard]] inline std::string TextOf(const Json& json) {
    return json.dump(/*indent=*/-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

}  // namespace korv
