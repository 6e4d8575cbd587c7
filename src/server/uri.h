/// File names in the protocol.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korv {

/// The path of a "file:" URI, with the escapes resolved: "file:///a%20b" is "/a b",
/// "file:///c%3A/a" is "c:/a" on systems with drives, "file://host/a" is "//host/a". None if the
/// URI is of another kind or contains a null byte.
[[nodiscard]] std::optional<std::string> PathOfUri(std::string_view uri);

/// The URI of a full path. Everything except letters, digits and "-._~/" is escaped.
[[nodiscard]] std::string UriOfPath(std::string_view path);

}  // namespace korv
