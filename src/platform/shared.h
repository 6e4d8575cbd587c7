/// What the implementations for all systems share.
#pragma once

#include <cstddef>
#include <string_view>

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

/// Of the drive at the start of a name, with its colon; 0 where there is none, or are no drives.
[[nodiscard]] std::size_t DriveLength(std::string_view name);

/// Whether a request fails on purpose.
[[nodiscard]] bool FailsOnPurpose();

/// Makes a console event come.
void BreakOff();

}  // namespace korv::platform
