// Text conversion and file reading on Win32.

#include "platform/win32.h"

#include <fcntl.h>
#include <io.h>

#include <cstdint>
#include <utility>

#include "platform/platform.h"

namespace korv::platform {

std::wstring Wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int count = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(count));
    return wide;
}

std::string Narrow(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    std::string text(wide.size() * 3, '\0');
    const int count =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), 3 * size, nullptr, nullptr);
    text.resize(static_cast<std::size_t>(count));
    return text;
}

std::wstring FullName(const std::wstring& name) {
    return Filled([&](DWORD size, wchar_t* buffer) {
        return GetFullPathNameW(name.c_str(), size, buffer, nullptr);
    });
}

std::wstring Unlimited(const std::wstring& path) {
    if (!path.starts_with(L"\\\\")) {
        return L"\\\\?\\" + path;
    }
    const bool isShare = !path.starts_with(L"\\\\.\\") && !path.starts_with(L"\\\\?\\");
    return isShare ? L"\\\\?\\UNC" + path.substr(1) : path;
}

OwnedHandle OpenHandle(const std::wstring& path, DWORD access, DWORD disposition,
                       DWORD attributes) {
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return OwnedHandle(Requested([&] {
        return CreateFileW(path.c_str(), access, shared, nullptr, disposition, attributes, nullptr);
    }));
}

FileHandle Numbered(OwnedHandle file, int mode) {
    FileHandle number(_open_osfhandle(reinterpret_cast<std::intptr_t>(file.get()), mode));
    if (number >= 0) {
        static_cast<void>(file.release());
    }
    return number;
}

bool Identify(HANDLE file, FileIdentity* identity, DWORD* attributes) {
    BY_HANDLE_FILE_INFORMATION information;
    if (Requested([&] { return GetFileInformationByHandle(file, &information); }) == 0) {
        return false;
    }
    *identity = {information.dwVolumeSerialNumber,
                 std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow};
    if (attributes != nullptr) {
        *attributes = information.dwFileAttributes;
    }
    return true;
}

bool InputFile::Open(std::string_view name) {
    OwnedHandle file = OpenHandle(Unlimited(FullName(Wide(name))), GENERIC_READ, OPEN_EXISTING,
                                  FILE_FLAG_SEQUENTIAL_SCAN);
    if (file.get() == INVALID_HANDLE_VALUE) {
        error = LastError();
        return false;
    }
    LARGE_INTEGER bytes = {};
    hasSize = GetFileType(file.get()) == FILE_TYPE_DISK;
    if (!hasSize || (Identify(file.get(), &identity) && GetFileSizeEx(file.get(), &bytes) != 0)) {
        size = static_cast<std::uint64_t>(bytes.QuadPart);
        handle = Numbered(std::move(file), _O_BINARY);
    }
    error = IsOpen() ? 0 : LastError();
    return IsOpen();
}

int LastError() {
    const DWORD error = GetLastError();
    return static_cast<int>(error != ERROR_SUCCESS ? error : ERROR_IO_DEVICE);
}

FileHandle::~FileHandle() {
    if (number >= 0) {
        _close(number);
    }
}

std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count) {
    return FailsOnPurpose() ? -1 : _read(handle, buffer, static_cast<unsigned>(count));
}

}  // namespace korv::platform
