// Names of files, and the current directory, on POSIX.
//
// A name is found without regard to case by what the directory holds. To read a directory costs
// more than all else that an INCLUDE asks of the system, so what was read is kept, and asked again
// as long as the directory has not changed since, which a single call tells.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/posix.h"

namespace korv::platform {
namespace fs = std::filesystem;
namespace {

// For a handle that serves to go back: needs no right to read the directory, where the system knows
// such a kind.
#ifdef O_PATH
constexpr int directoryHandle = O_PATH;
#else
constexpr int directoryHandle = O_RDONLY;
#endif

// Where the system itself finds names without regard to case, what is found may be spelled
// otherwise.
#ifdef __APPLE__
constexpr bool mayFindOtherCase = true;
#else
constexpr bool mayFindOtherCase = false;
#endif

timespec TimeOfChange(const struct stat& status) {
#ifdef __APPLE__
    return status.st_mtimespec;
#else
    return status.st_mtim;
#endif
}

bool Exists(const std::string& path) {
    struct stat status;
    return Requested([&] { return lstat(path.c_str(), &status); }) == 0;
}

std::string Joined(std::string_view directory, std::string_view name) {
    std::string path(directory == "/" ? "" : directory);
    path += '/';
    path += name;
    return path;
}

std::string Raised(std::string_view name) {
    std::string result(name);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
    });
    return result;
}

// The names in a directory as they were when it was read.
class Listing {
  public:
    // What `name` means in `directory`: an entry of exactly that name, or else the first in byte
    // order of those that match when case is ignored; empty for none.
    std::string Find(const std::string& directory, const std::string& name) {
        struct stat status;
        if (Requested([&] { return stat(directory.c_str(), &status); }) != 0) {
            return {};
        }
        if (!IsUpToDate(status)) {
            Read(directory, status);
        }
        if (!isReadable) {
            return Exists(Joined(directory, name)) ? name : std::string();
        }
        const std::string raised = Raised(name);
        auto found = names.find({raised, name});
        if (found == names.end()) {
            found = names.lower_bound({raised, {}});
        }
        return found != names.end() && found->first == raised ? found->second : std::string();
    }

  private:
    [[nodiscard]] bool IsUpToDate(const struct stat& status) const {
        return isReadable && isSettled && status.st_dev == before.st_dev &&
               status.st_ino == before.st_ino &&
               TimeOfChange(status).tv_sec == TimeOfChange(before).tv_sec &&
               TimeOfChange(status).tv_nsec == TimeOfChange(before).tv_nsec;
    }

    // `status` is that of before the reading.
    void Read(const std::string& directory, const struct stat& status) {
        using namespace std::chrono;
        const auto now = system_clock::now().time_since_epoch();
        before = status;
        names.clear();
        DIR* const stream = Requested([&] { return opendir(directory.c_str()); });
        isReadable = stream != nullptr;
        if (isReadable) {
            const auto next = [stream] {
                errno = 0;  // by which an error differs from the end
                return readdir(stream);
            };
            while (const dirent* const entry = Requested(next)) {
                names.emplace(Raised(entry->d_name), entry->d_name);
            }
            isReadable = errno == 0;
            closedir(stream);
        }
        // The time of a directory moves by the tick of a clock, and on some file systems by a
        // second or two: what changes it after the reading, but within the tick of the last change
        // before, does not show.
        const timespec changed = TimeOfChange(status);
        const auto tick = changed.tv_nsec == 0 ? milliseconds(2000) : milliseconds(20);
        isSettled = seconds(changed.tv_sec) + nanoseconds(changed.tv_nsec) + tick < now;
    }

    std::set<std::pair<std::string, std::string>> names;  // in capitals, and as they are
    bool isReadable = false;
    bool isSettled = false;  // a later change will show in the directory's time
    struct stat before {};   // of the directory, before it was read
};

}  // namespace

