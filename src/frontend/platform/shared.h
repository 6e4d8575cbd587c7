/// What `StagedOutput` asks of a system, besides platform/shared.h.
#pragma once

#include <string>

#include "platform/shared.h"

namespace korv::platform {

/// Gives `path` the second name `name`, which is removed if the process ends before `PutInPlace` or
/// `Remove`.
[[nodiscard]] Creation Link(const std::string& path, const std::string& name);

/// Makes sure that the bytes of an open file are on the disk.
[[nodiscard]] bool Flush(int handle);

/// Whether the open file `handle` is a terminal.
[[nodiscard]] bool IsTerminalAt(int handle);

/// Whether two paths of `FindPlace`, at which there is nothing yet, lead to one place.
[[nodiscard]] bool AreOnePlace(const std::string& a, const std::string& b);

/// Lets signals that are kept waiting, and that ask the process to end, do so while it lives; the
/// unfinished files are removed first. One at a time.
class SignalWindow {
  public:
    SignalWindow();
    ~SignalWindow();
    SignalWindow(const SignalWindow&) = delete;
    SignalWindow& operator=(const SignalWindow&) = delete;
};

}  // namespace korv::platform
