// Writing files on Win32. A temporary file is marked for deletion on creation, so no other process
// can open it, and it disappears when its handle is closed, however the process ends. `Commit`
// removes the mark and renames the file.

#include <fcntl.h>
#include <io.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/win32.h"

namespace korv::platform {
namespace {

// The attributes that a new file gets from the file that it replaces. A read-only file is not
// replaced.
constexpr DWORD keptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                 FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_ENCRYPTED;

// Whether the directory refused a new file. In that case, the old file can still be written. After
// another error, such as a full disk, writing it would only destroy it.
bool IsRefused(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
}

bool MarkAsDeleted(HANDLE file, bool isDeleted) {
    FILE_DISPOSITION_INFO mark;
    mark.DeleteFile = isDeleted;
    return Requested([&] {
               return SetFileInformationByHandle(file, FileDispositionInfo, &mark, sizeof mark);
           }) != 0;
}

using Access = std::vector<std::byte>;

// The access rights of a file; empty if the file system has none.
Access AccessOf(HANDLE file) {
    DWORD size = 0;
    GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    Access access(size);
    if (GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, access.data(), size, &size) == 0) {
        access.clear();
    }
    return access;
}

// The path of an open file with all links resolved; empty if the system cannot determine it.
std::wstring PathOf(HANDLE file) {
    return Filled([file](DWORD size, wchar_t* buffer) {
        return GetFinalPathNameByHandleW(file, buffer, size, 0);
    });
}

int ModeOf(OutputFile::Kind kind) {
    return kind == OutputFile::Kind::report ? _O_TEXT : _O_BINARY;
}

bool IsThere(const OwnedHandle& file) {
    return file.get() != INVALID_HANDLE_VALUE;
}

}  // namespace

bool FindPlace(const FileSet& kept, OutputPlace* place) {
    std::wstring path = Unlimited(FullName(Wide(place->path)));
    // If the name is a symbolic link, a report replaces the link, and a target replaces the file
    // that the link refers to.
    const bool isTarget = place->kind == OutputFile::Kind::target;
    const DWORD flags = isTarget ? 0 : FILE_FLAG_OPEN_REPARSE_POINT;
    OwnedHandle file = OpenHandle(path, GENERIC_WRITE | DELETE, OPEN_EXISTING, flags);
    const DWORD error = GetLastError();
    if (!IsThere(file) && (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION)) {
        place->isReplaceable = false;
        file = OpenHandle(path, GENERIC_WRITE, OPEN_EXISTING, 0);
    }
    DWORD attributes = 0;
    if (IsThere(file)) {
        place->isRegular = GetFileType(file.get()) == FILE_TYPE_DISK;
        if (place->isRegular && (!Identify(file.get(), &place->identity, &attributes) ||
                                 kept.contains(place->identity))) {
            return false;
        }
        if (const std::wstring end = PathOf(file.get());
            place->isRegular && isTarget && !end.empty()) {
            path = end;
        }
        place->handle = Numbered(std::move(file), ModeOf(place->kind));
    } else if (!place->isReplaceable || error != ERROR_FILE_NOT_FOUND) {
        return false;
    }
    place->path = Narrow(path);
    place->directory = place->path.substr(0, place->path.find_last_of('\\') + 1);
    place->mode = (attributes & keptAttributes) | FILE_ATTRIBUTE_ARCHIVE;
    return true;
}

Creation Create(const std::string& temporary, const OutputPlace& place, FileHandle* handle) {
    constexpr DWORD access = GENERIC_WRITE | DELETE | WRITE_DAC;
    OwnedHandle file = OpenHandle(Wide(temporary), access, CREATE_NEW, place.mode);
    const bool isMarked = IsThere(file) && MarkAsDeleted(file.get(), true);
    const DWORD error = GetLastError();
    if (isMarked) {
        *handle = Numbered(std::move(file), ModeOf(place.kind));
        return *handle >= 0 ? Creation::done : Creation::failed;
    }
    if (IsThere(file)) {
        file.reset(INVALID_HANDLE_VALUE);
        DeleteFileW(Wide(temporary).c_str());
    }
    return error == ERROR_FILE_EXISTS ? Creation::nameIsTaken
           : IsRefused(error)         ? Creation::isRefused
                                      : Creation::failed;
}

// Gives a new file the access rights of the old one.
bool MakeAlike(int handle, const OutputPlace& place) {
    Access access = AccessOf(HandleOf(place.handle));
    return access.empty() || access == AccessOf(HandleOf(handle)) ||
           Requested([&] {
               return SetKernelObjectSecurity(HandleOf(handle), DACL_SECURITY_INFORMATION,
                                              access.data());
           }) != 0;
}

bool SetSize(int handle, std::uint64_t size) {
    return !FailsOnPurpose() && _chsize_s(handle, static_cast<std::int64_t>(size)) == 0 &&
           _lseeki64(handle, 0, SEEK_SET) == 0;
}

bool EndWriting(FileHandle*) {
    return true;  // closing the handle would delete the file
}

std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count) {
    return FailsOnPurpose() ? -1 : _write(handle, buffer, static_cast<unsigned>(count));
}

bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path) {
    const bool isMarked = *handle >= 0;  // false: `temporary` is a second name of a file
    const auto move = [&] {
        return MoveFileExW(Wide(*temporary).c_str(), Wide(path).c_str(), MOVEFILE_REPLACE_EXISTING);
    };
    const bool isDone =
        temporary->empty() ||
        ((!isMarked || MarkAsDeleted(HandleOf(*handle), false)) && Requested(move) != 0);
    if (isDone) {
        temporary->clear();
    }
    return isDone;
}

void Remove(std::string* name) {
    DeleteFileW(Wide(*name).c_str());  // the file still exists only if the mark could not be set
    name->clear();
}

unsigned long ProcessNumber() {
    return GetCurrentProcessId();
}

}  // namespace korv::platform
