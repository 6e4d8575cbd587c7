// Files and console on POSIX.

#include "platform/posix.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>

namespace korv::platform {
namespace {

// Process-wide, like signal dispositions.
struct Signal {
    int number;
    int event;
    struct sigaction previous {};
} signals[] = {
    {SIGINT, EVENT_CTRL_C},
    {SIGQUIT, EVENT_CTRL_BREAK},
    {SIGHUP, EVENT_CLOSE},
    {SIGTERM, EVENT_SHUTDOWN},
};
std::atomic<ConsoleHandler> consoleHandler = nullptr;
std::atomic<bool> hasEventCome = false;
sigset_t previousMask;  // before the first `HoldSignals`
int holds = 0;          // calls to `HoldSignals` without a `ReleaseSignals` yet

void OnSignal(int number) {
    hasEventCome = true;
    const int savedError = errno;
    for (const Signal& signal : signals) {
        if (signal.number == number) {
            consoleHandler.load()(signal.event);
        }
    }
    errno = savedError;
}

}  // namespace

bool wasMissing[3];

int LastError() {
    return errno != 0 ? errno : EIO;
}

bool HasEventCome() {
    return hasEventCome;
}

void HoldSignals() {
    if (holds++ != 0) {
        return;
    }
    sigset_t held;
    sigfillset(&held);
    for (const int stop : {SIGTSTP, SIGTTIN, SIGTTOU}) {
        sigdelset(&held, stop);
    }
    if (consoleHandler != nullptr) {
        for (const Signal& signal : signals) {
            sigdelset(&held, signal.number);
        }
    }
    sigprocmask(SIG_BLOCK, &held, &previousMask);
}

void ReleaseSignals() {
    if (--holds == 0) {
        sigprocmask(SIG_SETMASK, &previousMask, nullptr);
    }
}

const sigset_t* MaskBeforeHold() {
    return holds != 0 ? &previousMask : nullptr;
}

FileHandle::~FileHandle() {
    if (number >= 0) {
        close(number);
    }
}

bool InputFile::Open(std::string_view name) {
    const std::string path = Translated(name);
    handle =
        FileHandle(Requested([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY); }));
    struct stat status;
    const bool isKnown = handle >= 0 && Requested([&] { return fstat(handle, &status); }) == 0;
    if (!isKnown || S_ISDIR(status.st_mode)) {
        error = isKnown ? EISDIR : LastError();
        handle = FileHandle();
        return false;
    }
    identity = IdentityOf(status);
    hasSize = S_ISREG(status.st_mode);
    size = hasSize ? static_cast<std::uint64_t>(status.st_size) : 0;
    return true;
}

std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count) {
    const ssize_t got = Requested([&] { return read(handle, buffer, count); });
    return got < 0 && errno == EINTR ? 0 : got;
}

void OpenStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            wasMissing[stream] = true;
            // The file gets the lowest free descriptor, which is the stream's, and stays open.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDWR);
        }
    }
    // A failed write must return an error, not end the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

void SetConsoleTitle(const char* title) {
    if (IsTerminal(stdout)) {
        std::printf("\033]0;%s\a", title);
    }
}

void SetConsoleHandler(ConsoleHandler handler) {
    if (handler != nullptr) {
        hasEventCome = false;
        consoleHandler = handler;  // set before a signal can call it
    }
    struct sigaction action = {};  // no SA_RESTART: a signal ends a wait for input
    action.sa_handler = OnSignal;
    sigfillset(&action.sa_mask);
    for (Signal& signal : signals) {
        if (handler == nullptr) {
            sigaction(signal.number, &signal.previous, nullptr);
            continue;
        }
        sigaction(signal.number, nullptr, &signal.previous);
        if (signal.event != EVENT_CLOSE || signal.previous.sa_handler != SIG_IGN) {
            sigaction(signal.number, &action, nullptr);
        }
    }
    consoleHandler = handler;
}

void AwaitConsoleHandler() {}  // the handler interrupts the program, so no call is in progress here

void WriteFromHandler(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void WaitForKey() {
    std::fflush(stdout);
    termios before;
    const bool isTerminal = tcgetattr(STDIN_FILENO, &before) == 0;
    if (isTerminal) {
        termios oneKey = before;
        // The run is over, so a break key is read like any other key: if its signal ended the
        // process, the terminal would keep this mode.
        oneKey.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        oneKey.c_cc[VMIN] = 1;
        oneKey.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSANOW, &oneKey);
    }
    char key = 0;
    [[maybe_unused]] const ssize_t got = read(STDIN_FILENO, &key, 1);
    if (isTerminal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
    }
}

}  // namespace korv::platform
