/// What the implementations for all systems share.
#pragma once

#include <string_view>

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

/// Whether a request fails on purpose.
[[nodiscard]] bool FailsOnPurpose();

/// Makes a console event come.
void BreakOff();

}  // namespace korv::platform
