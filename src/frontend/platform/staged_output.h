/// The outputs of a run: either all of them are written, or none.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/shared.h"

namespace korv::platform {

/// Why the last request to the system failed, such as "No such file or directory".
[[nodiscard]] std::string ErrorText();

/// One of several outputs. A file is replaced with a new one of the same name; if that is
/// impossible, its bytes are overwritten. Standard output, a device or a pipe is a stream. Each
/// step is performed for all outputs before the next step: `Open`; `Stage` for files, `Send` for
/// streams, `Put` for files, `Keep`. Destroying an output before `Keep` restores what was there
/// before `Open`, except for what was sent to a stream. If a step fails, `ErrorText` returns the
/// reason. If memory runs out, the process may end in any step except `Put`, which needs none.
class StagedOutput {
  public:
    StagedOutput() = default;
    StagedOutput(StagedOutput&&) noexcept = default;
    ~StagedOutput() { static_cast<void>(TakeBack()); }

    /// Opens the file whose name is exactly `name`, if it exists. Waits for the reader of a named
    /// pipe. If standard output is redirected to the file, opens that stream instead.
    [[nodiscard]] bool Open(std::string_view name);
    [[nodiscard]] bool OpenStandardOutput();

    [[nodiscard]] bool IsStream() const;
    /// The identity of the file; none if it does not exist yet, or is not a regular file.
    [[nodiscard]] std::optional<FileIdentity> Identity() const;
    /// True if this output and `other` have the same path. Only for files that do not exist yet.
    [[nodiscard]] bool LeadsWhere(const StagedOutput& other) const;
    /// True if this output is a terminal, where control characters take effect.
    [[nodiscard]] bool IsTerminal() const;

    /// Writes `contents` to a new file, and prepares `TakeBack`. If no new file can be created,
    /// only reads the old one.
    [[nodiscard]] bool Stage(std::string_view contents);
    /// Writes `contents` to the stream. A signal that asks the process to end takes effect even
    /// while the stream blocks.
    [[nodiscard]] bool Send(std::string_view contents);
    /// Puts the new file in place, or replaces the bytes of the old one with `contents`.
    [[nodiscard]] bool Put(std::string_view contents);
    /// Undoes what was done since `Open`. Result: false if `Put` cannot be undone.
    bool TakeBack();
    /// Makes `Put` final.
    void Keep();

  private:
    [[nodiscard]] bool Overwrite(std::string_view contents);

    OutputPlace place;
    bool isStandardOutput = false;        // `place` has no path and no handle
    bool isThere = false;                 // the file existed before
    FileHandle handle;                    // of the new file
    std::string temporary;                // its name; empty: overwriting, or after `Put`
    std::string backup;                   // a second name of the old file
    std::optional<std::string> oldBytes;  // of a file that will be overwritten
    bool isPut = false;                   // the old contents have been replaced, or may have been
};

/// While a guard exists, POSIX signals that would end the process are held back, so that none ends
/// it between two outputs. The constructor first lets signals that are already pending end the
/// process.
class OutputGuard {
  public:
    OutputGuard();
    ~OutputGuard();
    OutputGuard(const OutputGuard&) = delete;
    OutputGuard& operator=(const OutputGuard&) = delete;
};

}  // namespace korv::platform
