#include "frontend/file_store.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "frontend/platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

namespace fs = std::filesystem;

// On systems with wide file names, a path made from `char` would not be read as UTF-8.
fs::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

// The directory of the file at the full path `path`.
std::string DirectoryOf(const std::string& path) {
    std::string directory(platform::SplitPath(path).directory);
    if (directory.size() > 1) {
        directory.pop_back();  // the separator
    }
    return directory;
}

// Reads all bytes of `file`, but stops once there are more than `longestFile`.
StoredText::Block ReadWhole(platform::InputFile* file) {
    constexpr std::size_t leastRoom = 4096;  // for a file of unknown size
    StoredText::Block bytes;
    std::size_t room = 0;
    for (std::size_t count = 1; count != 0 && bytes.size <= FileStore::longestFile;) {
        if (bytes.size == room) {
            // One byte more than the file size, so that the read that finds the end needs no larger
            // buffer.
            const std::uint64_t wanted = std::max<std::uint64_t>(2 * room, file->Size() + 1);
            room = static_cast<std::size_t>(
                std::clamp<std::uint64_t>(wanted, leastRoom, FileStore::longestFile + 1));
            auto larger = std::make_unique_for_overwrite<char[]>(room);
            std::copy_n(bytes.data.get(), bytes.size, larger.get());
            bytes.data = std::move(larger);
        }
        count = file->Read(bytes.data.get() + bytes.size, room - bytes.size);
        bytes.size += count;
    }
    return bytes;
}

}  // namespace

FileStore::FileStore(std::string_view newDirectory)
    : base(directory.FullPath(newDirectory.empty() ? "." : newDirectory).path) {}

void FileStore::AddSearchDirectory(std::string_view name) {
    if (std::string path = FullPath(name); !path.empty()) {
        searched.push_back(std::move(path));
    }
}

void FileStore::SetText(const std::string& path, std::string_view bytes,
                        const platform::FileIdentity& identity) {
    Keep(std::make_shared<const StoredText>(path, bytes, identity));
}

const FileStore::Text& FileStore::Keep(Text text) {
    identities.insert(text->Identity());
    const std::string& path = text->Path();
    return texts[path] = std::move(text);
}

std::string FileStore::ShownName(const std::string& path) const {
    const std::u8string shown = PathOf(path).lexically_relative(PathOf(base)).u8string();
    const std::string relative(shown.begin(), shown.end());
    return relative.empty() || relative.size() > path.size() ? path : relative;
}

FileStore::Text FileStore::TextOf(const std::string& path) const {
    const auto found = texts.find(path);
    return found == texts.end() ? nullptr : found->second;
}

bool FileStore::Has(const std::string& includer, std::string_view name) {
    return LocateFrom(DirectoryOf(includer), name).isFile;
}

std::vector<std::string> FileStore::SearchedDirectories(const std::string& includer) const {
    std::vector<std::string> names;
    const auto add = [&](const std::string& path) {
        std::string name = ShownName(path);
        if (std::ranges::find(names, name) == names.end()) {
            names.push_back(std::move(name));
        }
    };
    add(DirectoryOf(includer));
    std::ranges::for_each(searched, add);
    return names;
}

// The file that `name` refers to, relative to the directory with the full path `from`. A text that
// exists only in the editor counts as a file.
platform::FoundPath FileStore::Beside(const std::string& from, std::string_view name) {
    const bool isAbsolute = platform::IsAbsolutePath(name) || from.empty();
    platform::FoundPath found =
        directory.FullPath(isAbsolute ? std::string(name) : from + '/' + std::string(name));
    if (!found.isFile) {  // files are found regardless of case, so texts are too
        const auto text = std::ranges::find_if(texts, [&found](const auto& each) {
            return std::ranges::equal(each.first, found.path, {}, Raised, Raised);
        });
        if (text != texts.end()) {
            found = {text->first, /*isFile=*/true};
        }
    }
    return found;
}

platform::FoundPath FileStore::LocateFrom(const std::string& from, std::string_view name) {
    platform::FoundPath found = Beside(from, name);
    if (found.isFile) {
        return found;
    }
    for (const std::string& elsewhere : searched) {
        if (platform::FoundPath other = Beside(elsewhere, name); other.isFile) {
            return other;
        }
    }
    return found;
}

platform::FoundPath FileStore::Locate(std::string_view name) {
    return entered.empty() ? Beside(base, name) : LocateFrom(entered.back(), name);
}

// The text of the file at the full path `path`. Returns null and sets `failure` if it cannot be
// read.
FileStore::Text FileStore::Load(const std::string& path) {
    if (const Text text = TextOf(path)) {
        return text;
    }
    platform::InputFile file;
    if (!file.Open(path)) {
        failure = platform::ReasonOf(file.Error());
        return nullptr;
    }
    StoredText::Block bytes = ReadWhole(&file);
    if (file.Failed() || bytes.size > longestFile) {
        failure = file.Failed() ? platform::ReasonOf(file.Error()) : "File too large";
        return nullptr;
    }
    return Keep(std::make_shared<const StoredText>(path, std::move(bytes), file.Identity()));
}

Status FileStore::Find(std::string_view name, platform::FoundPath* file) {
    *file = Locate(name);
    if (file->path.empty()) {
        failure = "its full path cannot be determined";
        return MSG_CANNOT_OPEN;
    }
    return 0;
}

bool FileStore::Enter(const platform::FoundPath& file) {
    entered.push_back(DirectoryOf(file.path));
    return true;
}

CSourceFile FileStore::Open(const std::string& path, std::uint32_t) {
    const Text text = Load(path);
    return text == nullptr ? CSourceFile("", 0) : CSourceFile::OfText(text->Bytes());
}

std::optional<std::string> FileStore::Leave() {
    entered.pop_back();
    return std::nullopt;
}

Status FileStore::Read(std::string_view name, FileBytes* file) {
    const Text text = Find(name, &file->found) == 0 ? Load(file->found.path) : nullptr;
    if (text == nullptr) {
        return MSG_CANNOT_OPEN;
    }
    file->bytes = text->Bytes();
    return 0;
}

}  // namespace korv
