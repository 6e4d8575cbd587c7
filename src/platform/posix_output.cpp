// Writing files on POSIX. A temporary file lives from `Open` to the end of `Commit`; meanwhile the
// signals that end a process wait, and an exit removes it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/platform.h"
#include "platform/posix.h"

namespace korv::platform {
namespace {

// Those that have a temporary file now. Process-wide, since the process may end anywhere.
OutputFile* unfinished = nullptr;

// Whether a new file was refused by its directory, or has no name that is short enough: the old one
// can be written all the same. With a full disk, say, it would only be lost.
bool IsRefused(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

// Gives a new file the owner and the permissions of an old one. False: that cannot be.
bool MakeAlike(int handle, const struct stat& old) {
    constexpr mode_t permissions = 07777;
    struct stat own;
    return Requested([&] { return fstat(handle, &own); }) == 0 &&
           ((own.st_uid == old.st_uid && own.st_gid == old.st_gid) ||
            Requested([&] { return fchown(handle, old.st_uid, old.st_gid); }) == 0) &&
           ((own.st_mode & permissions) == (old.st_mode & permissions) ||
            Requested([&] { return fchmod(handle, old.st_mode & permissions); }) == 0);
}

// What a name leads to.
struct Place {
    std::string path;
    bool isKnown = true;  // false: the system does not say
    bool exists = false;  // then `status` is set
    bool isNamed = true;  // false: a new file cannot be put there
    struct stat status {};
};

Place Find(std::string_view name, OutputFile::Kind kind) {
    Place place;
    place.path = Translated(name);
    const auto ask = [&place](auto* call) {
        const std::string& path = place.path;
        place.exists = Requested([&] { return call(path.c_str(), &place.status); }) == 0;
        place.isKnown = place.exists || errno == ENOENT;
    };
    ask(lstat);
    const bool isLink = place.exists && S_ISLNK(place.status.st_mode);
    if (isLink && kind == OutputFile::Kind::report) {
        place.exists = false;
    } else if (isLink) {
        ask(stat);
        std::string path = place.path;
        struct stat status;
        // Links of the system's own, as to a pipe that is open, have texts that are no names.
        place.isNamed =
            FollowLinks(&path) &&
            (!place.exists || (Requested([&] { return stat(path.c_str(), &status); }) == 0 &&
                               IdentityOf(status) == IdentityOf(place.status)));
        if (place.isNamed) {
            place.path = path;
        }
    }
    return place;
}

}  // namespace

void OutputFile::RemoveAll() {
    for (; unfinished != nullptr; unfinished = unfinished->next) {
        if (unfinished->isTemporary) {
            unlink(unfinished->temporary.c_str());
        }
    }
}

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

// Creates a file in the directory of `path`. False: there is none, and `errno` says why.
bool OutputFile::CreateTemporary(unsigned mode) {
    [[maybe_unused]] static const int registered = std::atexit(RemoveAll);
    const std::size_t directory = path.find_last_of('/') + 1;
    next = std::exchange(unfinished, this);
    if (next == nullptr) {
        HoldSignals();
    }
    // Names that are taken are left over from a process that was killed.
    for (int i = 0; i < 100 && handle < 0 && (i == 0 || errno == EEXIST); ++i) {
        temporary.assign(path, 0, directory).append("korv");
        temporary.append(std::to_string(getpid() + i)).append(".tmp");
        handle = FileHandle(Requested([&] {
            constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
            return open(temporary.c_str(), flags, mode);
        }));
    }
    isTemporary = handle >= 0;
    if (!isTemporary) {
        const int error = errno;
        Forget();
        errno = error;
    }
    return isTemporary;
}

// The temporary file has the final name, or is gone.
void OutputFile::Forget() {
    OutputFile** link = &unfinished;
    while (*link != this) {
        link = &(*link)->next;
    }
    *link = next;
    isTemporary = false;
    if (unfinished == nullptr) {
        ReleaseSignals();
    }
}

void OutputFile::GiveUp() {
    if (isTemporary) {
        unlink(temporary.c_str());
        Forget();
    }
}

// False: `errno` says why.
bool OutputFile::TryOpen(std::string_view name, Kind kind, const FileSet& kept) {
    const Place place = Find(name, kind);
    if (!place.isKnown) {
        return false;
    }
    const bool isDirectory = place.exists && S_ISDIR(place.status.st_mode);
    if (isDirectory || (place.exists && kept.contains(IdentityOf(place.status)))) {
        errno = isDirectory ? EISDIR : EPERM;
        return false;
    }
    path = place.path;
    FileHandle old;
    if (place.exists) {  // whether it may be written it says itself, whatever its directory allows
        const int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | (place.isNamed ? O_NOFOLLOW : 0);
        old = FileHandle(Requested([&] { return open(path.c_str(), flags); }));
        if (old < 0) {
            return false;
        }
    }
    const bool isRegular = place.exists && S_ISREG(place.status.st_mode);
    if (place.isNamed && (isRegular || !place.exists)) {
        // Nobody else may look into the new file until it is like the old one.
        if (!CreateTemporary(place.exists ? 0600 : 0666) && !IsRefused(errno)) {
            return false;
        }
        if (isTemporary && place.exists && !MakeAlike(handle, place.status)) {
            GiveUp();
        }
    }
    if (!isTemporary) {
        handle = std::move(old);
        isEmptied = !isRegular;
    }
    return handle >= 0;
}

bool Empty(int handle) {
    return Requested([&] { return ftruncate(handle, 0); }) == 0;
}

std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count) {
    return Requested([&] { return write(handle, buffer, count); });
}

bool OutputFile::Commit() {
    Write(nullptr, 0);  // an empty file is one too
    // Broken off by a signal it is closed too, and what was written is with the system.
    const bool isClosed = close(handle.Release()) == 0 || errno == EINTR;
    const bool isWhole = !FailsOnPurpose() && isClosed && error == 0 &&
                         (!isTemporary || Requested([&] {
                                              return std::rename(temporary.c_str(), path.c_str());
                                          }) == 0);
    error = isWhole || error != 0 ? error : LastError();
    if (isWhole && isTemporary) {
        Forget();
    }
    GiveUp();
    return isWhole;
}

}  // namespace korv::platform
