// Writing files on POSIX. A temporary file lives from `Open` to the end of `Commit`; meanwhile the
// signals that end a process wait, and an exit removes it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <string>

#include "platform/platform.h"
#include "platform/posix.h"

namespace korv::platform {
namespace {

constexpr mode_t permissions = 07777;

// The names of the temporary files that there are now, and null. Process-wide, since the process
// may end anywhere; of a fixed size, since a report of what went wrong must not need memory.
std::array<const std::string*, 16> unfinished{};

bool IsNoneUnfinished() {
    return std::ranges::count(unfinished, nullptr) == std::ssize(unfinished);
}

void RemoveAll() {
    for (const std::string* const temporary : unfinished) {
        if (temporary != nullptr) {
            unlink(temporary->c_str());
        }
    }
}

// The temporary file has its final name, or is gone.
void Forget(const std::string& temporary) {
    std::ranges::replace(unfinished, &temporary, nullptr);
    if (IsNoneUnfinished()) {
        ReleaseSignals();
    }
}

// Whether a new file was refused by its directory, or has no name that is short enough: the old one
// can be written all the same. With a full disk, say, it would only be lost.
bool IsRefused(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

// What a name leads to: whether there is anything, then with its `status`.
struct Target {
    bool isKnown = true;  // false: the system does not say
    bool exists = false;
    struct stat status {};

    template <typename Call>
    void Ask(Call call, const std::string& path) {
        exists = Requested([&] { return call(path.c_str(), &status); }) == 0;
        isKnown = exists || errno == ENOENT;
    }
};

// Follows the symbolic link that `place->path` is.
void FollowLink(OutputPlace* place, Target* target) {
    target->Ask(stat, place->path);
    std::string path = place->path;
    struct stat status;
    // Links of the system's own, as to a pipe that is open, have texts that are no names.
    place->isReplaceable =
        FollowLinks(&path) &&
        (!target->exists || (Requested([&] { return stat(path.c_str(), &status); }) == 0 &&
                             IdentityOf(status) == IdentityOf(target->status)));
    if (place->isReplaceable) {
        place->path = path;
    }
}

}  // namespace

bool FollowLinks(std::string* path) {
    for (int i = 0; i < 40; ++i) {
        std::array<char, PATH_MAX> text;
        const ssize_t size =
            Requested([&] { return readlink(path->c_str(), text.data(), text.size()); });
        if (size < 0) {
            return errno == EINVAL || errno == ENOENT;  // no link, or nothing
        }
        const std::string_view target(text.data(), static_cast<std::size_t>(size));
        path->erase(target.starts_with('/') ? 0 : path->find_last_of('/') + 1);
        *path += target;
    }
    return false;
}

bool FindPlace(const FileSet& kept, OutputPlace* place) {
    place->path = Translated(place->path);
    Target target;
    target.Ask(lstat, place->path);
    if (target.exists && S_ISLNK(target.status.st_mode)) {
        if (place->kind == OutputFile::Kind::report) {
            target.exists = false;
        } else {
            FollowLink(place, &target);
        }
    }
    if (!target.isKnown || (target.exists && (S_ISDIR(target.status.st_mode) ||
                                              kept.contains(IdentityOf(target.status))))) {
        return false;
    }
    place->directory = place->path.substr(0, place->path.find_last_of('/') + 1);
    place->mode = 0666;
    if (target.exists) {  // whether it may be written it says itself, whatever its directory allows
        place->isRegular = S_ISREG(target.status.st_mode);
        place->mode = 0600;  // nobody else may look into the new file until it is like the old one
        const int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | (place->isReplaceable ? O_NOFOLLOW : 0);
        place->handle = FileHandle(Requested([&] { return open(place->path.c_str(), flags); }));
    }
    return !target.exists || place->handle >= 0;
}

Creation Create(const std::string& temporary, const OutputPlace& place, FileHandle* handle) {
    [[maybe_unused]] static const int registered = std::atexit(RemoveAll);
    if (IsNoneUnfinished()) {
        HoldSignals();
    }
    const std::string** const slot = std::ranges::find(unfinished, nullptr);
    if (slot == unfinished.end()) {
        return Creation::failed;
    }
    *slot = &temporary;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    *handle = FileHandle(Requested([&] { return open(temporary.c_str(), flags, place.mode); }));
    const int error = errno;
    if (*handle >= 0) {
        return Creation::done;
    }
    Forget(temporary);
    return error == EEXIST    ? Creation::nameIsTaken
           : IsRefused(error) ? Creation::isRefused
                              : Creation::failed;
}

bool MakeAlike(int handle, const OutputPlace& place) {
    struct stat own, old;
    return Requested([&] { return fstat(handle, &own); }) == 0 &&
           Requested([&] { return fstat(place.handle, &old); }) == 0 &&
           ((own.st_uid == old.st_uid && own.st_gid == old.st_gid) ||
            Requested([&] { return fchown(handle, old.st_uid, old.st_gid); }) == 0) &&
           ((own.st_mode & permissions) == (old.st_mode & permissions) ||
            Requested([&] { return fchmod(handle, old.st_mode & permissions); }) == 0);
}

bool Empty(int handle) {
    return Requested([&] { return ftruncate(handle, 0); }) == 0;
}

std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count) {
    return Requested([&] { return write(handle, buffer, count); });
}

bool PutInPlace(FileHandle* handle, const std::string& temporary, const std::string& path) {
    // Broken off by a signal it is closed too, and what was written is with the system.
    const bool isClosed = close(handle->Release()) == 0 || errno == EINTR;
    if (FailsOnPurpose() || !isClosed) {
        return false;
    }
    if (temporary.empty()) {
        return true;
    }
    const auto rename = [&] { return std::rename(temporary.c_str(), path.c_str()); };
    if (Requested(rename) != 0) {
        return false;
    }
    Forget(temporary);
    return true;
}

void Remove(const std::string& temporary) {
    unlink(temporary.c_str());
    Forget(temporary);
}

unsigned long ProcessNumber() {
    return static_cast<unsigned long>(getpid());
}

}  // namespace korv::platform
