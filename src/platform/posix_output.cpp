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

void CloseIfOpen(int handle) {
    if (handle >= 0) {
        close(handle);
    }
}

// Gives a new file the owner and the permissions of an old one. False: that cannot be.
bool MakeAlike(int handle, const struct stat& old) {
    constexpr mode_t permissions = 07777;
    struct stat own;
    if (Requested([&] { return fstat(handle, &own); }) != 0) {
        return false;
    }
    if ((own.st_uid != old.st_uid || own.st_gid != old.st_gid) &&
        Requested([&] { return fchown(handle, old.st_uid, old.st_gid); }) != 0) {
        return false;
    }
    return (own.st_mode & permissions) == (old.st_mode & permissions) ||
           Requested([&] { return fchmod(handle, old.st_mode & permissions); }) == 0;
}

// Makes `path` where a symbolic link of that name leads to, in as many steps as it takes. False: it
// leads nowhere that has a name.
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
    if (!place.exists || !S_ISLNK(place.status.st_mode)) {
        return place;
    }
    if (kind == OutputFile::Kind::report) {
        place.exists = false;
        return place;
    }
    std::string path = place.path;
    ask(stat);
    const FileIdentity identity = IdentityOf(place.status);
    struct stat status;
    // Links of the system's own, as to a pipe that is open, have texts that are no names.
    place.isNamed =
        FollowLinks(&path) &&
        (!place.exists || (Requested([&] { return stat(path.c_str(), &status); }) == 0 &&
                           IdentityOf(status) == identity));
    if (place.isNamed) {
        place.path = path;
    }
    return place;
}

}  // namespace

void OutputFile::RemoveAll() {
    for (; unfinished != nullptr; unfinished = unfinished->next) {
        unlink(unfinished->temporary.c_str());
    }
}

// Creates a file in the directory of `path`. False: there is none, and `errno` says why.
bool OutputFile::CreateTemporary(unsigned mode) {
    [[maybe_unused]] static const int registered = std::atexit(RemoveAll);
    const std::size_t directory = path.find_last_of('/') + 1;
    if (unfinished == nullptr) {
        HoldSignals();
    }
    // Names that are taken are left over from a process that was killed.
    for (int i = 0; i < 100 && handle < 0 && (i == 0 || errno == EEXIST); ++i) {
        temporary.assign(path, 0, directory).append("korv");
        temporary.append(std::to_string(getpid() + i)).append(".tmp");
        handle = Requested([&] {
            constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
            return open(temporary.c_str(), flags, mode);
        });
    }
    isTemporary = handle >= 0;
    if (isTemporary) {
        next = std::exchange(unfinished, this);
    } else if (unfinished == nullptr) {
        const int error = errno;
        ReleaseSignals();
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
    CloseIfOpen(std::exchange(handle, -1));
    if (isTemporary) {
        unlink(temporary.c_str());
        Forget();
    }
}

OutputFile::~OutputFile() {
    GiveUp();
}

bool OutputFile::Open(std::string_view name, Kind kind, const FileSet& kept) {
    const Place place = Find(name, kind);
    if (!place.isKnown || (place.exists && (S_ISDIR(place.status.st_mode) ||
                                            kept.contains(IdentityOf(place.status))))) {
        return false;
    }
    path = place.path;
    int old = -1;
    if (place.exists) {  // whether it may be written it says itself, whatever its directory allows
        const int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | (place.isNamed ? O_NOFOLLOW : 0);
        old = Requested([&] { return open(path.c_str(), flags); });
        if (old < 0) {
            return false;
        }
    }
    const bool isRegular = place.exists && S_ISREG(place.status.st_mode);
    if (place.isNamed && (isRegular || !place.exists)) {
        // Nobody else may look into the new file until it is like the old one.
        if (!CreateTemporary(place.exists ? 0600 : 0666) && !IsRefused(errno)) {
            CloseIfOpen(old);
            return false;
        }
        if (isTemporary && place.exists && !MakeAlike(handle, place.status)) {
            GiveUp();
        }
    }
    if (isTemporary) {
        CloseIfOpen(old);
    } else {
        handle = old;
        isEmptied = !isRegular;
    }
    return handle >= 0;
}

void OutputFile::Empty() {
    if (!isEmptied) {
        isEmptied = true;
        hasFailed = Requested([&] { return ftruncate(handle, 0); }) != 0;
    }
}

void OutputFile::Write(const void* bytes, std::size_t count) {
    constexpr std::size_t mostAtOnce = 0x40000000;
    const char* from = static_cast<const char*>(bytes);
    Empty();
    while (count > 0 && !hasFailed) {
        const ssize_t written =
            Requested([&] { return write(handle, from, std::min(count, mostAtOnce)); });
        hasFailed = written <= 0;
        if (!hasFailed) {
            from += written;
            count -= static_cast<std::size_t>(written);
        }
    }
}

bool OutputFile::Commit() {
    Empty();
    const bool isClosed = Close(std::exchange(handle, -1));
    bool isWhole = isClosed && !hasFailed;
    if (isWhole && isTemporary) {
        isWhole = Requested([&] { return std::rename(temporary.c_str(), path.c_str()); }) == 0;
        if (isWhole) {
            Forget();
        }
    }
    GiveUp();
    return isWhole;
}

}  // namespace korv::platform
