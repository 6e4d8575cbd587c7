/// Where the files of a run come from: `driver/disk_store.h`, or texts that a front end holds.
#pragma once

#include <string>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "platform/platform.h"
#include "source/source_file.h"

namespace korv {

/// All bytes of a file that is no source.
struct FileBytes {
    std::string path;        ///< full
    std::string_view bytes;  ///< in `buffer`, or in the store until its next call
    platform::Buffer buffer;
};

/// Resolves the names of files as they are written in a source, and opens the files. `Enter` and
/// `Leave` nest: a relative name counts from the file that has been entered last, the name of the
/// main file from where the run began.
class SourceStore {
  public:
    virtual ~SourceStore() = default;

    /// Forms the full path of `name`, whether there is such a file or not. Result: 0,
    /// MSG_CANNOT_GET_DIRECTORY, or MSG_CANNOT_OPEN where relative names have lost their meaning.
    [[nodiscard]] virtual Status Find(std::string_view name, std::string* path) = 0;

    /// Enters the source `name`; `path` receives its full path. Result: as `Find`, and also
    /// MSG_CANNOT_CHANGE_DIRECTORY; with that and with 0 it has been entered, and `Leave` belongs
    /// to the call.
    [[nodiscard]] virtual Status Enter(std::string_view name, std::string* path) = 0;
    /// Opens the source entered last, with its `path` and a read buffer of at most `bufferSize`
    /// bytes, if it takes one.
    [[nodiscard]] virtual CSourceFile Open(const std::string& path, std::uint32_t bufferSize) = 0;
    /// Leaves the source entered last. Result: 0, or MSG_CANNOT_CHANGE_DIRECTORY with the
    /// `directory` that cannot be gone back to.
    [[nodiscard]] virtual Status Leave(std::string* directory) = 0;

    /// Reads the file `name` whole, but for a run that is aborted meanwhile. Result: 0 or
    /// MSG_CANNOT_OPEN.
    [[nodiscard]] virtual Status Read(std::string_view name, FileBytes* file) = 0;
};

}  // namespace korv
