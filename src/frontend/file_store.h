/// The files of a run, each read once: from the disk, from standard input, or as an editor has it.
/// The core assembles the texts that are kept here, and messages and outputs show them, so all see
/// the same bytes, whatever happens to the files meanwhile.
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

    /// In bytes. A longer file is no source: its run would take more memory than it is worth.
    static constexpr std::size_t longestFile = 0x10000000;

    /// Relative names, also that of the main file, count from `directory`; empty: from the current
    /// directory.
    explicit FileStore(std::string_view directory = {});

    /// A directory to search for what an INCLUDE or BINCLUDE does not find beside its file.
    void AddSearchDirectory(std::string_view name);
    /// Gives the bytes of the file at the full path `path`, in place of what the disk holds.
    void SetText(const std::string& path, std::string_view bytes,
                 const platform::FileIdentity& identity = {});

    /// The same for a text that is kept already, under its path.
    void SetText(Text text) { Keep(std::move(text)); }

    /// The full path of `name` as the command line has it.
    [[nodiscard]] std::string FullPath(std::string_view name) { return Beside(base, name).path; }
    /// `path` relative to the directory of the run, if that is shorter.
    [[nodiscard]] std::string ShownName(const std::string& path) const;
    /// The text of the file at the full path `path`; null if it was not read.
    [[nodiscard]] Text TextOf(const std::string& path) const;
    /// Which files were read, so that no output overwrites them.
    [[nodiscard]] const platform::FileSet& Identities() const { return identities; }
    /// Why the file that was asked for last cannot be read, in the words of the system.
    [[nodiscard]] const std::string& Failure() const { return failure; }
    /// Whether an INCLUDE of `name` in the file at the full path `includer` would find a file.
    [[nodiscard]] bool Has(const std::string& includer, std::string_view name);
    /// The directories in which it looks, as a person would write them.
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
    std::vector<std::string> entered;      // directories of the sources being read
    std::map<std::string, Text> texts;     // by full path
    platform::FileSet identities;
    std::string failure;
};

}  // namespace korv
