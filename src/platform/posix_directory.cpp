// File names and the current directory on POSIX.
//
// A name typed in another case is looked up in a list of its directory's entries. Reading a
// directory costs more than all other system calls of an INCLUDE, so the list is kept and used
// until the directory changes. Checking for a change takes only one call.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/posix.h"

// The mode in which a directory is opened to return to it later. Where O_PATH exists, this needs no
// permission to read the directory.
#ifndef O_PATH
#define O_PATH O_RDONLY
#endif

namespace korv::platform {
namespace {

using std::chrono::nanoseconds;

// macOS itself ignores case, so a file that is found may be spelled differently on disk. On macOS,
// the member for the time of the last change has another name.
#ifdef __APPLE__
#define st_mtim st_mtimespec
constexpr bool mayFindOtherCase = true;
#else
constexpr bool mayFindOtherCase = false;
#endif

nanoseconds TimeOfChange(const struct stat& status) {
    return std::chrono::seconds(status.st_mtim.tv_sec) + nanoseconds(status.st_mtim.tv_nsec);
}

// False: `path` refers to nothing, or the call has failed.
bool Ask(const std::string& path, struct stat* status) {
    return Requested([&] { return stat(path.c_str(), status); }) == 0;
}

bool Exists(const std::string& path) {
    struct stat status;
    return Requested([&] { return lstat(path.c_str(), &status); }) == 0;
}

std::string Joined(std::string_view directory, std::string_view name) {
    return std::string(directory == "/" ? "" : directory).append("/").append(name);
}

std::string Raised(std::string name) {
    for (char& c : name) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
    }
    return name;
}

// The directory and the name of a path that contains a "/"; the name of "/" is empty.
std::pair<std::string, std::string> Divided(const std::string& path) {
    const std::size_t separator = path.find_last_of('/');
    return {path.substr(0, std::max<std::size_t>(separator, 1)), path.substr(separator + 1)};
}

// The names in a directory as they were when it was read.
class Listing {
  public:
    // Spells `name` like the entry of `directory` that it matches: the one with exactly that name,
    // or else the first in byte order that matches without regard to case. False: no entry matches.
    // If the directory cannot be read, only the exact name is tried.
    bool Find(const std::string& directory, std::string* name) {
        struct stat status;
        const auto isKnown = [&] {
            return IdentityOf(status) == identity && TimeOfChange(status) == changed;
        };
        if (!Ask(directory, &status) || !(isKnown() || Read(directory, status))) {
            return Exists(Joined(directory, *name));
        }
        const std::string raised = Raised(*name);
        auto found = names.find({raised, *name});
        if (found == names.end()) {
            found = names.lower_bound({raised, {}});
        }
        if (found == names.end() || found->first != raised) {
            return false;
        }
        *name = found->second;
        return true;
    }

  private:
    // Reads the names in `directory`. `status` is the directory's status from before the call.
    // False: the directory cannot be read.
    bool Read(const std::string& directory, const struct stat& status) {
        using namespace std::chrono;
        const auto now = system_clock::now().time_since_epoch();
        names.clear();
        dirent** entries = nullptr;
        const int count =
            Requested([&] { return scandir(directory.c_str(), &entries, nullptr, nullptr); });
        for (int i = 0; i < count; ++i) {
            names.emplace(Raised(entries[i]->d_name), entries[i]->d_name);
            std::free(entries[i]);
        }
        std::free(entries);
        // The modification time of a directory has the resolution of a clock tick, which is a
        // second or two on some file systems. A change made after the read cannot be detected if
        // it falls in the same tick as the last change before the read.
        const nanoseconds time = TimeOfChange(status);
        const auto tick = time % seconds(1) == seconds(0) ? milliseconds(2000) : milliseconds(20);
        const bool isSettled = count >= 0 && time + tick < now;
        identity = isSettled ? IdentityOf(status) : FileIdentity();
        changed = time;
        return count >= 0;
    }

    std::set<std::pair<std::string, std::string>> names;  // each in upper case, then as spelled
    // The directory that was read; unset if its modification time might not reveal a later change.
    FileIdentity identity;
    nanoseconds changed{};
};

}  // namespace

