// Writing files on POSIX. A temporary file exists from `Open` to the end of `Commit`. Meanwhile,
// the signals that would end the process are blocked, and `exit` removes the file.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <string>

#include "platform/posix.h"

namespace korv::platform {
namespace {

constexpr mode_t permissions = 07777;

// The names of the temporary files that exist now; null in free slots. Process-wide, since the
// process may end at any point. The size is fixed, so adding a name needs no memory.
std::array<const std::string*, 16> unfinished{};

// Removes `temporary` from the list if it is there: the file has been renamed or removed, or was
// never created.
void Forget(const std::string& temporary) {
    const auto slot = std::ranges::find(unfinished, &temporary);
    if (slot != unfinished.end()) {
        *slot = nullptr;
        ReleaseSignals();
    }
}

// While `path` names a symbolic link, replaces it with the target of the link. False: a link cannot
// be read, or the chain has 40 links or more.
bool FollowLinks(std::string* path) {
    for (int i = 0; i < 40; ++i) {
        std::array<char, PATH_MAX> text;
        const ssize_t size =
            Requested([&] { return readlink(path->c_str(), text.data(), text.size()); });
        if (size < 0) {
            return errno == EINVAL || errno == ENOENT;  // not a link, or no such file
        }
        const std::string_view target(text.data(), static_cast<std::size_t>(size));
        path->erase(target.starts_with('/') ? 0 : path->find_last_of('/') + 1);
        *path += target;
    }
    return false;
}

// The file at a path: whether it exists, and its `status` if it does.
struct Target {
    bool isKnown = true;  // false: the call has failed
    bool exists = false;
    struct stat status {};

    template <typename Call>
    void Ask(Call call, const std::string& path) {
        exists = Requested([&] { return call(path.c_str(), &status); }) == 0;
        isKnown = exists || errno == ENOENT;
    }
};

// Follows the symbolic link at `place->path`.
void FollowLink(OutputPlace* place, Target* target) {
    target->Ask(stat, place->path);
    std::string path = place->path;
    struct stat status;
    // Some links are made by the system, for example links to open pipes. Their targets are not
    // file names.
    place->isReplaceable =
        FollowLinks(&path) &&
        (!target->exists || (Requested([&] { return stat(path.c_str(), &status); }) == 0 &&
                             IdentityOf(status) == IdentityOf(target->status)));
    if (place->isReplaceable) {
        place->path = path;
    }
}

}  // namespace

void RemoveUnfinished() {
    for (const std::string* const temporary : unfinished) {
        if (temporary != nullptr) {
            unlink(temporary->c_str());
        }
    }
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
    if (!target.isKnown || (target.exists && kept.contains(IdentityOf(target.status)))) {
        return false;
    }
    if (target.exists && S_ISDIR(target.status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    place->directory = place->path.substr(0, place->path.find_last_of('/') + 1);
    place->mode = 0666;
    if (target.exists) {  // it may be written if it can be opened, whatever its directory allows
        place->isRegular = S_ISREG(target.status.st_mode);
        place->identity = IdentityOf(target.status);
        place->mode = 0600;  // private, until the new file gets the permissions of the old one
        const int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | (place->isReplaceable ? O_NOFOLLOW : 0);
        place->handle = FileHandle(Requested([&] { return open(place->path.c_str(), flags); }));
    }
    return !target.exists || place->handle >= 0;
}

bool Remember(const std::string& temporary) {
    [[maybe_unused]] static const int registered = std::atexit(RemoveUnfinished);
    const std::string** const slot = std::ranges::find(unfinished, nullptr);
    if (slot == unfinished.end()) {
        return false;
    }
    HoldSignals();
    *slot = &temporary;
    return true;
}

// If the directory refuses a new file, or its name would be too long, the old file can still be
// written. In other cases, such as a full disk, writing it would only destroy it.
Creation ForgetRefused(const std::string& temporary) {
    const int error = errno;
    Forget(temporary);
    errno = error;
    const bool isRefused =
        error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
    return error == EEXIST ? Creation::nameIsTaken
           : isRefused     ? Creation::isRefused
                           : Creation::failed;
}

Creation Create(const std::string& temporary, const OutputPlace& place, FileHandle* handle) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    return Created(temporary, [&] {
        *handle = FileHandle(open(temporary.c_str(), flags, place.mode));
        return static_cast<int>(*handle);
    });
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

bool SetSize(int handle, std::uint64_t size) {
    return Requested([&] { return ftruncate(handle, static_cast<off_t>(size)); }) == 0 &&
           lseek(handle, 0, SEEK_SET) == 0;
}

std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count) {
    return Requested([&] { return write(handle, buffer, count); });
}

bool EndWriting(FileHandle* handle) {
    if (*handle < 0) {
        return true;
    }
    // If a signal interrupts the call, the file is closed nevertheless, and the system has all its
    // bytes.
    const bool isClosed = close(handle->Release()) == 0 || errno == EINTR;
    if (FailsOnPurpose()) {
        errno = EIO;
        return false;
    }
    return isClosed;
}

bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path) {
    const auto rename = [&] { return std::rename(temporary->c_str(), path.c_str()); };
    const bool isDone = EndWriting(handle) && (temporary->empty() || Requested(rename) == 0);
    if (isDone) {
        Forget(*temporary);
        temporary->clear();
    }
    return isDone;
}

void Remove(std::string* name) {
    if (!name->empty()) {
        while (unlink(name->c_str()) != 0 && errno == EINTR) {
        }
        Forget(*name);
        name->clear();
    }
}

unsigned long ProcessNumber() {
    return static_cast<unsigned long>(getpid());
}

}  // namespace korv::platform
