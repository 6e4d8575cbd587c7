/// Shared by the implementations for all systems.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

/// The most bytes to transfer in one call; no system has a lower limit.
inline constexpr std::size_t mostAtOnce = 0x10000000;

/// Whether the next request, or with `allocationFault` the next allocation, must fail on purpose.
[[nodiscard]] inline bool FailsOnPurpose(Fault fault = requestFault) {
    return fault != nullptr && fault();
}

/// The system's error number for the last failed request; never 0.
[[nodiscard]] int LastError();

/// These read and write up to `count` bytes in one call. Result: the number of bytes, or -1 on
/// failure. A read that a console event interrupts returns 0.
[[nodiscard]] std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count);
[[nodiscard]] std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count);

/// Makes an open file `size` bytes long and seeks to its start.
[[nodiscard]] bool SetSize(int handle, std::uint64_t size);

// The operations that `OutputFile` needs from a system.

/// The place to which an output is written: the path, and the existing file if there is one.
struct OutputPlace {
    OutputFile::Kind kind{};
    std::string path;           ///< the name as typed; after `FindPlace`, the path to write
    std::string directory;      ///< the directory of `path`, with its separator
    FileHandle handle;          ///< the existing file, open for writing; -1 if there is none
    bool isRegular = false;     ///< the existing file is not a device or a pipe
    FileIdentity identity;      ///< of the existing file, if it is regular
    bool isReplaceable = true;  ///< a new file can replace it
    unsigned mode = 0;          ///< the system's bits for permissions or attributes of a new file
};

/// Finds the file that `place->path` refers to, and completes `place`. False: the file may not be
/// written, is one of the files in `kept`, or cannot be determined.
[[nodiscard]] bool FindPlace(const FileSet& kept, OutputPlace* place);

enum class Creation {
    done,
    nameIsTaken,
    isRefused,  ///< by the directory; an existing file can still be written
    failed,     ///< for another reason; writing to an existing file would only destroy it
};
/// Creates the file `temporary`, which is removed if the process ends before `PutInPlace` or
/// `Remove`. One of these must be called with the same string object, and the object must not move
/// in between. At most 16 such files may exist at a time.
[[nodiscard]] Creation Create(const std::string& temporary, const OutputPlace& place,
                              FileHandle* handle);
/// Creates, under the first free name, a file that can replace the one at `place`. If `temporary`
/// is empty afterwards, the existing file has to be written in place. False: neither is possible.
[[nodiscard]] bool CreateReplacement(const OutputPlace& place, std::string* temporary,
                                     FileHandle* handle);
/// Gives a new file the owner and the permissions of the file at `place`. False: this is not
/// possible.
[[nodiscard]] bool MakeAlike(int handle, const OutputPlace& place);
/// Writes all of `bytes`. False: some bytes could not be written.
[[nodiscard]] bool WriteWhole(int handle, std::string_view bytes);
/// Finishes writing a file. False: some bytes have not been written.
[[nodiscard]] bool EndWriting(FileHandle* handle);
/// Finishes writing a file. If `temporary` is not empty, renames the file of that name to `path`
/// and clears `temporary`.
[[nodiscard]] bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path);
/// If `name` is not empty, removes the file of that name and clears `name`.
void Remove(std::string* name);

/// Blocks the signals that would end the process. If a console handler is installed, the signals
/// that it handles do not end the process and are not blocked. Calls nest; each needs a
/// `ReleaseSignals`.
void HoldSignals();
void ReleaseSignals();

/// The process ID.
[[nodiscard]] unsigned long ProcessNumber();

/// Calls `create` with names in the directory of `place` until one is free, at most 100 times, and
/// stores that name in `name`. A name may already be taken by a file that a killed process left
/// behind, or by another process with the same ID.
template <typename Create>
Creation CreateAtFreeName(const OutputPlace& place, std::string* name, Create create) {
    Creation creation = Creation::nameIsTaken;
    for (unsigned i = 0; i < 100 && creation == Creation::nameIsTaken; ++i) {
        *name = place.directory + "korv" + std::to_string(ProcessNumber() + i) + ".tmp";
        creation = create(*name);
    }
    if (creation != Creation::done) {
        name->clear();
    }
    return creation;
}

}  // namespace korv::platform
