/// Shared by the files of the Win32 implementation. The system is called with wide characters,
/// because only these calls accept every name, however long. All other texts are UTF-8, which the
/// manifest makes the code page of the process.
#pragma once

#include <io.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#undef SetConsoleTitle  // a macro that would rename our function

#include "platform/platform.h"
#include "platform/shared.h"

namespace korv::platform {

[[nodiscard]] std::wstring Wide(std::string_view text);
[[nodiscard]] std::string Narrow(std::wstring_view wide);

/// The full path of `name`, which the system forms from the current directory of the process. The
/// path of a device begins with `\\.\`. The result is empty if there is no full path.
[[nodiscard]] std::wstring FullName(const std::wstring& name);

/// A full path in the form that is not limited to 260 characters.
[[nodiscard]] std::wstring Unlimited(const std::wstring& path);

struct HandleCloser {
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) {
            CloseHandle(handle);
        }
    }
};
/// Owns the handle of an open file and closes it; an invalid handle means that there is none.
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

/// Like `CreateFileW`, but shares the file with all processes. Does not open a directory. Result:
/// an invalid handle on failure.
[[nodiscard]] OwnedHandle OpenHandle(const std::wstring& path, DWORD access, DWORD disposition,
                                     DWORD attributes);

/// Turns the handle of an open file into a file descriptor. `mode` is _O_BINARY, or _O_TEXT for the
/// line ends of the system.
[[nodiscard]] FileHandle Numbered(OwnedHandle file, int mode);

[[nodiscard]] inline HANDLE HandleOf(int number) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(number));
}

/// The identity of an open file. False: the system cannot determine it.
[[nodiscard]] bool Identify(HANDLE file, FileIdentity* identity, DWORD* attributes = nullptr);

/// Returns the result of `request`, a call that returns 0 or an invalid handle on failure.
template <typename Request>
[[nodiscard]] auto Requested(Request request) -> decltype(request()) {
    using Result = decltype(request());
    if (!FailsOnPurpose()) {
        return request();
    }
    SetLastError(ERROR_IO_DEVICE);
    if constexpr (std::is_same_v<Result, HANDLE>) {
        return INVALID_HANDLE_VALUE;
    } else {
        return Result{};
    }
}

/// The text that the system call `call` writes to a buffer; empty on failure. `call` receives the
/// size and the buffer. It returns the length of the text, or the required size if the buffer is
/// too small.
template <typename Call>
[[nodiscard]] std::wstring Filled(Call call) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(static_cast<DWORD>(text.size()), text.data());
        const bool fits = length < text.size();
        text.resize(length);
        if (fits) {
            return text;
        }
    }
}

}  // namespace korv::platform
