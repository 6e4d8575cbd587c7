/// What `StagedOutput` needs from a system, besides platform/shared.h.
#pragma once

#include <string>

#include "platform/shared.h"

namespace korv::platform {

/// Gives `path` a second name, `name`; on POSIX, it is removed if the process ends before
/// `PutInPlace` or `Remove`.
[[nodiscard]] Creation Link(const std::string& path, const std::string& name);

/// Makes sure that the bytes of an open file are on the disk.
[[nodiscard]] bool Flush(int handle);

/// True if the open file `handle` is a terminal.
[[nodiscard]] bool IsTerminalAt(int handle);

/// True if two paths from `FindPlace`, neither of which exists yet, refer to the same place.
[[nodiscard]] bool AreOnePlace(const std::string& a, const std::string& b);

/// While a window exists, held termination signals take effect: the unfinished files are removed,
/// and the process ends. Only one window may exist.
class SignalWindow {
  public:
    SignalWindow();
    ~SignalWindow();
    SignalWindow(const SignalWindow&) = delete;
    SignalWindow& operator=(const SignalWindow&) = delete;
};

}  // namespace korv::platform
