/// Everything that the core needs from the operating system. Each system has its own
/// implementation, in posix*.cpp and win32*.cpp. No other core code includes a system header or
/// distinguishes systems.
///
/// File names: both `/` and `\` separate components. Names are kept as typed; separators are
/// translated only for calls to the system. Files to be read are found without regard to ASCII
/// case; files to be written get exactly the name that was typed. A file that a run has read is
/// never overwritten through a name that differs only in case. If the system requires an encoding,
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

/// Called with the size in bytes of an allocation that fails, even one made by `new`. Its result is
/// ignored: the allocation is not retried.
using AllocationFailureHook = int (*)(std::size_t size);

/// Installs `hook`; null means none. Result: the previous hook.
AllocationFailureHook SetAllocationFailureHook(AllocationFailureHook hook);

/// Allocates memory from the general allocator. On failure, calls the hook and returns null. A size
/// of 0 counts as 1.
[[nodiscard]] void* Allocate(std::size_t size);
/// Like `Allocate`, but all bytes are 0. `size` must not be 0.
[[nodiscard]] void* AllocateZeroed(std::size_t size);

/// Like `Allocate`, but keeps the contents of `memory`. On failure, the result is null and `memory`
/// stays valid.
[[nodiscard]] void* Reallocate(void* memory, std::size_t size);

/// Like `Reallocate`, but without the hook, for a caller that can do without the memory. `size` is
/// not 0.
[[nodiscard]] void* TryReallocate(void* memory, std::size_t size);

void Free(void* memory);

/// A contiguous buffer that grows as bytes are appended. A failure to grow is reported to the
/// caller and does not end the process.
class Buffer {
  public:
    Buffer() = default;
    ~Buffer() { Free(data); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Returns the address at which another `count` bytes can be written. If there is no memory for
    /// them, the result is null and the buffer is unchanged. `Advance` then appends the bytes that
    /// have been written.
    [[nodiscard]] char* Room(std::size_t count) {
        return count <= capacity - used || Grow(count) ? data + used : nullptr;
    }
    void Advance(std::size_t count) { used += count; }

    /// Valid until the next call to `Room`.
    [[nodiscard]] std::string_view Bytes() const { return {data, used}; }

  private:
    bool Grow(std::size_t count);

    char* data = nullptr;  // owned
    std::size_t used = 0;
    std::size_t capacity = 0;
};

/// Sets the stream for `PrintMemoryFailure`; null means standard error. The stream is not owned.
/// Result: the previous stream.
std::FILE* SetMemoryFailureStream(std::FILE* stream);

/// Prints `line`, which names the object that could not be allocated.
void PrintMemoryFailure(const char* line);

/// For tests. `allocationFault` is called before each allocation; `requestFault` is called before
/// each request that looks for, opens, reads, writes, closes or renames a file, or changes the
/// directory. If the result is true, that allocation or request fails. Null: nothing fails on
/// purpose.
using Fault = bool (*)();
extern Fault allocationFault;
extern Fault requestFault;

// ----------------------------------------------------------------------------------------------------
// paths

/// The parts of a file name, as views of the given text. Concatenated, they are the whole text.
struct PathParts {
    std::string_view directory;  ///< up to and including the last separator, or the colon of
                                 ///< a drive on systems with drives; empty for none
    std::string_view baseName;   ///< without the last "." and the text after it
    std::string_view extension;  ///< with its "."; empty for none
};

[[nodiscard]] PathParts SplitPath(std::string_view path);

/// The length of the drive at the start of `name`, including the colon; 0 if there is none.
[[nodiscard]] std::size_t DriveLength(std::string_view name);

/// Whether the command-line word `word`, which begins with "/", is an absolute file name rather
/// than a switch. It is a file name if the part before its last "/" is an existing directory.
/// Always false on systems with drives.
[[nodiscard]] bool IsFileNotSwitch(const char* word);

/// Whether `name` is independent of the current directory. A name with a drive, or one that begins
/// with a separator, counts as independent.
[[nodiscard]] bool IsAbsolutePath(std::string_view name);

/// Whether a file read as `source` must not be overwritten through its other name `target`. Always
/// true on Win32; otherwise true if the names differ at most in case and separators.
[[nodiscard]] bool IsProtectedFrom(std::string_view source, std::string_view target);

/// Whether `name` refers to a regular file. Does not open it.
[[nodiscard]] bool IsRegularFile(std::string_view name);

/// The result of looking for a file to be read.
struct FoundPath {
    std::string path;     ///< full; empty if the current directory has no path, or if the path is
                          ///< too long for the system or, on Win32, not on a drive
    bool isFile = false;  ///< whether the file exists; if it does, the path is spelled as on disk
};

/// Searches for files, and keeps the directory of the file being read as the current directory. No
/// other code changes the current directory during a run.
class CurrentDirectory {
  public:
    CurrentDirectory();
    ~CurrentDirectory();

    /// The full path of a file to be read: the current directory joined with `name`, with "." and
    /// ".." resolved lexically. It is spelled as on disk if the file is found, else as typed.
    [[nodiscard]] FoundPath FullPath(std::string_view name);

