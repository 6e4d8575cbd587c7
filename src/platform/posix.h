/// What the files of the POSIX implementation share.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "platform/shared.h"

namespace korv::platform {

/// `name` with the separators of the system.
[[nodiscard]] std::string Translated(std::string_view name);

/// Makes `path` where a symbolic link of that name leads to, in as many steps as it takes. False:
/// it leads nowhere that has a name.
bool FollowLinks(std::string* path);

[[nodiscard]] inline FileIdentity IdentityOf(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// Whether a console event has come since a handler was installed.
[[nodiscard]] bool HasEventCome();

/// The result of `request`, a call that gives -1 on failure and sets `errno`; made again when a
/// signal has broken it off. After a console event that is its failure: the run has to end.
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

/// Removes the files of `Create` that are not in place yet. Safe in a handler of signals while they
/// are kept waiting elsewhere.
void RemoveUnfinished();

}  // namespace korv::platform
