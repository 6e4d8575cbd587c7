// File names and the current directory on Win32.
//
// The current directory of the process is never changed: its path is limited to 260 characters,
// while a full path may have up to 32767. The current directory of the run is kept as text instead.

#include <algorithm>
#include <cwctype>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/win32.h"

namespace korv::platform {
namespace {

constexpr std::size_t driveLength = 2;
constexpr std::size_t longestPath = 32767 - 5;  // the system's limit, less what `Unlimited` adds

bool IsSeparator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

bool HasDrive(const std::wstring& path) {
    return path.size() >= driveLength && std::iswalpha(path[0]) != 0 && path[1] == L':';
}

// The directory of a full path. The root of a drive keeps its separator.
std::wstring DirectoryOf(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L'\\');
    return path.substr(0, std::max(separator, driveLength + 1));
}

DWORD AttributesOf(const std::wstring& path) {
    return GetFileAttributesW(Unlimited(path).c_str());
}

bool IsDirectory(const std::wstring& path) {
    const DWORD attributes = FailsOnPurpose() ? INVALID_FILE_ATTRIBUTES : AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Sets `component` to the last component of `path` as spelled on disk. False: there is no such
// entry.
bool Spell(const std::wstring& path, std::wstring* component) {
    WIN32_FIND_DATAW entry;
    const HANDLE search =
        Requested([&] { return FindFirstFileW(Unlimited(path).c_str(), &entry); });
    if (search == INVALID_HANDLE_VALUE) {
        // Perhaps the directory can be traversed but not read.
        return GetLastError() == ERROR_ACCESS_DENIED &&
               AttributesOf(path) != INVALID_FILE_ATTRIBUTES;
    }
    FindClose(search);
    *component = entry.cFileName;
    return true;
}

}  // namespace

std::size_t DriveLength(std::string_view name) {
    return HasDrive(Wide(name.substr(0, driveLength))) ? driveLength : 0;
}

bool IsFileNotSwitch(const char*) {
    return false;
}

bool IsProtectedFrom(std::string_view, std::string_view) {
    return true;
}

bool IsRegularFile(std::string_view name) {
    const std::wstring path = FullName(Wide(name));
    const DWORD attributes = HasDrive(path) ? AttributesOf(path) : INVALID_FILE_ATTRIBUTES;
    static_assert((INVALID_FILE_ATTRIBUTES & FILE_ATTRIBUTE_DIRECTORY) != 0);
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

struct CurrentDirectory::State {
    // The text from which the system forms the full path of `name`.
    [[nodiscard]] std::wstring Joined(const std::wstring& name) const {
        const std::wstring here = Wide(levels.back());
        const bool isRooted = !name.empty() && IsSeparator(name[0]);
        if (isRooted) {
            const bool isShare = name.size() > 1 && IsSeparator(name[1]);
            return isShare ? name : here.substr(0, driveLength) + name;
        }
        if (!HasDrive(name)) {
            // The name of a device refers to the device in every directory.
            return FullName(name).starts_with(L"\\\\.\\") ? name : here + L'\\' + name;
        }
        const bool isHere = std::towupper(name[0]) == std::towupper(here[0]) &&
                            !(name.size() > driveLength && IsSeparator(name[driveLength]));
        return isHere ? here + L'\\' + name.substr(driveLength) : name;
    }

    // Spells a full path as it is on disk, component by component. False: there is no such file,
    // and `path` is unchanged.
    bool SpellAsOnDisk(std::wstring* path) const {
        if (path->find_first_of(L"*?<>\"|") != std::wstring::npos) {
            return false;  // the system would treat it as a pattern, and no file has such a name
        }
        const std::wstring here = Wide(levels.back());  // spelled as on disk already
        std::wstring spelled = path->substr(0, driveLength);
        spelled[0] = static_cast<wchar_t>(std::towupper(spelled[0]));
        if (path->starts_with(here + L'\\')) {
            spelled = here;
        }
        for (std::size_t start = spelled.size() + 1; start < path->size();) {
            const std::size_t end = std::min(path->find(L'\\', start), path->size());
            std::wstring component = path->substr(start, end - start);
            if (!Spell(spelled + L'\\' + component, &component)) {
                return false;
            }
            spelled += L'\\' + component;
            start = end + 1;
        }
        const bool isRoot = spelled.size() == driveLength;
        if (isRoot && !IsDirectory(spelled + L'\\')) {
            return false;
        }
        *path = spelled + (isRoot ? L"\\" : L"");
        return true;
    }

    // Full paths of the directories in the chain of includes. The run started in the first of them.
    std::vector<std::string> levels{Narrow(FullName(L"."))};
};

CurrentDirectory::CurrentDirectory() : state(std::make_unique<State>()) {
    std::wstring start = Wide(state->levels[0]);
    if (HasDrive(start) && state->SpellAsOnDisk(&start)) {
        state->levels[0] = Narrow(start);
    }
}

CurrentDirectory::~CurrentDirectory() = default;

FoundPath CurrentDirectory::FullPath(std::string_view name) {
    std::wstring full = FullName(state->Joined(Wide(name)));
    if (FailsOnPurpose() || !HasDrive(full) || full.size() > longestPath) {
        return {};
    }
    const bool isFile = state->SpellAsOnDisk(&full);
    return {Narrow(full), isFile};
}

bool CurrentDirectory::EnterDirectoryOf(const FoundPath& file) {
    std::wstring directory = DirectoryOf(Wide(file.path));
    const bool isSame = Narrow(directory) == state->levels.back();
    const bool isThere = isSame || (state->SpellAsOnDisk(&directory) && IsDirectory(directory));
    state->levels.push_back(isThere ? Narrow(directory) : state->levels.back());
    return isThere;
}

std::optional<std::string> CurrentDirectory::Leave() {
    state->levels.pop_back();
    return std::nullopt;
}

}  // namespace korv::platform