std::string Translated(std::string_view name) {
    std::string result(name);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

std::size_t DriveLength(std::string_view) {
    return 0;
}

bool IsFileNotSwitch(const char* word) {
    const std::string path = word;
    const std::size_t last = path.find_last_of('/');
    struct stat status;
    return last > 0 && Ask(path.substr(0, last), &status) && S_ISDIR(status.st_mode);
}

bool IsProtectedFrom(std::string_view source, std::string_view target) {
    return Raised(Translated(source)) == Raised(Translated(target));
}

bool IsRegularFile(std::string_view name) {
    struct stat status;
    return Ask(Translated(name), &status) && S_ISREG(status.st_mode);
}

struct CurrentDirectory::State {
    // The directory of one file in the chain of includes that ends with the file being read.
    struct Level {
        std::string path{};      // empty: not determined yet, or there is none
        FileHandle handle{};     // for going back; opened when the directory is first left
        bool isEntered = false;  // false: the same directory as the level below
    };

    // Whether the current directory has a path; if so, it is stored in the last level.
    bool HasPath() {
        std::string& path = levels.back().path;
        std::array<char, PATH_MAX> text;
        const auto ask = [&text] { return getcwd(text.data(), text.size()) != nullptr ? 0 : -1; };
        if (path.empty() && Requested(ask) == 0) {
            path = text.data();
        }
        return !path.empty();
    }

    // Spells a full path as on disk, component by component. False: there is no such file, and
    // `path` is unchanged.
    bool SpellAsOnDisk(std::string* path) {
        const bool isRoot = path->size() == 1;
        if (isRoot || *path == levels.back().path || (!mayFindOtherCase && Exists(*path))) {
            return true;
        }
        auto [directory, name] = Divided(*path);
        if (!SpellAsOnDisk(&directory) || !listings[directory].Find(directory, &name)) {
            return false;
        }
        *path = Joined(directory, name);
        return true;
    }

    std::vector<Level> levels = std::vector<Level>(1);  // the first is where the run started
    std::map<std::string, Listing> listings;            // of directories searched, by path
};

CurrentDirectory::CurrentDirectory() : state(std::make_unique<State>()) {}

CurrentDirectory::~CurrentDirectory() = default;

FoundPath CurrentDirectory::FullPath(std::string_view name) {
    std::string path;
    if (!IsAbsolutePath(name)) {
        if (!state->HasPath()) {
            return {};
        }
        path = state->levels.back().path;
    }
    for (std::size_t start = 0; start < name.size();) {
        const std::size_t end = std::min(name.find_first_of(separators, start), name.size());
        const std::string_view component = name.substr(start, end - start);
        if (component == "..") {
            path.erase(std::min(path.find_last_of('/'), path.size()));
        } else if (!component.empty() && component != ".") {
            path = Joined(path, component);
        }
        start = end + 1;
    }
    if (path.empty()) {
        path = "/";
    }
    if (path.size() >= PATH_MAX) {
        return {};
    }
    const bool isFile = state->SpellAsOnDisk(&path);
    return {std::move(path), isFile};
}

bool CurrentDirectory::EnterDirectoryOf(const FoundPath& file) {
    State::Level& here = state->levels.back();
    std::string directory = Divided(file.path).first;
    // If a file was found in the current directory, there is nothing to enter. If it was not found,
    // its directory is entered even if it is the current one: this fails if the path cannot be
    // traversed.
    if (file.isFile && state->HasPath() && here.path == directory) {
        state->levels.push_back({.path = here.path});
        return true;
    }
    if (here.handle < 0) {
        here.handle =
            FileHandle(Requested([] { return open(".", O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    }
    const auto enter = [&] { return Requested([&] { return chdir(directory.c_str()); }) == 0; };
    const bool hasWayBack = here.handle >= 0 || state->HasPath();
    const bool isEntered = hasWayBack && (enter() || (state->SpellAsOnDisk(&directory) && enter()));
    state->levels.push_back({.path = isEntered ? "" : here.path, .isEntered = isEntered});
    return isEntered;
}

std::optional<std::string> CurrentDirectory::Leave() {
    const bool wasEntered = state->levels.back().isEntered;
    state->levels.pop_back();
    const State::Level& here = state->levels.back();
    const auto goBack = [&] {
        return here.handle >= 0 ? fchdir(here.handle) : chdir(here.path.c_str());
    };
    if (!wasEntered || Requested(goBack) == 0) {
        return std::nullopt;
    }
    isLost = true;
    return here.path;
}

}  // namespace korv::platform
