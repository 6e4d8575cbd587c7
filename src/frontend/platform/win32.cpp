#include "platform/win32.h"

#include <fcntl.h>
#include <io.h>

#include <cstdlib>

#include "frontend/platform/platform.h"
#include "frontend/platform/shared.h"

namespace korv::platform {
namespace {

// Process-wide, as the console is.
HANDLE coloredOutput = nullptr;  // its mode is restored at exit
DWORD outputMode = 0;

HANDLE HandleOf(std::FILE* stream) {
    return platform::HandleOf(_fileno(stream));
}

void PutModeBack() {
    std::fflush(nullptr);
    SetConsoleMode(coloredOutput, outputMode);
}

}  // namespace

bool IsMissing(std::FILE* stream) {
    return HandleOf(stream) == INVALID_HANDLE_VALUE;
}

std::optional<FileIdentity> IdentityOf(std::FILE* stream) {
    FileIdentity identity;
    const bool isFile =
        GetFileType(HandleOf(stream)) == FILE_TYPE_DISK && Identify(HandleOf(stream), &identity);
    return isFile ? std::optional(identity) : std::nullopt;
}

bool TakesColors(std::FILE* stream) {
    const HANDLE output = HandleOf(stream);
    if (coloredOutput == nullptr && GetConsoleMode(output, &outputMode) != 0 &&
        SetConsoleMode(output, outputMode | ENABLE_PROCESSED_OUTPUT |
                                   ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0) {
        coloredOutput = output;
        std::atexit(PutModeBack);
    }
    return coloredOutput != nullptr && coloredOutput == output;
}

void MakeBinary(std::FILE* stream) {
    std::fflush(stream);
    _setmode(_fileno(stream), _O_BINARY);
}

StandardConnection::StandardConnection() : output(_dup(_fileno(stdout))) {
    MakeBinary(stdin);
    _setmode(output, _O_BINARY);
    _dup2(_fileno(stderr), _fileno(stdout));
}

bool StandardConnection::IsInputWaiting() const {
    const HANDLE input = HandleOf(stdin);
    DWORD count = 0;
    if (GetFileType(input) != FILE_TYPE_PIPE) {
        return WaitForSingleObject(input, /*dwMilliseconds=*/0) == WAIT_OBJECT_0;
    }
    return PeekNamedPipe(input, nullptr, 0, nullptr, &count, nullptr) == 0 || count != 0;
}

Creation Link(const std::string& path, const std::string& name) {
    const bool isDone = Requested([&] {
                            return CreateHardLinkW(Wide(name).c_str(), Wide(path).c_str(), nullptr);
                        }) != 0;
    return isDone                                   ? Creation::done
           : GetLastError() == ERROR_ALREADY_EXISTS ? Creation::nameIsTaken
                                                    : Creation::failed;
}

bool Flush(int handle) {
    return Requested([&] { return FlushFileBuffers(platform::HandleOf(handle)); }) != 0;
}

bool IsTerminalAt(int handle) {
    DWORD mode = 0;
    return GetConsoleMode(platform::HandleOf(handle), &mode) != 0;
}

bool AreOnePlace(const std::string& a, const std::string& b) {
    const std::wstring first = Wide(a), second = Wide(b);
    return CompareStringOrdinal(first.c_str(), -1, second.c_str(), -1, TRUE) == CSTR_EQUAL;
}

// Nothing to do: the system removes temporary files however the process ends.
SignalWindow::SignalWindow() = default;
SignalWindow::~SignalWindow() = default;

}  // namespace korv::platform
