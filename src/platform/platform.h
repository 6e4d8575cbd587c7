/// All that Korv needs of the operating system. No other folder includes a system header or tests
/// for a system; a port writes a second implementation of this header.
///
/// File names: both `/` and `\` separate components. Texts keep what was typed; the separator is
/// translated for the call to the system only. Names to be read are found without regard to ASCII
/// case, names to be written are taken exactly as spelled, so that a run never overwrites a file
/// whose name differs in case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace korv::platform {

// ----------------------------------------------------------------------------------------------------
// memory

/// Called with the size in bytes of every allocation that fails, those of `new` included. Its
/// result is not used: nothing is tried again.
using AllocationFailureHook = int (*)(std::size_t size);

/// Installs `hook` (null: none). Result: the previous one.
AllocationFailureHook SetAllocationFailureHook(AllocationFailureHook hook);

/// Memory from the general allocator; null after the hook has had its turn. A size of 0 is taken
/// as 1.
[[nodiscard]] void* Allocate(std::size_t size);
/// Like `Allocate`; all bytes are 0, and there is at least one.
[[nodiscard]] void* AllocateZeroed(std::size_t size);

/// Like `Allocate`, keeping the contents. On failure the result is null and `memory` stays valid.
[[nodiscard]] void* Reallocate(void* memory, std::size_t size);

/// Like `Reallocate`, but the hook does not hear of a failure: the caller has another way.
[[nodiscard]] void* TryReallocate(void* memory, std::size_t size);

void Free(void* memory);

/// For tests: lets the n-th allocation from here on fail, and every later one too if
/// `andAllAfter`. 0 ends it.
void FailAllocation(std::int64_t n, bool andAllAfter);

// ----------------------------------------------------------------------------------------------------
// paths

/// The pieces of a file name as views of the given text; joined they give it again. There are no
/// drives here.
struct PathParts {
    std::string_view directory;  ///< up to and with the last separator; empty for none
    std::string_view baseName;   ///< without the last "." and what follows
    std::string_view extension;  ///< with its "."; empty for none
};

[[nodiscard]] PathParts SplitPath(std::string_view path);

/// Whether `word` of the command line, which begins with "/", is an absolute file name and no
/// switch: something stands before its last "/", and that is an existing directory.
[[nodiscard]] bool IsAbsoluteFileName(const char* word);

/// Whether the file that is read under the name `source` is the one that `target` names to be
/// written, since `source` is found only when case is ignored.
[[nodiscard]] bool WouldOverwriteSource(std::string_view source, std::string_view target);

/// The current directory, which follows the file being read, and the way from a name to a file. One
/// a run, and nobody else changes the current directory meanwhile.
class CurrentDirectory {
  public:
    CurrentDirectory();
    ~CurrentDirectory();
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;

    /// Forms the full path of a file to be read: the current directory joined with `name`, "." and
    /// ".." removed as text; spelled as on disk where the file is found, else as written. False:
    /// the current directory cannot be had, or the path is longer than the system allows.
    [[nodiscard]] bool FullPath(std::string_view name, std::string* path);

    /// Makes the directory of `path`, which is what `FullPath` gave last, the current one, found
    /// without regard to case. False: there is none, or it cannot be entered; the current one
    /// stays. `Leave` belongs to each call, whatever its result.
    [[nodiscard]] bool EnterDirectoryOf(const std::string& path);
    /// Goes back to where the last `EnterDirectoryOf` came from, also to a directory that cannot
    /// be read or has no name.
    void Leave();

  private:
    struct State;
    std::unique_ptr<State> state;
};

// ----------------------------------------------------------------------------------------------------
// files

/// A file read as a stream of bytes. A directory does not open.
class InputFile {
  public:
    InputFile() = default;
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Opens `name`, taken exactly as spelled. Called once.
    bool Open(std::string_view name);
    [[nodiscard]] bool IsOpen() const { return handle >= 0; }
    /// Whether the file has a size; a pipe or a device has none.
    [[nodiscard]] bool HasSize() const { return hasSize; }
    /// Size in bytes when opened, 0 without one.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// Reads up to `count` bytes. Result: their number, 0 at the end of the file, which is where it
    /// was when the file was opened, on a read error, and when a console event comes while there
    /// is nothing to read.
    std::size_t Read(void* buffer, std::size_t count);
    /// Whether a read has failed; the end of the file is no failure.
    [[nodiscard]] bool Failed() const { return failed; }

  private:
    int handle = -1;
    bool hasSize = false;
    bool failed = false;
    std::uint64_t size = 0;
    std::uint64_t taken = 0;  // bytes read
};

enum class FileMode { text, binary };

/// Opens `name` for writing, empties it. Null: it cannot be opened. The caller closes it.
[[nodiscard]] std::FILE* OpenForWriting(std::string_view name, FileMode mode);

// ----------------------------------------------------------------------------------------------------
// console

/// Makes sure that the standard streams are there: a file opened in the place of a missing one
/// would get what is printed.
void OpenStandardStreams();

/// Sets the title of the console's window, if standard output is a console.
void SetConsoleTitle(const char* title);

/// Events of the console: break keys and requests to end.
inline constexpr int EVENT_CTRL_C = 0;
inline constexpr int EVENT_CTRL_BREAK = 1;
inline constexpr int EVENT_CLOSE = 2;
inline constexpr int EVENT_LOGOFF = 5;
inline constexpr int EVENT_SHUTDOWN = 6;

/// Called with an event at any moment, between any two instructions of the program: it may use
/// nothing but lock-free atomics and `WriteFromHandler`. Result: 1 when the event was handled.
using ConsoleHandler = int (*)(int event);

/// Installs `handler`; null puts back what there was before the first one. A close event that the
/// process was started to ignore stays ignored.
void SetConsoleHandler(ConsoleHandler handler);

/// Writes to standard output from within a `ConsoleHandler`, past all buffers.
void WriteFromHandler(std::string_view text);

/// Waits for one key and takes it: on a console without the return key, elsewhere one byte or the
/// end of the input. A console event counts as a key.
void WaitForKey();

}  // namespace korv::platform
