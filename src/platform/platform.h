/// All that Korv needs of the operating system. No other folder includes a system header or tests
/// for a system; each system has its own implementation of this header, in posix*.cpp and
/// win32*.cpp.
///
/// File names: both `/` and `\` separate components. Texts keep what was typed; the separator is
/// translated for the call to the system only. Names to be read are found without regard to ASCII
/// case, names to be written are taken exactly as spelled. No file that a run has read is ever
/// written over because names differ in case only. Texts, names among them, are UTF-8 where the
/// system asks.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

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

/// Like `Reallocate`, but without the hook: the caller has another way. Tests cannot let it fail.
[[nodiscard]] void* TryReallocate(void* memory, std::size_t size);

void Free(void* memory);

/// Bytes in one piece of memory that grows as they are appended. A failure to grow is a result,
/// and does not end the process.
class Buffer {
  public:
    Buffer() = default;
    ~Buffer() { Free(data); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Where `count` further bytes can be written; null when there is no memory for them, and the
    /// bytes that are there stay. `Advance` then appends as many of them as have been written.
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

/// Where `PrintMemoryFailure` prints: standard error at first. Result: the previous stream, which
/// is not owned.
std::FILE* SetMemoryFailureStream(std::FILE* stream);

/// Prints `line`, which names what no memory could be allocated for.
void PrintMemoryFailure(const char* line);

/// For tests: lets the n-th allocation from here on fail, and every later one too if
/// `andAllAfter`. 0 ends it.
void FailAllocation(std::int64_t n, bool andAllAfter);

// ----------------------------------------------------------------------------------------------------
// paths

/// The pieces of a file name as views of the given text; joined they give it again.
struct PathParts {
    std::string_view directory;  ///< up to and with the last separator, or the colon of a drive
                                 ///< where there are drives; empty for none
    std::string_view baseName;   ///< without the last "." and what follows
    std::string_view extension;  ///< with its "."; empty for none
};

[[nodiscard]] PathParts SplitPath(std::string_view path);

/// Characters of the drive at the start of a name, with its colon; 0 where there is none, or are no
/// drives.
[[nodiscard]] std::size_t DriveLength(std::string_view name);

/// Whether `word` of the command line, which begins with "/", is an absolute file name and no
/// switch: something stands before its last "/", and that is an existing directory. Never so where
/// there are drives.
[[nodiscard]] bool IsFileNotSwitch(const char* word);

/// Whether `name` means the same wherever the current directory is, but for a drive.
[[nodiscard]] bool IsAbsolutePath(std::string_view name);

/// Whether the file that was read as `source` must not be replaced by writing `target`, should the
/// two be one file: where case makes files differ, if the names differ in nothing else but
/// separators; elsewhere always.
[[nodiscard]] bool IsProtectedFrom(std::string_view source, std::string_view target);

/// Whether `name` leads to a regular file; to ask does not open it.
[[nodiscard]] bool IsRegularFile(std::string_view name);

/// Where a name of a file to be read leads.
struct FoundPath {
    std::string path;     ///< full; empty: the current directory cannot be had, or the path is
                          ///< longer than the system allows
    bool isFile = false;  ///< whether it exists; then the path is spelled as on disk
};

/// The current directory, which follows the file being read, and the way from a name to a file.
/// Nobody else changes the current directory during a run.
class CurrentDirectory {
  public:
    CurrentDirectory();
    ~CurrentDirectory();

    /// The full path of a file to be read: the current directory joined with `name`, "." and ".."
    /// removed as text; spelled as on disk where the file is found, else as written.
    [[nodiscard]] FoundPath FullPath(std::string_view name);

    /// Makes the directory of `file`, which `FullPath` gave, the current one, found without regard
    /// to case. False: there is none, or it cannot be entered; the current one stays. `Leave`
    /// belongs to each call, whatever its result.
    [[nodiscard]] bool EnterDirectoryOf(const FoundPath& file);
    /// Goes back to where the last `EnterDirectoryOf` came from, also to a directory that cannot
    /// be read or has no name. False: that fails.
    [[nodiscard]] bool Leave();
    /// The path of the directory that `Leave` leads to; empty if it was never asked for, or has
    /// none.
    [[nodiscard]] std::string_view Path() const;
    /// Whether `name` means what it should: a relative one does not once a `Leave` has failed.
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

/// What distinguishes a file from all others, whatever its name: the system's numbers.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    auto operator<=>(const FileIdentity&) const = default;
};
using FileSet = std::set<FileIdentity>;

/// An open file by its number, -1 for none; closed with its owner.
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
    /// The number, for whoever closes the file.
    [[nodiscard]] int Release() { return std::exchange(number, -1); }

  private:
    int number;
};

/// A file read as a stream of bytes. A directory does not open.
class InputFile {
  public:
    /// Opens `name`, taken exactly as spelled. Called once.
    bool Open(std::string_view name);
    [[nodiscard]] bool IsOpen() const { return handle >= 0; }
    /// Whether the file has a size; a pipe or a device has none.
    [[nodiscard]] bool HasSize() const { return hasSize; }
    /// Size in bytes when opened, 0 without one.
    [[nodiscard]] std::uint64_t Size() const { return size; }
    /// Of the file that was opened.
    [[nodiscard]] const FileIdentity& Identity() const { return identity; }
    /// Reads up to `count` bytes. Result: their number, 0 at the end of the file, which is where it
    /// was when the file was opened, on a read error, which ends the file, and when a console event
    /// comes while there is nothing to read.
    std::size_t Read(void* buffer, std::size_t count);
    /// Whether `Open` or a read has failed; the end of the file is no failure, nor is a console
    /// event.
    [[nodiscard]] bool Failed() const { return error != 0; }
    /// The system's number of that failure; 0: there is none.
    [[nodiscard]] int Error() const { return error; }

