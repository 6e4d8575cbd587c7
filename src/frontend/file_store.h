/// The files of a run, each read once: from the disk, from standard input, or from an editor. The
/// core assembles the stored bytes, and messages and outputs quote the same bytes, even if a file
/// is changed during the run.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/stored_text.h"
#include "platform/platform.h"
#include "source/source_store.h"

namespace korv {

class FileStore : public SourceStore {
  public:
    using Text = std::shared_ptr<const StoredText>;

    /// In bytes. A longer file is refused, since assembling it would take too much memory.
    static constexpr std::size_t longestFile = 0x10000000;

    /// Relative names, including the name of the main file, are relative to `directory`, or to the
    /// current directory if that is empty.
    explicit FileStore(std::string_view directory = {});

    /// Adds a directory to search for files that are not beside the file that includes them.
    void AddSearchDirectory(std::string_view name);
    /// Sets the contents of the file at the full path `path`, in place of those on the disk.
    void SetText(const std::string& path, std::string_view bytes,
                 const platform::FileIdentity& identity = {});

    /// Sets the contents of the file at the path that `text` stores.
    void SetText(Text text) { Keep(std::move(text)); }

    /// The full path of `name`, which is relative to the directory of the run.
    [[nodiscard]] std::string FullPath(std::string_view name) { return Beside(base, name).path; }
    /// `path` relative to the directory of the run, if that is shorter.
    [[nodiscard]] std::string ShownName(const std::string& path) const;
    /// The text of the file at the full path `path`; null if it was not read.
    [[nodiscard]] Text TextOf(const std::string& path) const;
    /// The files that were read; no output may overwrite them.
    [[nodiscard]] const platform::FileSet& Identities() const { return identities; }
    /// Why the last file could not be read, usually in the system's words.
    [[nodiscard]] const std::string& Failure() const { return failure; }
    /// True if an INCLUDE of `name` in the file at the full path `includer` would find a file.
    [[nodiscard]] bool Has(const std::string& includer, std::string_view name);
    /// The directories that an INCLUDE in `includer` would search, as a user would write them.
    [[nodiscard]] std::vector<std::string> SearchedDirectories(const std::string& includer) const;

    [[nodiscard]] Status Find(std::string_view name, platform::FoundPath* file) override;
    [[nodiscard]] bool Enter(const platform::FoundPath& file) override;
    [[nodiscard]] CSourceFile Open(const std::string& path, std::uint32_t bufferSize) override;
    [[nodiscard]] std::optional<std::string> Leave() override;
    [[nodiscard]] Status Read(std::string_view name, FileBytes* file) override;

  private:
    platform::FoundPath Beside(const std::string& directory, std::string_view name);
    platform::FoundPath LocateFrom(const std::string& from, std::string_view name);
    platform::FoundPath Locate(std::string_view name);
    const Text& Keep(Text text);
    Text Load(const std::string& path);

    platform::CurrentDirectory directory;  // never changed
    std::string base;                      // full path of the directory of the run
    std::vector<std::string> searched;     // full paths
    std::vector<std::string> entered;      // directories of the source files being read
    std::map<std::string, Text> texts;     // by full path
    platform::FileSet identities;
    std::string failure;
};

}  // namespace korv
