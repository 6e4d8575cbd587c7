/// What the files of the POSIX implementation share.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/platform.h"
#include "platform/shared.h"

namespace korv::platform {

/// `name` with the separators of the system.
[[nodiscard]] std::string Translated(std::string_view name);

/// The directory and the name of a path that holds a "/"; the name of "/" is empty.
[[nodiscard]] std::pair<std::string, std::string> Divided(const std::string& path);

[[nodiscard]] inline FileIdentity IdentityOf(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// Whether a console event has come since a handler was installed.
[[nodiscard]] bool HasEventCome();

/// The result of `request`, a call that gives -1 or null on failure and sets `errno`; made again
/// when a signal has broken it off. After a console event that is its failure: the run has to end.
template <typename Request>
[[nodiscard]] auto Requested(Request request) {
    using Result = decltype(request());
    Result failure{};
    if constexpr (std::is_integral_v<Result>) {
        failure = -1;
    }
    for (;;) {
        if (FailsOnPurpose()) {
            errno = EIO;
            return failure;
        }
        const Result result = request();
        if (result != failure || errno != EINTR || HasEventCome()) {
            return result;
        }
    }
}

/// Closes `handle`. False: what has been written may be lost. It is closed all the same.
[[nodiscard]] bool Close(int handle);

/// Keeps signals that end the process waiting, but for console events, which do not end it.
void HoldSignals();
void ReleaseSignals();

}  // namespace korv::platform