  private:
    FileHandle handle;
    bool hasSize = false;
    int error = 0;
    std::uint64_t size = 0;
    std::uint64_t taken = 0;  // bytes read
    FileIdentity identity;
};

/// A file that is written. Its bytes go to a new file in the same directory, and `Commit` gives
/// that one its name, in one step: until then, and where anything fails, nothing appears and what
/// stood there before is whole. What was there keeps its permissions. A device, a pipe, and a file
/// that a new one cannot take the place of (the directory does not let it, or its owner cannot be
/// kept) are written where they are, from the first `Write` on. However the process ends, short of
/// being killed outright, no unfinished file is left.
class OutputFile {
  public:
    enum class Kind {
        target,  ///< the bytes as they are; goes where a symbolic link of that name points
        report,  ///< text, with the line ends of the system; replaces such a link
    };

    ~OutputFile() { GiveUp(); }  ///< Gives up what has not been committed.

    /// Opens `name`, taken exactly as spelled, unless it leads to one of the files of `kept`.
    /// Called once. False: it cannot be opened; so does a file that may not be written, also where
    /// it could be replaced. Nothing else may be called then.
    [[nodiscard]] bool Open(std::string_view name, Kind kind, const FileSet& kept);
    /// Appends. What fails is kept for `Commit`; later calls do nothing then.
    void Write(const void* bytes, std::size_t count);
    /// Ends the file. True: all its bytes are there under its name.
    [[nodiscard]] bool Commit();

  private:
    void GiveUp();

    FileHandle handle;
    bool isEmptied = true;   // false: it is written in place, and the old bytes are in the way
    bool hasFailed = false;  // some byte is not there
    std::string path;        // where the file is to be
    std::string temporary;   // where it is until then; empty: it is written in place
};

/// For tests: what happens at the n-th request from here on that looks for, opens, reads, writes,
/// closes or renames a file, or changes the directory.
enum class RequestFault {
    failsOnce,
    failsForGood,  ///< this one and all later ones
    isBroken,      ///< a console event comes just before it
};

/// 0 ends it. Result: whether the request asked for last has come.
bool FaultFileRequest(std::int64_t n, RequestFault fault);

// ----------------------------------------------------------------------------------------------------
// console

/// Makes sure that the standard streams are there, since a file opened in the place of a missing
/// one would get what is printed, and that no write ends the process.
void OpenStandardStreams();

/// Whether `stream` goes to a terminal: a person sees what is written, and control characters act.
[[nodiscard]] bool IsTerminal(std::FILE* stream);

/// Sets the title of the console's window, if there is one.
void SetConsoleTitle(const char* title);

/// Events of the console: break keys and requests to end.
inline constexpr int EVENT_CTRL_C = 0;
inline constexpr int EVENT_CTRL_BREAK = 1;
inline constexpr int EVENT_CLOSE = 2;
inline constexpr int EVENT_LOGOFF = 5;
inline constexpr int EVENT_SHUTDOWN = 6;

/// Called with an event at any moment, between any two instructions of the program or beside them
/// on a thread of its own: it may use nothing but lock-free atomics and `WriteFromHandler`. Result:
/// 1 when the event was handled; where the process would end with that, it waits until the program
/// has come to its own end.
using ConsoleHandler = int (*)(int event);

/// Installs `handler` where there is none; null takes it away and puts back what there was before.
/// A close event that the process was started to ignore stays ignored.
void SetConsoleHandler(ConsoleHandler handler);

/// Waits until no handler runs that has begun before: what it might reach may go then.
void AwaitConsoleHandler();

/// Writes to standard output from within a `ConsoleHandler`, past all buffers.
void WriteFromHandler(std::string_view text);

/// Waits for one key and takes it: on a console without the return key, elsewhere one byte or the
/// end of the input. A console event counts as a key.
void WaitForKey();

}  // namespace korv::platform
