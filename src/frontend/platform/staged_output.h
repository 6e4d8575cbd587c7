/// Outputs of a run that are written all or not at all.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/shared.h"

namespace korv::platform {

/// Why the system refused what it was asked for last, as "No such file or directory".
[[nodiscard]] std::string ErrorText();

/// One of several outputs. A file gets a new one of its name; where that cannot be, its own bytes
/// are replaced. Standard output, a device or a pipe is a stream. Each step is taken for all
/// outputs before the next step: `Open`; `Stage` for files, `Send` for streams, `Put` for files,
/// `Keep`. What is destroyed before `Keep` is as it was before `Open`, but for what a stream has
/// taken. If a step fails, `ErrorText` gives the reason. Without memory the process may end in each
/// step but `Put`, which needs none.
class StagedOutput {
  public:
    StagedOutput() = default;
    StagedOutput(StagedOutput&&) noexcept = default;
    ~StagedOutput() { static_cast<void>(TakeBack()); }

    /// Opens what is at `name`, taken exactly as spelled, if anything is. Waits for the reader of a
    /// named pipe. A file that standard output goes to is opened as that stream.
    [[nodiscard]] bool Open(std::string_view name);
    [[nodiscard]] bool OpenStandardOutput();

    [[nodiscard]] bool IsStream() const;
    /// Which file it is; none: there is no file yet, or it is no regular one.
    [[nodiscard]] std::optional<FileIdentity> Identity() const;
    /// Of two files that are not there yet: whether they have one path.
    [[nodiscard]] bool LeadsWhere(const StagedOutput& other) const;
    /// Whether it goes to a terminal, which would obey control characters.
    [[nodiscard]] bool IsTerminal() const;

    /// Writes `contents` to a new file, and prepares the way back. Where there can be no new file
    /// the old one is only read.
    [[nodiscard]] bool Stage(std::string_view contents);
    /// Writes `contents` to the stream. A signal that asks the process to end does so while the
    /// stream does not take them.
    [[nodiscard]] bool Send(std::string_view contents);
    /// Puts the new file in place, or replaces the bytes of the old one by `contents`.
    [[nodiscard]] bool Put(std::string_view contents);
    /// Undoes what was done since `Open`. False: `Put` cannot be undone.
    bool TakeBack();
    /// Gives up the way back from `Put`.
    void Keep();

  private:
    [[nodiscard]] bool Overwrite(std::string_view contents);

    OutputPlace place;
    bool isStandardOutput = false;        // `place` has no path and no handle
    bool isThere = false;                 // there was something before
    FileHandle handle;                    // of the new file
    std::string temporary;                // its name; empty: the old file is written, or it is put
    std::string backup;                   // a second name of the file that was there
    std::optional<std::string> oldBytes;  // of a file that is to be overwritten
    bool isPut = false;                   // what was there before is replaced, or may be
};

/// Keeps signals that end the process waiting while it lives, so that it ends between the outputs
/// of a run at no moment. Before, those that wait end it.
class OutputGuard {
  public:
    OutputGuard();
    ~OutputGuard();
    OutputGuard(const OutputGuard&) = delete;
    OutputGuard& operator=(const OutputGuard&) = delete;
};

}  // namespace korv::platform
