// The console on Win32. The system delivers console events on separate threads.

#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

#include "platform/platform.h"
#include "platform/win32.h"

// Keeps the C library from expanding words of the command line as patterns: "/?" is a switch.
extern "C" int _dowildcard;
int _dowildcard = 0;

namespace korv::platform {
namespace {

// Process-wide, as the console is.
std::atomic<ConsoleHandler> consoleHandler = nullptr;
SRWLOCK handlerLock = SRWLOCK_INIT;  // held while the handler runs
HANDLE eventHasCome = nullptr;
UINT codePage = 0;  // of the console, to be restored; 0: not changed

HANDLE HandleOf(std::FILE* stream) {
    return platform::HandleOf(_fileno(stream));
}

// Events are passed on with the system's numbers.
static_assert(EVENT_CTRL_C == CTRL_C_EVENT && EVENT_CTRL_BREAK == CTRL_BREAK_EVENT);
static_assert(EVENT_CLOSE == CTRL_CLOSE_EVENT && EVENT_LOGOFF == CTRL_LOGOFF_EVENT);
static_assert(EVENT_SHUTDOWN == CTRL_SHUTDOWN_EVENT);

BOOL WINAPI OnConsoleEvent(DWORD event) {
    AcquireSRWLockExclusive(&handlerLock);
    const ConsoleHandler handler = consoleHandler;
    const bool isHandled = handler != nullptr && handler(static_cast<int>(event)) != 0;
    ReleaseSRWLockExclusive(&handlerLock);
    if (!isHandled) {
        return FALSE;
    }
    SetEvent(eventHasCome);
    if (event >= CTRL_CLOSE_EVENT) {
        Sleep(INFINITE);  // returning would end the process before the run has ended
    }
    return TRUE;
}

void PutBack() {
    std::fflush(nullptr);
    if (codePage != 0) {
        SetConsoleOutputCP(codePage);
    }
}

DWORD WINAPI TakeByte(void* input) {
    char key = 0;
    DWORD count = 0;
    return ReadFile(input, &key, 1, &count, nullptr) != 0 ? 0 : 1;
}

// Waits until a key that has a character is pressed, or a console event occurs. Modifier keys have
// no character, and the release of a key belongs to an earlier press.
void TakeKey(HANDLE input) {
    const HANDLE awaited[] = {input, eventHasCome};
    INPUT_RECORD record = {};
    DWORD count = 1;
    while (WaitForMultipleObjects(eventHasCome == nullptr ? 1 : 2, awaited, FALSE, INFINITE) ==
               WAIT_OBJECT_0 &&
           ReadConsoleInputW(input, &record, 1, &count) != 0) {
        const KEY_EVENT_RECORD& key = record.Event.KeyEvent;
        if (record.EventType == KEY_EVENT && key.bKeyDown != 0 && key.uChar.UnicodeChar != 0) {
            return;
        }
    }
}

}  // namespace

void OpenStandardStreams() {
    // The library reserves the file descriptors of missing streams. On a console, it would make a
    // system call for each byte and treat each byte as a character, so output to a console is
    // buffered and binary. The console handles the line ends.
    static bool isDone = false;
    if (std::exchange(isDone, true)) {
        return;
    }
    for (std::FILE* const stream : {stdout, stderr}) {
        if (IsTerminal(stream)) {
            std::setvbuf(stream, nullptr, _IOFBF, 4096);
            _setmode(_fileno(stream), _O_BINARY);
            codePage = codePage == 0 ? GetConsoleOutputCP() : codePage;
            SetConsoleOutputCP(CP_UTF8);
        }
    }
    std::atexit(PutBack);
}

bool IsTerminal(std::FILE* stream) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

// Nothing to hold: a temporary file is deleted when the process ends, however that happens.
void HoldSignals() {}
void ReleaseSignals() {}

void SetConsoleTitle(const char* title) {
    SetConsoleTitleW(Wide(title).c_str());
}

void SetConsoleHandler(ConsoleHandler handler) {
    if (eventHasCome == nullptr) {
        eventHasCome = CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE, nullptr);
    }
    const ConsoleHandler previous = consoleHandler.exchange(handler);
    if (handler != nullptr) {
        ResetEvent(eventHasCome);
    } else {
        AwaitConsoleHandler();
    }
    if ((previous == nullptr) != (handler == nullptr)) {
        SetConsoleCtrlHandler(OnConsoleEvent, handler != nullptr);
    }
}

void AwaitConsoleHandler() {
    AcquireSRWLockExclusive(&handlerLock);
    ReleaseSRWLockExclusive(&handlerLock);
}

void WriteFromHandler(std::string_view text) {
    // Written to the stream's file descriptor, whose mode determines the line ends. A thread that
    // waits for a handler never holds the lock of that descriptor.
    [[maybe_unused]] const int written =
        _write(_fileno(stdout), text.data(), static_cast<unsigned>(text.size()));
}

void WaitForKey() {
    std::fflush(stdout);
    const HANDLE input = HandleOf(stdin);
    DWORD mode = 0;
    if (GetConsoleMode(input, &mode) != 0) {
        SetConsoleMode(input, ENABLE_PROCESSED_INPUT);  // makes a break key an event
        TakeKey(input);
        SetConsoleMode(input, mode);
        return;
    }
    // Read on another thread, since an event counts as a key too.
    const HANDLE reader = CreateThread(nullptr, 0, TakeByte, input, 0, nullptr);
    if (reader != nullptr) {
        const HANDLE awaited[] = {reader, eventHasCome};
        WaitForMultipleObjects(eventHasCome == nullptr ? 1 : 2, awaited, FALSE, INFINITE);
        CloseHandle(reader);
    }
}

}  // namespace korv::platform
