#include "server/workspace.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/argument_files.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

namespace fs = std::filesystem;

// A search through folders of other things has to end. No source is that long, and no folder of a
// program has that many files.
constexpr std::size_t longestSource = 1024 * 1024;
constexpr std::size_t mostFiles = 2000;
constexpr int deepestInclude = 16;

// Narrow characters would be those of some other code where names are wide.
fs::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

std::string NameOf(const fs::path& path) {
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

std::string DirectoryOf(const std::string& path) {
    std::string parent(platform::SplitPath(path).directory);
    if (parent.size() > 1 && parent.size() > platform::DriveLength(parent) + 1) {
        parent.pop_back();  // the separator
    }
    return parent;
}

bool IsIn(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder.ends_with('/') || path[folder.size()] == '/' || path[folder.size()] == '\\');
}

// The regular files of a folder in order of their names.
std::vector<std::string> FilesOf(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator at(PathOf(folder), error), end;
         !error && at != end && files.size() < mostFiles; at.increment(error)) {
        std::error_code unknown;
        if (at->is_regular_file(unknown) && at->file_size(unknown) <= longestSource) {
            files.push_back(NameOf(at->path()));
        }
    }
    std::ranges::sort(files);
    return files;
}

// The names in INCLUDE lines. Whether a line is assembled does not matter here: a program that
// turns out not to read the file is not used.
std::vector<std::string> IncludedNames(std::string_view text) {
    std::vector<std::string> names;
    if (text.find('\0') != std::string_view::npos) {
        return names;  // an image, or another file that is not a text
    }
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        const std::string raised = Raised(line);
        if (raised.find("INCLUDE") == std::string::npos) {
            continue;
        }
        const StatementView view = CutStatement(raised);
        if (view.keyword != nullptr && view.keyword->handler == AssembleInclude &&
            !view.operands.empty()) {
            names.emplace_back(view.operands.front().text);
        }
    }
    return names;
}

}  // namespace

std::string Workspace::FullPath(const std::string& name) {
    const platform::FoundPath found = directory.FullPath(name);
    return found.path.empty() ? name : found.path;
}

void Workspace::AddFolder(const std::string& path) {
    std::string folder = FullPath(path);
    if (folder.size() > 1 && (folder.ends_with('/') || folder.ends_with('\\'))) {
        folder.pop_back();
    }
    folders.push_back(std::move(folder));
    Forget();
}

void Workspace::RemoveFolder(const std::string& path) {
    std::erase(folders, FullPath(path));
    Forget();
}

void Workspace::SetSettings(lsp::Settings newSettings) {
    settings = std::move(newSettings);
    Forget();
}

void Workspace::Forget() {
    configurations.clear();
    includers.clear();
    includes.clear();
}

std::string Workspace::FolderOf(const std::string& path) {
    std::string longest;
    for (const std::string& folder : folders) {
        if (IsIn(path, folder) && folder.size() > longest.size()) {
            longest = folder;
        }
    }
    return longest.empty() ? DirectoryOf(path) : longest;
}

// The folder of the file, and those above it up to the workspace folder.
std::vector<std::string> Workspace::FoldersUpFrom(const std::string& path) {
    const std::string last = FolderOf(path);
    std::vector<std::string> found = {DirectoryOf(path)};
    while (found.back() != last && IsIn(found.back(), last)) {
        found.push_back(DirectoryOf(found.back()));
    }
    return found;
}

// `words` without a source are those of every file that is a program of its own.
Configuration Workspace::ReadConfiguration(const std::string& argumentFile, const std::string& base,
                                           std::vector<std::string> words) {
    Configuration configuration;
    configuration.origin = argumentFile;
    configuration.directory = base;
    configuration.failure = ExpandArgumentFiles(&words, base);
    if (!configuration.failure.empty()) {
        return configuration;
    }
    const std::string failure = TakeWords(words, &configuration.options);
    configuration.hasSource = failure.empty();
    if (configuration.hasSource && configuration.options.source == standardStream) {
        configuration.failure = "the source is standard input, which the editor does not have";
    } else if (configuration.hasSource && configuration.options.request != Request::assemble) {
        configuration.failure = "the words ask for help or version";
    } else if (!configuration.hasSource) {
        configuration.options = {};
        words.push_back("any.kor");
        if (!TakeWords(words, &configuration.options).empty()) {
            configuration.failure = failure;
        }
    }
    configuration.hasSource = configuration.hasSource && configuration.failure.empty();
    return configuration;
}

const Configuration& Workspace::ConfigurationOf(const std::string& path) {
    const auto [at, isNew] = configurations.try_emplace(path);
    if (!isNew) {
        return at->second;
    }
    if (!settings.main.empty() || !settings.arguments.empty()) {
        std::vector<std::string> words = settings.arguments;
        if (!settings.main.empty()) {
            words.push_back(settings.main);
        }
        at->second = ReadConfiguration("", FolderOf(path), std::move(words));
        return at->second;
    }
    for (const std::string& folder : FoldersUpFrom(path)) {
        const platform::FoundPath file = directory.FullPath(folder + "/" + argumentFileName);
        if (file.isFile) {
            at->second =
                ReadConfiguration(file.path, folder, {std::string("@") + argumentFileName});
            return at->second;
        }
    }
    at->second = ReadConfiguration("", FolderOf(path), {});
    at->second.failure.clear();
    return at->second;
}

std::string Workspace::BytesOf(const std::string& path) {
    if (const Documents::Document* const document = documents->Find(path)) {
        return document->bytes;
    }
    platform::InputFile file;
    std::string bytes;
    if (file.Open(path)) {
        std::array<char, 65536> block;
        for (std::size_t count = 1; count != 0 && bytes.size() <= longestSource;) {
            count = file.Read(block.data(), block.size());
            bytes.append(block.data(), count);
        }
    }
    return bytes;
}

const std::vector<std::string>& Workspace::IncludesOf(const std::string& path) {
    const auto [at, isNew] = includes.try_emplace(path);
    if (isNew) {
        for (const std::string& name : IncludedNames(BytesOf(path))) {
            at->second.push_back(
                FullPath(platform::IsAbsolutePath(name) ? name : DirectoryOf(path) + "/" + name));
        }
    }
    return at->second;
}

std::optional<std::string> Workspace::FindIncluder(const std::string& path) {
    for (const std::string& folder : FoldersUpFrom(path)) {
        for (const std::string& name : FilesOf(folder)) {
            const std::string file = FullPath(name);
            if (file != path && std::ranges::count(IncludesOf(file), path) != 0) {
                return file;
            }
        }
    }
    return std::nullopt;
}

const std::string& Workspace::IncluderOf(const std::string& path) {
    const auto [at, isNew] = includers.try_emplace(path, path);
    if (isNew) {
        for (int depth = 0; depth < deepestInclude; ++depth) {
            const auto includer = FindIncluder(at->second);
            if (!includer || *includer == path) {
                break;
            }
            at->second = *includer;
        }
    }
    return at->second;
}

std::vector<std::string> Workspace::FilesIn(const std::string& path, const std::string& name) {
    std::vector<std::string> names;
    std::error_code error;
    const fs::path folder = PathOf(DirectoryOf(path)) / PathOf(name);
    for (fs::directory_iterator at(folder, error), end;
         !error && at != end && names.size() < mostFiles; at.increment(error)) {
        std::error_code unknown;
        names.push_back(NameOf(at->path().filename()) + (at->is_directory(unknown) ? "/" : ""));
    }
    std::ranges::sort(names);
    return names;
}

}  // namespace korv
