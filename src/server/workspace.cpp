#include "server/workspace.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/argument_files.h"
#include "frontend/file_store.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

namespace fs = std::filesystem;

// Limits on the search through folders, which may contain anything. No source is that long, and no
// folder of a program has that many files.
constexpr std::size_t longestSource = 1024 * 1024;
constexpr std::size_t mostFiles = 2000;

// Converts via UTF-8: where file names are wide, fs::path may expect another encoding.
fs::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

std::string NameOf(const fs::path& path) {
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

// `folder` without a separator at its end, unless it is a root.
std::string Trimmed(std::string folder) {
    const bool isRoot = folder.size() <= platform::DriveLength(folder) + 1;
    if (!isRoot && (folder.ends_with('/') || folder.ends_with('\\'))) {
        folder.pop_back();
    }
    return folder;
}

std::string DirectoryOf(const std::string& path) {
    return Trimmed(std::string(platform::SplitPath(path).directory));
}

bool IsIn(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder.ends_with('/') || path[folder.size()] == '/' || path[folder.size()] == '\\');
}

// The contents of a folder, sorted by name.
std::vector<fs::directory_entry> EntriesOf(const fs::path& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end;
         !error && at != end && entries.size() < mostFiles; at.increment(error)) {
        entries.push_back(*at);
    }
    std::ranges::sort(entries);
    return entries;
}

// The names in INCLUDE lines, even in lines that are not assembled. This does no harm: a program
// that turns out not to read the file is not used.
Strings IncludedNames(const StoredText& text) {
    if (text.Bytes().find('\0') != std::string::npos) {
        return {};  // an image, or another file that is not text
    }
    Strings names;
    for (std::int32_t line = 1; line <= text.LineCount(); ++line) {
        const std::string raised = Raised(text.Line(line));
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

std::string Workspace::FullPath(const std::string& name, const std::string& folder) {
    const bool isWhole = folder.empty() || platform::IsAbsolutePath(name);
    const platform::FoundPath found = directory.FullPath(isWhole ? name : folder + "/" + name);
    return found.path.empty() ? name : found.path;
}

void Workspace::AddFolder(const std::string& path) {
    folders.push_back(Trimmed(path));
}

void Workspace::RemoveFolder(const std::string& path) {
    std::erase(folders, Trimmed(path));
}

void Workspace::SetSettings(const Json& settings) {
    const Json& section = settings.contains("korv") ? settings["korv"] : settings;
    if (!section.is_object()) {
        return;
    }
    words = StringsOf(section, "/arguments");
    if (const auto main = Get<std::string>(section, "/main", ""); !main.empty()) {
        words.push_back(main);
    }
    inlayHints = Get<std::string>(section, "/inlayHints", "");
}

void Workspace::Forget() {
    configurations.clear();
    includers.clear();
    includes.clear();
}

// The folder of the file, and the folders above it, up to the workspace folder.
Strings Workspace::FoldersUpFrom(const std::string& path) {
    std::string top;  // the innermost workspace folder
    for (const std::string& folder : folders) {
        if (IsIn(path, folder) && folder.size() > top.size()) {
            top = folder;
        }
    }
    Strings found = {DirectoryOf(path)};
    while (!top.empty() && IsIn(found.back(), top)) {
        found.push_back(DirectoryOf(found.back()));
    }
    return found;
}

// If the words name no source, they apply to every main file.
Configuration Workspace::ReadConfiguration(const std::string& argumentFile, const std::string& base,
                                           Strings configured) {
    Configuration configuration;
    Options& options = configuration.options;
    configuration.origin = argumentFile;
    configuration.directory = base;
    configuration.failure = ExpandArgumentFiles(&configured, base);
    if (!configuration.failure.empty()) {
        return configuration;
    }
    if (const std::string failure = TakeWords(configured, &options); !failure.empty()) {
        options = {};
        configured.push_back("any.kor");
        configuration.failure = TakeWords(configured, &options).empty() ? "" : failure;
    } else if (options.source == standardStream) {
        configuration.failure = "the source is standard input, which the editor does not have";
    } else if (options.request != Request::assemble) {
        configuration.failure = "the words ask for help or version";
    } else {
        configuration.source = FullPath(options.source, base);
    }
    return configuration;
}

Configuration Workspace::FindConfiguration(const std::string& path) {
    const Strings above = FoldersUpFrom(path);
    for (const std::string& folder : words.empty() ? above : Strings()) {
        const platform::FoundPath file = directory.FullPath(folder + "/" + argumentFileName);
        if (file.isFile) {
            return ReadConfiguration(file.path, folder, {std::string("@") + argumentFileName});
        }
    }
    return ReadConfiguration("", above.back(), words);
}

const Configuration& Workspace::ConfigurationOf(const std::string& path) {
    const auto [at, isNew] = configurations.try_emplace(path);
    if (isNew) {
        at->second = FindConfiguration(path);
    }
    return at->second;
}

const Strings& Workspace::IncludesOf(const std::string& path) {
    const auto [at, isNew] = includes.try_emplace(path);
    if (isNew) {
        FileStore store;
        (void)store.Open(path, 0);  // reads it
        const FileStore::Text text = store.TextOf(path);
        for (const std::string& name : text == nullptr ? Strings() : IncludedNames(*text)) {
            at->second.push_back(FullPath(name, DirectoryOf(path)));
        }
    }
    return at->second;
}

std::optional<std::string> Workspace::FindIncluder(const std::string& path) {
    for (const std::string& folder : FoldersUpFrom(path)) {
        for (const fs::directory_entry& entry : EntriesOf(PathOf(folder))) {
            std::error_code unknown;
            if (!entry.is_regular_file(unknown) || entry.file_size(unknown) > longestSource) {
                continue;
            }
            const std::string file = FullPath(NameOf(entry.path()));
            if (file != path && std::ranges::count(IncludesOf(file), path) != 0) {
                return file;
            }
        }
    }
    return std::nullopt;
}

const std::string& Workspace::IncluderOf(const std::string& path) {
    const auto [at, isNew] = includers.try_emplace(path, path);
    if (isNew) {  // so that files that include each other are searched for only once
        if (const auto includer = FindIncluder(path)) {
            at->second = IncluderOf(*includer);
        }
    }
    return at->second;
}

Strings Workspace::FilesIn(const std::string& path, const std::string& name) {
    Strings names;
    for (const auto& entry : EntriesOf(PathOf(DirectoryOf(path)) / PathOf(name))) {
        std::error_code unknown;
        names.push_back(NameOf(entry.path().filename()) + (entry.is_directory(unknown) ? "/" : ""));
    }
    return names;
}

}  // namespace korv
