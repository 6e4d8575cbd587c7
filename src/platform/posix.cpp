// The platform layer on POSIX.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>

#include "platform/platform.h"

namespace korv::platform {
namespace {

constexpr std::string_view separators = "/\\";

std::string Translated(std::string_view name) {
    std::string result(name);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

bool Exists(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

// For a handle that serves to go back: needs no right to read the directory, where the system knows
// such a kind.
#ifdef O_PATH
constexpr int directoryHandle = O_PATH;
#else
constexpr int directoryHandle = O_RDONLY;
#endif

bool CurrentDirectory(std::string* path) {
    std::array<char, PATH_MAX> text;
    if (getcwd(text.data(), text.size()) == nullptr) {
        return false;
    }
    *path = text.data();
    return true;
}

constexpr char Folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Folded(x) == Folded(y); });
}

// The entry of `directory` that `name` means when case is ignored: the first one in byte order;
// empty for none.
std::string FindEntry(const std::string& directory, std::string_view name) {
    std::string found;
    DIR* const stream = opendir(directory.c_str());
    if (stream == nullptr) {
        return found;
    }
    while (const dirent* entry = readdir(stream)) {
        const std::string_view candidate = entry->d_name;
        if (EqualIgnoringCase(candidate, name) && (found.empty() || candidate < found)) {
            found = candidate;
        }
    }
    closedir(stream);
    return found;
}

// Spells the absolute `path` as it is on disk, component by component, an exact entry before one
// that differs in case. False: there is no such file, `path` is unchanged.
bool SpellAsOnDisk(std::string* path) {
    if (Exists(*path)) {
        return true;
    }
    std::string spelled;
    for (std::size_t start = 1; start <= path->size();) {
        const std::size_t end = std::min(path->find('/', start), path->size());
        const std::string component = path->substr(start, end - start);
        std::string entry = component;
        if (!Exists(spelled + '/' + component)) {
            entry = FindEntry(spelled.empty() ? "/" : spelled, component);
        }
        if (entry.empty()) {
            return false;
        }
        spelled += '/';
        spelled += entry;
        start = end + 1;
    }
    *path = spelled;
    return true;
}

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

void OnSignal(int number) {
    const int savedError = errno;
    for (const Signal& signal : signals) {
        if (signal.number == number) {
            consoleHandler.load()(signal.event);
        }
    }
    errno = savedError;
}

}  // namespace

PathParts SplitPath(std::string_view path) {
    const std::size_t separator = path.find_last_of(separators);
    const std::size_t name = separator == std::string_view::npos ? 0 : separator + 1;
    const std::size_t dot = std::min(path.find_last_of('.'), path.size());
    const std::size_t extension = dot < name ? path.size() : dot;
    return {path.substr(0, name), path.substr(name, extension - name), path.substr(extension)};
}

bool IsAbsoluteFileName(const char* word) {
    const std::string path = word;
    const std::size_t last = path.find_last_of('/');
    struct stat status;
    return last > 0 && stat(path.substr(0, last).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool FullPath(std::string_view name, std::string* path) {
    const std::string translated = Translated(name);
    std::string joined;
    if (translated.empty() || translated.front() != '/') {
        if (!CurrentDirectory(&joined)) {
            return false;
        }
        joined += '/';
    }
    joined += translated;

    path->clear();
    for (std::size_t start = 0; start < joined.size();) {
        const std::size_t end = std::min(joined.find('/', start), joined.size());
        const std::string_view component = std::string_view(joined).substr(start, end - start);
        if (component == "..") {
            path->erase(std::min(path->find_last_of('/'), path->size()));
        } else if (!component.empty() && component != ".") {
            path->append("/").append(component);
        }
        start = end + 1;
    }
    if (path->empty()) {
        *path = "/";
    }
    if (path->size() >= PATH_MAX) {
        return false;
    }
    SpellAsOnDisk(path);
    return true;
}

bool ChangeDirectory(std::string_view directory) {
    std::string path;
    return FullPath(directory, &path) && chdir(path.c_str()) == 0;
}

bool WouldOverwriteSource(std::string_view source, std::string_view target) {
    std::string sourcePath;
    std::string targetPath;
    return !Exists(Translated(source)) && FullPath(source, &sourcePath) &&
           Exists(Translated(target)) && FullPath(target, &targetPath) && sourcePath == targetPath;
}

SavedDirectory::SavedDirectory() : handle(open(".", directoryHandle | O_DIRECTORY | O_CLOEXEC)) {
    if (handle < 0) {
        CurrentDirectory(&path);
    }
}

SavedDirectory::~SavedDirectory() {
    if (handle >= 0) {
        close(handle);
    }
}

void SavedDirectory::Restore() const {
    // Where that fails there is nowhere else to go.
    [[maybe_unused]] const int result = handle >= 0 ? fchdir(handle) : chdir(path.c_str());
}

bool InputFile::Open(std::string_view name) {
    handle = open(Translated(name).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    struct stat status;
    if (handle >= 0 && (fstat(handle, &status) != 0 || S_ISDIR(status.st_mode))) {
        close(handle);
        handle = -1;
    }
    if (handle >= 0 && S_ISREG(status.st_mode)) {
        hasSize = true;
        size = static_cast<std::uint64_t>(status.st_size);
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
    constexpr std::size_t mostAtOnce = 0x40000000;
    // An event that comes while the process waits here for data, as of a pipe, ends the file: the
    // run has to end.
    const ssize_t got = read(handle, buffer, std::min(count, mostAtOnce));
    failed = failed || got < 0;
    return got < 0 ? 0 : static_cast<std::size_t>(got);
}

std::FILE* OpenForWriting(std::string_view name, FileMode mode) {
    return std::fopen(Translated(name).c_str(), mode == FileMode::text ? "w" : "wb");
}

void OpenStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            // The lowest free number, that is this one, stays in use.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDWR);
        }
    }
}

void SetConsoleTitle(const char* title) {
    if (isatty(STDOUT_FILENO) != 0) {
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
