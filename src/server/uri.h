/// Names of files as the protocol has them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korv {

/// The path of a "file:" URI, with the escapes resolved: "file:///a%20b" is "/a b",
/// "file:///c%3A/a" is "c:/a" where there are drives, "file://host/a" is "//host/a". None: it is
/// another kind of URI, or a byte 0 is in it.
[[nodiscard]] std::optional<std::string> PathOfUri(std::string_view uri);

/// The URI of a full path. All that is not a letter, a digit or one of "-._~/" is escaped.
[[nodiscard]] std::string UriOfPath(std::string_view path);

}  // namespace korv
