/// Shared by the files of the POSIX implementation.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/shared.h"

namespace korv::platform {

/// `name` with the separators of the system.
[[nodiscard]] std::string Translated(std::string_view name);

[[nodiscard]] inline FileIdentity IdentityOf(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// Whether a console event has occurred since a handler was installed.
[[nodiscard]] bool HasEventCome();

/// Returns the result of `request`, a call that returns -1 and sets `errno` on failure. The call is
/// repeated if a signal interrupts it, except after a console event: then it fails, since the run
/// has to end.
template <typename Request>
[[nodiscard]] auto Requested(Request request) -> decltype(request()) {
    for (;;) {
        if (FailsOnPurpose()) {
            errno = EIO;
            return -1;
        }
        const auto result = request();
        if (result != -1 || errno != EINTR || HasEventCome()) {
            return result;
        }
    }
}

/// Removes the unfinished files. Safe in a signal handler, as long as signals are blocked wherever
/// the list of these files changes.
void RemoveUnfinished();

/// Adds `temporary` to the list of unfinished files. False: the list is full.
[[nodiscard]] bool Remember(const std::string& temporary);
/// Removes `temporary`, which could not be created, from the list of unfinished files. Result: the
/// reason, from `errno`.
[[nodiscard]] Creation ForgetRefused(const std::string& temporary);

/// Creates the file `temporary` by calling `request` (see `Requested`). The file is removed if the
/// process ends before `PutInPlace` or `Remove`.
template <typename Request>
[[nodiscard]] Creation Created(const std::string& temporary, Request request) {
    if (!Remember(temporary)) {
        return Creation::failed;
    }
    return Requested(request) >= 0 ? Creation::done : ForgetRefused(temporary);
}

/// The signals that were blocked before `HoldSignals`; null if no hold is active.
[[nodiscard]] const sigset_t* MaskBeforeHold();

/// Whether each standard stream was closed when the process started, indexed by file descriptor.
extern bool wasMissing[3];

}  // namespace korv::platform
