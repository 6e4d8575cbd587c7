// Files and console on POSIX.

#include "platform/posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include "platform/platform.h"

namespace korv::platform {
namespace {

struct Signal {
    int number;
    int event;
};
constexpr std::array<Signal, 4> signals = {{
    {SIGINT, EVENT_CTRL_C},
    {SIGQUIT, EVENT_CTRL_BREAK},
    {SIGHUP, EVENT_CLOSE},
    {SIGTERM, EVENT_SHUTDOWN},
}};

// Process-wide, as signal dispositions are.
std::atomic<ConsoleHandler> consoleHandler = nullptr;
std::array<struct sigaction, signals.size()> previousActions;
std::atomic<bool> hasEventCome = false;
sigset_t previousMask;

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

void BreakOff() {
    std::raise(SIGINT);
}

bool HasEventCome() {
    return hasEventCome;
}

bool Close(int handle) {
    // Broken off by a signal it is closed too, and what was written is with the system.
    const bool isClosed = close(handle) == 0 || errno == EINTR;
    return !FailsOnPurpose() && isClosed;
}

void HoldSignals() {
    sigset_t held;
    sigfillset(&held);
    for (const int stop : {SIGTSTP, SIGTTIN, SIGTTOU}) {
        sigdelset(&held, stop);
    }
    for (std::size_t i = 0; consoleHandler != nullptr && i < signals.size(); ++i) {
        sigdelset(&held, signals[i].number);
    }
    sigprocmask(SIG_BLOCK, &held, &previousMask);
}

void ReleaseSignals() {
    sigprocmask(SIG_SETMASK, &previousMask, nullptr);
}

bool InputFile::Open(std::string_view name) {
    const std::string path = Translated(name);
    handle = Requested([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY); });
    struct stat status;
    if (handle >= 0 &&
        (Requested([&] { return fstat(handle, &status); }) != 0 || S_ISDIR(status.st_mode))) {
        close(handle);
        handle = -1;
    }
    if (handle >= 0) {
        identity = IdentityOf(status);
        hasSize = S_ISREG(status.st_mode);
        size = hasSize ? static_cast<std::uint64_t>(status.st_size) : 0;
    }
    return IsOpen();
}

InputFile::~InputFile() {
    if (handle >= 0) {
        close(handle);
    }
}

std::size_t InputFile::Read(void* buffer, std::size_t count) {
    // One call moves at most this much on any POSIX system.
    std::uint64_t wanted = std::min<std::uint64_t>(count, 0x40000000);
    if (size != 0) {
        // Nobody has to ask for the end of a file whose size is known.
        wanted = std::min(wanted, size - taken);
    }
    if (wanted == 0 || failed) {
        return 0;
    }
    const ssize_t got =
        Requested([&] { return read(handle, buffer, static_cast<std::size_t>(wanted)); });
    if (got < 0) {
        failed = errno != EINTR;
        return 0;
    }
    taken += static_cast<std::uint64_t>(got);
    return static_cast<std::size_t>(got);
}

void OpenStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            // The lowest free number, that is this one, stays in use.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDWR);
        }
    }
    // A write that fails is to say so, and not to end the process.
    for (const int number : {SIGXFSZ, SIGPIPE}) {
        std::signal(number, SIG_IGN);
    }
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

bool TakesColors(std::FILE* stream) {
    return IsTerminal(stream);
}

void MakeBinary(std::FILE*) {}  // as all are

void SetConsoleTitle(const char* title) {
    if (IsTerminal(stdout)) {
        std::printf("\033]0;%s\a", title);
    }
}

void SetConsoleHandler(ConsoleHandler handler) {
    if (handler == nullptr) {
        for (std::size_t i = 0; consoleHandler != nullptr && i < signals.size(); ++i) {
            sigaction(signals[i].number, &previousActions[i], nullptr);
        }
        consoleHandler = nullptr;
        return;
    }
    const bool isFirst = consoleHandler == nullptr;
    hasEventCome = false;
    consoleHandler = handler;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = 0;  // what waits for input is to wake up
    sigfillset(&action.sa_mask);
    for (std::size_t i = 0; isFirst && i < signals.size(); ++i) {
        sigaction(signals[i].number, &action, &previousActions[i]);
        if (signals[i].event == EVENT_CLOSE && previousActions[i].sa_handler == SIG_IGN) {
            sigaction(signals[i].number, &previousActions[i], nullptr);
        }
    }
}

void AwaitConsoleHandler() {}  // it interrupts the program and runs to its end

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
        // A break key counts as a key here: the run is over, and an end by signal would leave the
        // terminal changed.
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
