// Writing files on Win32. From its first moment a temporary file is marked as deleted: nobody else
// can open it, and it goes with its handle, however the process ends. `Commit` takes the mark away
// and gives it its name.

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

// Of an old file, what a new one in its place has too; what may be read only is not replaced.
constexpr DWORD keptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                 FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_ENCRYPTED;

// Whether a new file was refused by its directory: the old one can be written all the same. With a
// full disk, say, it would only be lost.
bool IsRefused(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
}

HANDLE HandleOf(int file) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(file));
}

bool MarkAsDeleted(HANDLE file, bool isDeleted) {
    FILE_DISPOSITION_INFO mark;
    mark.DeleteFile = isDeleted;
    return Requested([&] {
               return SetFileInformationByHandle(file, FileDispositionInfo, &mark, sizeof mark);
           }) != 0;
}

using Access = std::vector<std::byte>;

// Who may do what with a file; empty where the file system has no such thing.
Access AccessOf(HANDLE file) {
    DWORD size = 0;
    GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    Access access(size);
    if (GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, access.data(), size, &size) == 0) {
        access.clear();
    }
    return access;
}

// Lets the same people do the same with a new file as with an old one. False: that cannot be.
bool MakeAlike(HANDLE file, HANDLE old) {
    Access access = AccessOf(old);
    return access.empty() || access == AccessOf(file) ||
           Requested([&] {
               return SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, access.data());
           }) != 0;
}

// What a name leads to.
struct Place {
    OwnedHandle handle;         // of what is there, open for writing
    bool isKnown = true;        // false: it may not be written, or there is no such place
    bool isFile = false;        // and no device
    bool isReplaceable = true;  // a new file can be put there
    DWORD attributes = 0;
    FileIdentity identity;

    [[nodiscard]] bool Exists() const { return handle.get() != INVALID_HANDLE_VALUE; }
};

Place Find(const std::wstring& path, OutputFile::Kind kind) {
    Place place;
    // Of a symbolic link, a report replaces the link and a target what it leads to.
    const DWORD flags = kind == OutputFile::Kind::report ? FILE_FLAG_OPEN_REPARSE_POINT : 0;
    place.handle = OpenHandle(path, GENERIC_WRITE | DELETE, OPEN_EXISTING, flags);
    const DWORD error = GetLastError();
    if (!place.Exists() && (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION)) {
        place.isReplaceable = false;
        place.handle = OpenHandle(path, GENERIC_WRITE, OPEN_EXISTING, 0);
    }
    if (!place.Exists()) {
        place.isKnown = place.isReplaceable && error == ERROR_FILE_NOT_FOUND;
        return place;
    }
    place.isFile = GetFileType(place.handle.get()) == FILE_TYPE_DISK;
    place.isKnown =
        !place.isFile || Identify(place.handle.get(), &place.identity, &place.attributes);
    return place;
}

// Where what is open is found, with no link on the way; empty where the system does not say.
std::wstring PathOf(HANDLE file) {
    return Filled([file](DWORD size, wchar_t* buffer) {
        return GetFinalPathNameByHandleW(file, buffer, size, 0);
    });
}

}  // namespace

// Creates a file in the directory of `path`. False: there is none, and the last error says why.
bool OutputFile::CreateTemporary(unsigned mode) {
    constexpr DWORD access = GENERIC_WRITE | DELETE | WRITE_DAC;
    const std::size_t directory = path.find_last_of('\\') + 1;
    OwnedHandle file(INVALID_HANDLE_VALUE);
    const auto isThere = [&file] { return file.get() != INVALID_HANDLE_VALUE; };
    // Names that are taken may be those of other processes that had the same number.
    for (DWORD i = 0; i < 100 && !isThere() && (i == 0 || GetLastError() == ERROR_FILE_EXISTS);
         ++i) {
        temporary.assign(path, 0, directory).append("korv");
        temporary.append(std::to_string(GetCurrentProcessId() + i)).append(".tmp");
        file = OpenHandle(Wide(temporary), access, CREATE_NEW, mode);
    }
    if (isThere() && !MarkAsDeleted(file.get(), true)) {
        const DWORD error = GetLastError();
        file.reset(INVALID_HANDLE_VALUE);
        DeleteFileW(Wide(temporary).c_str());
        SetLastError(error);
        return false;
    }
    if (isThere()) {
        handle = Numbered(std::move(file));
    }
    isTemporary = handle >= 0;
    return isTemporary;
}

void OutputFile::GiveUp() {
    handle = FileHandle();
    if (std::exchange(isTemporary, false)) {
        DeleteFileW(Wide(temporary).c_str());  // gone already, but if the mark could not be set
    }
}

// False: the last error says why.
bool OutputFile::TryOpen(std::string_view name, Kind kind, const FileSet& kept) {
    std::wstring full = Unlimited(FullName(Wide(name)));
    Place place = Find(full, kind);
    if (!place.isKnown) {
        return false;
    }
    if (place.isFile && kept.contains(place.identity)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    if (place.isFile && kind == Kind::target) {
        const std::wstring end = PathOf(place.handle.get());
        full = end.empty() ? full : end;
    }
    path = Narrow(full);
    if (place.isReplaceable && (place.isFile || !place.Exists())) {
        const DWORD attributes = (place.attributes & keptAttributes) | FILE_ATTRIBUTE_ARCHIVE;
        if (!CreateTemporary(attributes) && !IsRefused(GetLastError())) {
            return false;
        }
        if (isTemporary && place.Exists() && !MakeAlike(HandleOf(handle), place.handle.get())) {
            GiveUp();
        }
    }
    if (!isTemporary && place.Exists()) {
        handle = Numbered(std::move(place.handle));
        isEmptied = !place.isFile;
    }
    if (handle >= 0 && kind == Kind::report) {
        _setmode(handle, _O_TEXT);
    }
    return handle >= 0;
}

bool Empty(int handle) {
    return !FailsOnPurpose() && _chsize_s(handle, 0) == 0;
}

std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count) {
    return FailsOnPurpose() ? -1 : _write(handle, buffer, static_cast<unsigned>(count));
}

bool OutputFile::Commit() {
    Write(nullptr, 0);  // an empty file is one too
    bool isWhole = error == 0;
    if (isWhole && isTemporary) {
        isWhole = MarkAsDeleted(HandleOf(handle), false) &&
                  Requested([this] {
                      return MoveFileExW(Wide(temporary).c_str(), Wide(path).c_str(),
                                         MOVEFILE_REPLACE_EXISTING);
                  }) != 0;
        isTemporary = !isWhole;
        error = isWhole ? 0 : LastError();
    }
    GiveUp();
    return isWhole;
}

}  // namespace korv::platform
