/// Everything that the core needs from the operating system. Each system has its own
/// implementation, in posix*.cpp and win32*.cpp. No other code of the core includes a system header
/// or tests for a system.
///
/// File names: both `/` and `\` separate components. Texts stay as typed; the separator is
/// translated for calls to the system only. Files to be read are found without regard to ASCII
/// case; files to be written get exactly the name that was typed. A file that a run has read is
/// never overwritten because two names differ in case only. If the system requires an encoding,
/// texts and names are UTF-8.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace korv::platform {

// ----------------------------------------------------------------------------------------------------
// memory

/// Called with the size in bytes of every allocation that fails, including `new`. Its result is not
/// used: the allocation is not repeated.
using AllocationFailureHook = int (*)(std::size_t size);

/// Installs `hook` (null: none). Result: the previous one.
AllocationFailureHook SetAllocationFailureHook(AllocationFailureHook hook);

/// Memory from the general allocator; null, after a call to the hook, if there is none. A size of 0
/// means 1.
[[nodiscard]] void* Allocate(std::size_t size);
/// Like `Allocate`; all bytes are 0, and there is at least one.
[[nodiscard]] void* AllocateZeroed(std::size_t size);

/// Like `Allocate`, keeping the contents. On failure the result is null and `memory` stays valid.
[[nodiscard]] void* Reallocate(void* memory, std::size_t size);

/// Like `Reallocate`, but without the hook, for a caller that can do without the memory. Tests
/// cannot make it fail.
[[nodiscard]] void* TryReallocate(void* memory, std::size_t size);

void Free(void* memory);

/// Bytes in one piece of memory, which grows as they are appended. A failure to grow is a result
/// and does not end the process.
class Buffer {
  public:
    Buffer() = default;
    ~Buffer() { Free(data); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// The address at which `count` further bytes can be written; null, with the buffer unchanged,
    /// if there is no memory for them. `Advance` then appends the bytes that have been written.
    [[nodiscard]] char* Room(std::size_t count) {
        return count <= capacity - used || Grow(count) ? data + used : nullptr;
    }
    void Advance(std::size_t count) { used += count; }

    /// Valid until the next `Room`.
    [[nodiscard]] std::string_view Bytes() const { return {data, used}; }

  private:
    bool Grow(std::size_t count);

    char* data = nullptr;  // owned
    std::size_t used = 0;
    std::size_t capacity = 0;
};

/// Sets the stream of `PrintMemoryFailure`, which is not owned; standard error by default. Result:
/// the previous one.
std::FILE* SetMemoryFailureStream(std::FILE* stream);

/// Prints `line`, which names the object for which there was no memory.
void PrintMemoryFailure(const char* line);

/// For tests. Called before each allocation, or before each request that looks for, opens, reads,
/// writes, closes or renames a file, or changes the directory. If the result is true, that
/// allocation or request fails. Null: none fails on purpose.
using Fault = bool (*)();
extern Fault allocationFault;
extern Fault requestFault;

// ----------------------------------------------------------------------------------------------------
// paths

/// The pieces of a file name, as views of the given text. Joined, they are that text.
struct PathParts {
    std::string_view directory;  ///< up to and including the last separator, or the colon of
                                 ///< a drive on systems with drives; empty for none
    std::string_view baseName;   ///< without the last "." and the text after it
    std::string_view extension;  ///< with its "."; empty for none
};

[[nodiscard]] PathParts SplitPath(std::string_view path);

/// The length of the drive at the start of a name, with its colon; 0 if there is none.
[[nodiscard]] std::size_t DriveLength(std::string_view name);

/// Whether `word` of the command line, which begins with "/", is an absolute file name and not a
/// switch: the part before its last "/" is an existing directory. Always false on systems with
/// drives.
[[nodiscard]] bool IsFileNotSwitch(const char* word);

/// Whether `name` is independent of the current directory. A name with a drive, or one that begins
/// with a separator, counts as independent.
[[nodiscard]] bool IsAbsolutePath(std::string_view name);

/// Whether the file that was read as `source` must not be overwritten under the name `target`,
/// which refers to the same file. Always true on systems that ignore case; otherwise true if the
/// names differ at most in case and separators.
[[nodiscard]] bool IsProtectedFrom(std::string_view source, std::string_view target);

/// Whether `name` refers to a regular file. Does not open it.
[[nodiscard]] bool IsRegularFile(std::string_view name);

/// The result of looking for a file to be read.
struct FoundPath {
    std::string path;     ///< full; empty: the current directory has no path, or the path is
                          ///< longer than the system allows
    bool isFile = false;  ///< whether it exists; the path is then spelled as on disk
};

/// The current directory, which follows the file being read, and the search for files. No other
/// code changes the current directory during a run.
class CurrentDirectory {
  public:
    CurrentDirectory();
    ~CurrentDirectory();

    /// The full path of a file to be read: the current directory joined with `name`, with "." and
    /// ".." resolved in the text alone. It is spelled as on disk if the file is found, else as
    /// typed.
    [[nodiscard]] FoundPath FullPath(std::string_view name);

    /// Changes to the directory of `file`, which is a result of `FullPath`. That directory is found
    /// without regard to case. False: it does not exist or cannot be entered, and the current
    /// directory is unchanged. Each call needs a `Leave`, whatever its result.
    [[nodiscard]] bool EnterDirectoryOf(const FoundPath& file);
    /// Goes back to the directory before the last `EnterDirectoryOf`, even if that cannot be read
    /// or has no name any more. If that fails, the result is the path of that directory, empty if
    /// it has none.
    [[nodiscard]] std::optional<std::string> Leave();
    /// Whether `name` refers to the right file. A relative name does not once a `Leave` has failed.
    [[nodiscard]] bool Reaches(std::string_view name) const {
        return !isLost || IsAbsolutePath(name);
    }

