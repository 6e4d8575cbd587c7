/// What the implementations for all systems share.
#pragma once

#include <cstddef>
#include <string_view>

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

/// Whether a request fails on purpose.
[[nodiscard]] bool FailsOnPurpose();

/// The system's number of the failure of the last request; never 0.
[[nodiscard]] int LastError();

/// Makes a console event come.
void BreakOff();

/// Read and write up to `count` bytes in one call. Result: the number of bytes, or -1. A reading
/// that a console event breaks off gives 0.
[[nodiscard]] std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count);
[[nodiscard]] std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count);

/// Makes an open file one without bytes.
[[nodiscard]] bool Empty(int handle);

}  // namespace korv::platform
