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

/// Whether the next request fails on purpose, or the next allocation with `allocationFault`.
[[nodiscard]] inline bool FailsOnPurpose(Fault fault = requestFault) {
    return fault != nullptr && fault();
}

/// The system's number for the failure of the last request; never 0.
[[nodiscard]] int LastError();

/// Read and write up to `count` bytes in one call. Result: the number of bytes, or -1. It is 0 if a
/// console event interrupts reading.
[[nodiscard]] std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count);
[[nodiscard]] std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count);

/// Makes an open file `size` bytes long, and moves to its start.
[[nodiscard]] bool SetSize(int handle, std::uint64_t size);

// The operations that `OutputFile` needs from a system.

/// What the name of an output refers to: the path to write, and the existing file if there is one.
struct OutputPlace {
    OutputFile::Kind kind{};
    std::string path;           ///< the name as typed; after `FindPlace`, the path to write
    std::string directory;      ///< of `path`, with its separator
    FileHandle handle;          ///< the existing file, open for writing; none if there is none
    bool isRegular = false;     ///< the existing file is not a device or a pipe
    FileIdentity identity;      ///< of the existing file, if it is regular
    bool isReplaceable = true;  ///< a new file can replace it
    unsigned mode = 0;          ///< permissions or attributes of a new file, in the system's bits
};

/// Finds what `place->path` refers to, and completes `place`. False: the place may not be
/// written, is one of the files of `kept`, or cannot be determined.
[[nodiscard]] bool FindPlace(const FileSet& kept, OutputPlace* place);

enum class Creation {
    done,
    nameIsTaken,
    isRefused,  ///< by the directory; an existing file can still be written
    failed,     ///< for another reason; writing an existing file would only lose it
};
/// Creates `temporary`, which is removed if the process ends before `PutInPlace` or `Remove`. These
/// must be called with the same string object, which must not move in between. At most 16 files at
/// a time.
[[nodiscard]] Creation Create(const std::string& temporary, const OutputPlace& place,
                              FileHandle* handle);
/// Creates a file that can replace the one at `place`, under the first free name. If `temporary` is
/// empty afterwards, the existing file has to be written in place. False: neither is possible.
[[nodiscard]] bool CreateReplacement(const OutputPlace& place, std::string* temporary,
                                     FileHandle* handle);
/// Gives a new file the owner and the permissions of the file at `place`. False: that is not
/// possible.
[[nodiscard]] bool MakeAlike(int handle, const OutputPlace& place);
/// Writes all of `bytes`. False: that has failed.
[[nodiscard]] bool WriteWhole(int handle, std::string_view bytes);
/// Ends the writing of a file. False: some bytes have not been written.
[[nodiscard]] bool EndWriting(FileHandle* handle);
/// Ends the writing of a file. If `temporary` names one, renames that to `path` and empties the
/// name.
[[nodiscard]] bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path);
/// If `name` names a file, removes it and empties the name.
void Remove(std::string* name);

/// Blocks the signals that end the process. If there is a console handler, its events do not end
/// the process and are not blocked. Calls nest; each needs a `ReleaseSignals`.
void HoldSignals();
void ReleaseSignals();

/// The number of the process.
[[nodiscard]] unsigned long ProcessNumber();

/// Calls `create` with names in the directory of `place` until one is free, and returns that name
/// in `name`. A name can be taken by a file left over from a process that was killed, or by another
/// process with that number.
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
