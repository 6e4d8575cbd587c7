/// The files of a run on the disk. The current directory follows the source being read.
#pragma once

#include "platform/platform.h"
#include "source/source_store.h"

namespace korv {

class FlagsWord;

class DiskStore : public SourceStore {
  public:
    /// `flags`, not owned, are those of the run: RF_ABORT ends the reading of a file.
    explicit DiskStore(const FlagsWord* flags) : flags(flags) {}

    [[nodiscard]] Status Find(std::string_view name, std::string* path) override;
    [[nodiscard]] Status Enter(std::string_view name, std::string* path) override;
    [[nodiscard]] CSourceFile Open(const std::string& path, std::uint32_t bufferSize) override;
    [[nodiscard]] Status Leave(std::string* directory) override;
    [[nodiscard]] Status Read(std::string_view name, FileBytes* file) override;

    /// Whether `name` means what it should; see `platform::CurrentDirectory`.
    [[nodiscard]] bool Reaches(std::string_view name) const { return directory.Reaches(name); }
    /// The files that have been read.
    [[nodiscard]] const platform::FileSet& FilesRead() const { return filesRead; }
    /// Counts the file `name` among them, if it is there.
    void Keep(std::string_view name);

  protected:
    /// What `name`, of a source or of other bytes, leads to.
    [[nodiscard]] virtual platform::FoundPath Locate(std::string_view name) {
        return directory.FullPath(name);
    }

    platform::CurrentDirectory directory;

  private:
    Status Find(std::string_view name, platform::FoundPath* found);

    const FlagsWord* flags;
    platform::FileSet filesRead;
};

}  // namespace korv