    /// Changes to the directory of `file`, a result of `FullPath`. The directory is found without
    /// regard to case. False: it does not exist or cannot be entered, and the current directory is
    /// unchanged. Each call needs a `Leave`, whatever its result.
    [[nodiscard]] bool EnterDirectoryOf(const FoundPath& file);
    /// Returns to the directory that was current before the last `EnterDirectoryOf`, even if that
    /// directory can no longer be read or no longer has a name. On failure, the result is the path
    /// of that directory, empty if it has no path.
    [[nodiscard]] std::optional<std::string> Leave();
    /// Whether `name` still refers to the right file. Once a `Leave` has failed, a relative name
    /// does not.
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

/// The numbers by which the system identifies a file. They are the same for all names of the file.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    auto operator<=>(const FileIdentity&) const = default;
};
using FileSet = std::set<FileIdentity>;

/// Owns a file descriptor; -1 for none. The destructor closes the file.
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
    /// Gives up the descriptor; the caller must then close the file.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }

  private:
    int number;
};

/// A file read as a stream of bytes. A directory cannot be opened.
class InputFile {
  public:
    /// Opens `name`, exactly as spelled. May be called only once.
    bool Open(std::string_view name);
    [[nodiscard]] bool IsOpen() const { return handle >= 0; }
    /// Whether the file has a size, unlike a pipe or a device.
    [[nodiscard]] bool HasSize() const { return hasSize; }
    /// The size in bytes when the file was opened; 0 if it has none.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// The identity of the open file.
    [[nodiscard]] const FileIdentity& Identity() const { return identity; }
    /// Reads up to `count` bytes. Result: the number of bytes read. It is 0 at the end of the file,
    /// after a read error, and if a console event occurs while there is nothing to read. Bytes
    /// appended to a file after it was opened are not read, unless the file was empty.
    std::size_t Read(void* buffer, std::size_t count);
    /// Whether `Open` or a read has failed. The end of the file and a console event are not
    /// failures.
    [[nodiscard]] bool Failed() const { return error != 0; }
    /// The system's error number for that failure; 0 for none.
    [[nodiscard]] int Error() const { return error; }

  private:
    FileHandle handle;
    bool hasSize = false;
    int error = 0;
    std::uint64_t size = 0;
    std::uint64_t taken = 0;  // bytes read
    FileIdentity identity;
};

/// A file to be written. Its bytes are written to a new file in the same directory. `Commit`
/// renames that file to the final name in one step. Until then, and if anything fails, no new file
/// appears under that name, and the old file stays unchanged. The new file gets the permissions of
/// the old file. Some files are written in place, from the first `Write` on: devices, pipes, and
/// files that cannot be replaced because the directory does not allow it or the owner would change.
/// No unfinished file is left when the process ends, unless the process is killed outright.
class OutputFile {
  public:
    enum class Kind {
        target,  ///< the bytes as they are; a symbolic link of that name is followed
        report,  ///< text, with the line ends of the system; a symbolic link is replaced
    };

    ~OutputFile() { GiveUp(); }  ///< Discards the file if it has not been committed.

    /// Opens `name`, exactly as spelled, unless it refers to one of the files in `kept`. May be
    /// called only once. False: the file is in `kept` or cannot be written. A file that may not be
    /// written is not replaced either. After a failure, no other member may be called.
    [[nodiscard]] bool Open(std::string_view name, Kind kind, const FileSet& kept);
    /// Appends bytes. A failure is remembered for `Commit`, and later calls do nothing.
    void Write(const void* bytes, std::size_t count);
    /// Completes the file. True: the file has its final name and all its bytes.
    [[nodiscard]] bool Commit();

  private:
    void GiveUp();

    FileHandle handle;
    bool isEmptied = true;   // false: the file is written in place and still has its old bytes
    bool hasFailed = false;  // some bytes have not been written
    std::string path;        // the final path
    std::string temporary;   // the path before `Commit`; empty: the file is written in place
};

// ----------------------------------------------------------------------------------------------------
// console

/// Opens any standard stream that is closed; otherwise the next file to be opened would get its
/// file descriptor and receive its output. Also makes sure that a failed write does not end the
/// process.
void OpenStandardStreams();

/// Whether `stream` is a terminal, which would act on control characters.
[[nodiscard]] bool IsTerminal(std::FILE* stream);

/// Sets the title of the console window, if there is one.
void SetConsoleTitle(const char* title);

/// Console events: break keys, and requests to end the process.
inline constexpr int EVENT_CTRL_C = 0;
inline constexpr int EVENT_CTRL_BREAK = 1;
inline constexpr int EVENT_CLOSE = 2;
inline constexpr int EVENT_LOGOFF = 5;
inline constexpr int EVENT_SHUTDOWN = 6;

/// Called with an event at any moment, either between any two instructions of the program or on a
/// separate thread. The handler may use only lock-free atomics and `WriteFromHandler`. Result: 1 if
/// the event was handled. If such an event ends the process, the program is allowed to finish
/// first.
using ConsoleHandler = int (*)(int event);

/// Installs `handler`; null removes it and restores the previous state. If the process was started
/// with the close event ignored, that event stays ignored.
void SetConsoleHandler(ConsoleHandler handler);

/// Waits until all handler calls in progress have returned, so that the objects they use can be
/// destroyed.
void AwaitConsoleHandler();

/// Writes to standard output from a `ConsoleHandler`, unbuffered.
void WriteFromHandler(std::string_view text);

/// Waits for a key and reads it. On a console, the Return key is not needed. From other input,
/// reads one byte or the end of input. A console event counts as a key.
void WaitForKey();

}  // namespace korv::platform
