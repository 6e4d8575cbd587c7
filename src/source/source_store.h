/// The interface through which a run gets its files: from the disk (`driver/disk_store.h`) or from
/// texts in memory.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "platform/platform.h"
#include "source/source_file.h"

namespace korv {

/// All bytes of a file that is not a source.
struct FileBytes {
    platform::FoundPath found;
    std::string_view bytes;  ///< in `buffer`, or in the store until the next call to it
    platform::Buffer buffer;
};

/// Resolves the file names in a source, and opens the files. `Enter` and `Leave` nest: a name is
/// relative to the directory of the file entered last, and the name of the main file is relative to
/// the directory in which the run began.
class SourceStore {
  public:
    virtual ~SourceStore() = default;

    /// Resolves `name`, whether the file exists or not. Result: 0, MSG_CANNOT_GET_DIRECTORY, or
    /// MSG_CANNOT_OPEN if relative names can no longer be resolved.
    [[nodiscard]] virtual Status Find(std::string_view name, platform::FoundPath* file) = 0;

    /// Enters the source `file`, a result of `Find`. False: its directory cannot be entered. Each
    /// call needs a `Leave`, whatever its result.
    [[nodiscard]] virtual bool Enter(const platform::FoundPath& file) = 0;
    /// Opens the source entered last; `path` is its path. Its read buffer, if it needs one, has at
    /// most `bufferSize` bytes.
    [[nodiscard]] virtual CSourceFile Open(const std::string& path, std::uint32_t bufferSize) = 0;
    /// Leaves the source entered last. If that fails, the result is the directory that cannot be
    /// entered again.
    [[nodiscard]] virtual std::optional<std::string> Leave() = 0;

    /// Reads the whole file `name`, unless the run is aborted meanwhile. Result: 0 or
    /// MSG_CANNOT_OPEN.
    [[nodiscard]] virtual Status Read(std::string_view name, FileBytes* file) = 0;
};

}  // namespace korv
