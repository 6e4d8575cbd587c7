/// Reads the files of a run from the disk. While a source is being read, its directory is the
/// current directory.
#pragma once

#include "platform/platform.h"
#include "source/source_store.h"

namespace korv {

class FlagsWord;

class DiskStore : public SourceStore {
  public:
    /// `flags` are the flags of the run and are not owned. RF_ABORT makes `Read` stop early.
    explicit DiskStore(const FlagsWord* flags) : flags(flags) {}

    [[nodiscard]] Status Find(std::string_view name, platform::FoundPath* file) override;
    [[nodiscard]] bool Enter(const platform::FoundPath& file) override {
        return directory.EnterDirectoryOf(file);
    }
    [[nodiscard]] CSourceFile Open(const std::string& path, std::uint32_t bufferSize) override;
    [[nodiscard]] std::optional<std::string> Leave() override { return directory.Leave(); }
    [[nodiscard]] Status Read(std::string_view name, FileBytes* file) override;

    /// See `platform::CurrentDirectory`.
    [[nodiscard]] bool Reaches(std::string_view name) const { return directory.Reaches(name); }
    /// The files that have been read.
    [[nodiscard]] const platform::FileSet& FilesRead() const { return filesRead; }
    /// Adds the file `name` to `FilesRead` if it is a regular file.
    void Keep(std::string_view name);

  private:
    platform::CurrentDirectory directory;
    const FlagsWord* flags;
    platform::FileSet filesRead;
};

}  // namespace korv
