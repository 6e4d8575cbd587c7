#include "platform/posix.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "frontend/platform/platform.h"
#include "frontend/platform/shared.h"

namespace korv::platform {
namespace {

namespace fs = std::filesystem;

// Process-wide, as signal dispositions are.
sigset_t released;  // by the current `SignalWindow`

// Ends the process as the signal would have.
void EndBySignal(int number) {
    RemoveUnfinished();
    std::signal(number, SIG_DFL);
    sigset_t own;
    sigemptyset(&own);
    sigaddset(&own, number);
    std::raise(number);
    sigprocmask(SIG_UNBLOCK, &own, nullptr);
}

}  // namespace

bool IsMissing(std::FILE* stream) {
    return wasMissing[fileno(stream)];
}

std::optional<FileIdentity> IdentityOf(std::FILE* stream) {
    struct stat status;
    const bool isFile =
        Requested([&] { return fstat(fileno(stream), &status); }) == 0 && S_ISREG(status.st_mode);
    return isFile ? std::optional(IdentityOf(status)) : std::nullopt;
}

bool TakesColors(std::FILE* stream) {
    const char* const type = std::getenv("TERM");
    return type != nullptr && *type != '\0' && std::string_view(type) != "dumb" &&
           IsTerminal(stream);
}

void MakeBinary(std::FILE*) {}  // all streams are binary already

StandardConnection::StandardConnection() : output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

bool StandardConnection::IsInputWaiting() const {
    struct pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, /*timeout=*/0) > 0;
}

Creation Link(const std::string& path, const std::string& name) {
    return Created(name, [&] { return link(path.c_str(), name.c_str()); });
}

bool Flush(int handle) {
    return Requested([&] { return fsync(handle); }) == 0;
}

bool IsTerminalAt(int handle) {
    return isatty(handle) != 0;
}

bool AreOnePlace(const std::string& a, const std::string& b) {
    std::error_code failure;
    const auto placeOf = [&failure](const fs::path& path) {
        return fs::weakly_canonical(fs::absolute(path, failure), failure);
    };
    return fs::path(a).filename() == fs::path(b).filename() && placeOf(a) == placeOf(b);
}

SignalWindow::SignalWindow() {
    sigemptyset(&released);
    const sigset_t* const before = MaskBeforeHold();
    for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) {
        struct sigaction action;
        sigaction(signal, nullptr, &action);
        // Signals that are ignored, as after nohup, stay ignored.
        if (before != nullptr && sigismember(before, signal) == 0 && action.sa_handler == SIG_DFL) {
            std::signal(signal, EndBySignal);
            sigaddset(&released, signal);
        }
    }
    sigprocmask(SIG_UNBLOCK, &released, nullptr);
}

SignalWindow::~SignalWindow() {
    sigprocmask(SIG_BLOCK, &released, nullptr);
    for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) {
        if (sigismember(&released, signal) == 1) {
            std::signal(signal, SIG_DFL);
        }
    }
}

}  // namespace korv::platform
