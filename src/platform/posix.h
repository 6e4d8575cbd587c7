/// What the files of the POSIX implementation share.
#pragma once

#include <string>
#include <string_view>

namespace korv::platform {

/// `name` with the separators of the system.
[[nodiscard]] std::string Translated(std::string_view name);

}  // namespace korv::platform