  private:
    struct State;
    std::unique_ptr<State> state;
    bool isLost = false;  // a `Leave` has failed
};

// ----------------------------------------------------------------------------------------------------
// files

/// The system's numbers for a file, which are the same under all its names.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    auto operator<=>(const FileIdentity&) const = default;
};
using FileSet = std::set<FileIdentity>;

/// The number of an open file, -1 for none. Closes the file when it is destroyed.
class FileHandle {
  public:
    explicit FileHandle(int number = -1) : number(number) {}
    FileHandle(FileHandle&& other) noexcept : number(other.Release()) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~FileHandle();
    operator int() const { return number; }
    /// The number, for a caller that closes the file.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }

  private:
    int number;
};

/// A file read as a stream of bytes. A directory cannot be opened.
class InputFile {
  public:
    /// Opens `name`, exactly as spelled. Called once.
    bool Open(std::string_view name);
    [[nodiscard]] bool IsOpen() const { return handle >= 0; }
    /// Whether the file has a size, unlike a pipe or a device.
    [[nodiscard]] bool HasSize() const { return hasSize; }
    /// The size in bytes when the file was opened; 0 if it has none.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// The identity of the open file.
    [[nodiscard]] const FileIdentity& Identity() const { return identity; }
    /// Reads up to `count` bytes. Result: the number read. It is 0 at the end of the file, after a
    /// read error, and if a console event occurs while there is nothing to read. Bytes that are
    /// appended to a file after it was opened are not read.
    std::size_t Read(void* buffer, std::size_t count);
    /// Whether `Open` or a read has failed. The end of the file and a console event are not
    /// failures.
    [[nodiscard]] bool Failed() const { return error != 0; }
    /// The system's number for that failure; 0 for none.
    [[nodiscard]] int Error() const { return error; }

  private:
    FileHandle handle;
    bool hasSize = false;
    int error = 0;
    std::uint64_t size = 0;
    std::uint64_t taken = 0;  // bytes read
    FileIdentity identity;
};

/// A file that is written. The bytes are written to a new file in the same directory, and `Commit`
/// gives it the final name in one step. Until then, and if anything fails, no file appears under
/// that name, and an old one stays unchanged. The new file gets the permissions of the old one.
/// Some files are written in place, from the first `Write` on: devices, pipes, and files that
/// cannot be replaced because the directory does not allow it or the owner would change. No
/// unfinished file is left when the process ends, unless it is killed outright.
class OutputFile {
  public:
    enum class Kind {
        target,  ///< the bytes as they are; a symbolic link of that name is followed
        report,  ///< text, with the line ends of the system; such a link is replaced
    };

    ~OutputFile() { GiveUp(); }  ///< Gives up the file if it has not been committed.

    /// Opens `name`, exactly as spelled, unless it refers to one of the files of `kept`. Called
    /// once. False: the file cannot be opened, or it may not be written, even if it could be
    /// replaced. No other member may be called then.
    [[nodiscard]] bool Open(std::string_view name, Kind kind, const FileSet& kept);
    /// Appends bytes. A failure is remembered for `Commit`, and later calls do nothing.
    void Write(const void* bytes, std::size_t count);
    /// Completes the file. True: it has its name and all its bytes.
    [[nodiscard]] bool Commit();

  private:
    void GiveUp();

    FileHandle handle;
    bool isEmptied = true;   // false: it is written in place, and still has its old bytes
    bool hasFailed = false;  // some byte has not been written
    std::string path;        // the final path
    std::string temporary;   // the path before `Commit`; empty: it is written in place
};

// ----------------------------------------------------------------------------------------------------
// console

/// Opens any standard stream that is closed; otherwise the next file to be opened would get its
/// number, and receive its output. Also makes sure that a failed write does not end the process.
void OpenStandardStreams();

/// Whether `stream` goes to a terminal, which would obey control characters.
[[nodiscard]] bool IsTerminal(std::FILE* stream);

/// Sets the title of the console's window, if there is one.
void SetConsoleTitle(const char* title);

/// Events of the console: break keys and requests to end.
inline constexpr int EVENT_CTRL_C = 0;
inline constexpr int EVENT_CTRL_BREAK = 1;
inline constexpr int EVENT_CLOSE = 2;
inline constexpr int EVENT_LOGOFF = 5;
inline constexpr int EVENT_SHUTDOWN = 6;

/// Called with an event at any moment, either between any two instructions of the program or on a
/// separate thread. It may use only lock-free atomics and `WriteFromHandler`. Result: 1 if the
/// event was handled. If the system ends the process after such an event, it waits until the
/// program has ended.
using ConsoleHandler = int (*)(int event);

/// Installs `handler`; null removes it and restores the previous state. If the process was started
/// with the close event ignored, that event stays ignored.
void SetConsoleHandler(ConsoleHandler handler);

/// Waits until all handler calls that have begun have returned, so that the objects that they use
/// can be destroyed.
void AwaitConsoleHandler();

/// Writes to standard output from a `ConsoleHandler`, unbuffered.
void WriteFromHandler(std::string_view text);

/// Waits for one key and reads it. On a console, no Return key is needed. From other input, one
/// byte or the end is read. A console event counts as a key.
void WaitForKey();

}  // namespace korv::platform