std::string Translated(std::string_view name) {
    std::string result(name);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

std::pair<std::string, std::string> Divided(const std::string& path) {
    const std::size_t separator = path.find_last_of('/');
    return {path.substr(0, std::max<std::size_t>(separator, 1)), path.substr(separator + 1)};
}

std::size_t DriveLength(std::string_view) {
    return 0;
}

bool IsAbsoluteFileName(const char* word) {
    const std::string path = word;
    const std::size_t last = path.find_last_of('/');
    struct stat status;
    return last > 0 && stat(path.substr(0, last).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool MayBeOneFile(std::string_view source, std::string_view target) {
    return Raised(source) == Raised(target);
}

FileKind KindOf(std::string_view name) {
    struct stat status;
    if (stat(Translated(name).c_str(), &status) != 0) {
        return FileKind::none;
    }
    return S_ISREG(status.st_mode)    ? FileKind::regular
           : S_ISFIFO(status.st_mode) ? FileKind::pipe
                                      : FileKind::other;
}

bool LeadToOneFile(std::string_view a, std::string_view b) {
    const std::string first = Translated(a), second = Translated(b);
    struct stat one, other;
    if (stat(first.c_str(), &one) == 0 && stat(second.c_str(), &other) == 0) {
        return S_ISREG(one.st_mode) && IdentityOf(one) == IdentityOf(other);
    }
    std::error_code failure;
    const auto placeOf = [&failure](const std::string& name) {  // where a link leads to nothing yet
        const fs::path path = fs::absolute(name, failure);
        const fs::path link = fs::read_symlink(path, failure);
        return fs::weakly_canonical(failure ? path : path.parent_path() / link, failure);
    };
    return placeOf(first) == placeOf(second);
}

struct CurrentDirectory::State {
    // A directory on the way from the first file to the one being read.
    struct Level {
        std::string path;          // empty: not asked for, or it has none
        int handle = -1;           // for the way back; opened when the directory is first left
        bool isElsewhere = false;  // not the directory of the level before
    };

    // Whether the path of the current directory can be had; then it is that of the last level.
    bool HasPath() {
        std::string& path = levels.back().path;
        std::array<char, PATH_MAX> text;
        const auto ask = [&text] { return getcwd(text.data(), text.size()); };
        if (path.empty() && Requested(ask) != nullptr) {
            path = text.data();
        }
        return !path.empty();
    }

    // Spells a full path as it is on disk, component by component. False: there is no such file,
    // `path` is unchanged.
    bool SpellAsOnDisk(std::string* path) {
        const bool isRoot = path->size() == 1;
        if (isRoot || *path == levels.back().path || (!mayFindOtherCase && Exists(*path))) {
            return true;
        }
        auto [directory, name] = Divided(*path);
        if (!SpellAsOnDisk(&directory)) {
            return false;
        }
        const std::string entry = listings[directory].Find(directory, name);
        if (!entry.empty()) {
            *path = Joined(directory, entry);
        }
        return !entry.empty();
    }

    std::vector<Level> levels{Level()};       // the first is where the run began
    std::map<std::string, Listing> listings;  // of directories that were asked, by path
    bool isFound = false;                     // the last full path is that of a file
    bool isLost = false;                      // the current directory is not that of the last level
};

CurrentDirectory::CurrentDirectory() : state(std::make_unique<State>()) {}

CurrentDirectory::~CurrentDirectory() {
    for (const State::Level& level : state->levels) {
        if (level.handle >= 0) {
            close(level.handle);
        }
    }
}

bool CurrentDirectory::FullPath(std::string_view name, std::string* path) {
    path->clear();
    if (!IsAbsolutePath(name)) {
        if (!state->HasPath()) {
            return false;
        }
        *path = state->levels.back().path;
    }
    for (std::size_t start = 0; start < name.size();) {
        const std::size_t end = std::min(name.find_first_of(separators, start), name.size());
        const std::string_view component = name.substr(start, end - start);
        if (component == "..") {
            path->erase(std::min(path->find_last_of('/'), path->size()));
        } else if (!component.empty() && component != ".") {
            if (*path != "/") {
                *path += '/';
            }
            *path += component;
        }
        start = end + 1;
    }
    if (path->empty()) {
        *path = "/";
    }
    if (path->size() >= PATH_MAX) {
        return false;
    }
    state->isFound = state->SpellAsOnDisk(path);
    return true;
}

bool CurrentDirectory::IsFound() const {
    return state->isFound;
}

bool CurrentDirectory::EnterDirectoryOf(const std::string& path) {
    std::string directory = Divided(path).first;
    // A path that leads to a file of the current directory leads there too. One that leads nowhere
    // may not: the path of the current directory need not be passable.
    const bool isSame =
        state->isFound && state->HasPath() && state->levels.back().path == directory;
    State::Level next;
    if (!isSame) {
        State::Level& here = state->levels.back();
        if (here.handle < 0) {
            here.handle =
                Requested([] { return open(".", directoryHandle | O_DIRECTORY | O_CLOEXEC); });
        }
        const auto enter = [&directory] {
            return Requested([&] { return chdir(directory.c_str()); }) == 0;
        };
        const bool hasWayBack = here.handle >= 0 || state->HasPath();
        next.isElsewhere = hasWayBack && (enter() || (state->SpellAsOnDisk(&directory) && enter()));
    }
    if (!next.isElsewhere) {
        next.path = state->levels.back().path;
    }
    state->levels.push_back(std::move(next));
    return isSame || state->levels.back().isElsewhere;
}

bool CurrentDirectory::Leave() {
    const State::Level left = std::move(state->levels.back());
    state->levels.pop_back();
    if (left.handle >= 0) {
        close(left.handle);
    }
    if (!left.isElsewhere) {
        return true;
    }
    const State::Level& here = state->levels.back();
    const bool isBack =
        Requested(
            [&] { return here.handle >= 0 ? fchdir(here.handle) : chdir(here.path.c_str()); }) == 0;
    state->isLost = state->isLost || !isBack;
    return isBack;
}

std::string_view CurrentDirectory::Path() const {
    return state->levels.back().path;
}

bool CurrentDirectory::Reaches(std::string_view name) const {
    return !state->isLost || IsAbsolutePath(name);
}

}  // namespace korv::platform
