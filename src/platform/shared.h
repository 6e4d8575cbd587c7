/// Shared by the implementations for all systems.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

/// Bytes that one call can transfer on any system.
inline constexpr std::size_t mostAtOnce = 0x10000000;

/// Whether the next request, or what else `fault` is for, fails on purpose.
[[nodiscard]] inline bool FailsOnPurpose(Fault fault = requestFault) {
    return fault != nullptr && fault();
}

/// The system's number of the failure of the last request; never 0.
[[nodiscard]] int LastError();

/// Read and write up to `count` bytes in one call. Result: the number of bytes, or -1. It is 0 if a
/// console event interrupts reading.
[[nodiscard]] std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count);
[[nodiscard]] std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count);

/// Makes an open file `size` bytes long, and goes to its start.
[[nodiscard]] bool SetSize(int handle, std::uint64_t size);

// What `OutputFile` asks of a system.

/// The place that the name of an output leads to.
struct OutputPlace {
    OutputFile::Kind kind{};
    std::string path;           ///< the path of a new file
    std::string directory;      ///< of `path`, with its separator
    FileHandle handle;          ///< the existing file, open for writing; none if there is none
    bool isRegular = false;     ///< it is a file, not a device or a pipe
    FileIdentity identity;      ///< if it is regular
    bool isReplaceable = true;  ///< a new file can replace it
    unsigned mode = 0;          ///< permissions or attributes of a new file, in the system's bits
};

/// Finds the place that `place->path`, which is as typed at first, leads to. False: it may not be
/// written, is one of the files of `kept`, or cannot be determined.
[[nodiscard]] bool FindPlace(const FileSet& kept, OutputPlace* place);

enum class Creation {
    done,
    nameIsTaken,
    isRefused,  ///< by the directory; an existing file can still be written
    failed,     ///< an existing file would only be lost
};
/// Creates `temporary`, which is removed if the process ends before `PutInPlace` or `Remove`. These
/// take the same object, which must not move meanwhile. At most 16 at a time.
[[nodiscard]] Creation Create(const std::string& temporary, const OutputPlace& place,
                              FileHandle* handle);
/// Creates a file that can replace the one at `place`, at the first free name. If `temporary` is
/// empty, the existing file has to be written in place. False: neither is possible.
[[nodiscard]] bool CreateReplacement(const OutputPlace& place, std::string* temporary,
                                     FileHandle* handle);
/// Gives a new file the owner and the permissions of the file at `place`. False: that is not
/// possible.
[[nodiscard]] bool MakeAlike(int handle, const OutputPlace& place);
/// Writes all of `bytes`. False: that has failed.
[[nodiscard]] bool WriteWhole(int handle, std::string_view bytes);
/// Completes the bytes of a file. False: some have not been written.
[[nodiscard]] bool EndWriting(FileHandle* handle);
/// Completes a file. If `temporary` names one, renames that to `path` and empties the name.
[[nodiscard]] bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path);
/// If `name` names a file, removes it and empties the name.
void Remove(std::string* name);

/// Blocks the signals that end the process. If there is a console handler, its events do not end
/// the process and are not blocked. Calls nest; each needs a `ReleaseSignals`.
void HoldSignals();
void ReleaseSignals();

/// The number of the process.
[[nodiscard]] unsigned long ProcessNumber();

/// Calls `create` with names of files in the directory of `place` until one is free, and returns
/// that in `name`. Names that are taken are left over from a process that was killed, or belong to
/// one with the same number.
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
