/// What the implementations for all systems share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace korv::platform {

inline constexpr std::string_view separators = "/\\";

inline constexpr std::size_t mostAtOnce = 0x10000000;  ///< bytes that one call moves on any system

/// Whether a request fails on purpose.
[[nodiscard]] bool FailsOnPurpose();

/// The system's number of the failure of the last request; never 0.
[[nodiscard]] int LastError();

/// Makes a console event come.
void BreakOff();

/// Read and write up to `count` bytes in one call. Result: the number of bytes, or -1. A reading
/// that a console event breaks off gives 0.
[[nodiscard]] std::ptrdiff_t ReadSome(int handle, void* buffer, std::size_t count);
[[nodiscard]] std::ptrdiff_t WriteSome(int handle, const void* buffer, std::size_t count);

/// Makes an open file one without bytes, which is written from its start.
[[nodiscard]] bool Empty(int handle);

// What `OutputFile` asks of a system.

/// What the name of an output leads to.
struct OutputPlace {
    OutputFile::Kind kind{};
    std::string path;               ///< where a new file is to be
    std::string directory;          ///< of `path`, with its separator
    FileHandle handle;              ///< of what is there, open for writing; none: there is nothing
    bool isRegular = false;         ///< what is there is a file, and no device or pipe
    FileIdentity identity;          ///< of what is there, if it is regular
    bool isStandardOutput = false;  ///< no path and no handle: it is that stream
    bool isReplaceable = true;      ///< a new file can take that name
    unsigned mode = 0;  ///< permissions or attributes of a new file, in the system's bits
};

/// Looks for what `place->path`, at first as it was typed, leads to. False: it may not be written,
/// or is one of the files of `kept`, or the system does not say.
[[nodiscard]] bool FindPlace(const FileSet& kept, OutputPlace* place);

enum class Creation {
    done,
    nameIsTaken,
    isRefused,  ///< by the directory: what is there already can be written all the same
    failed,     ///< what is there would only be lost
};
/// Creates `temporary`, which is removed if the process ends before `PutInPlace` or `Remove`. The
/// three of them take the same object, which stays where it is meanwhile. At most 16 at a time.
[[nodiscard]] Creation Create(const std::string& temporary, const OutputPlace& place,
                              FileHandle* handle);
/// Creates a file that can take the place of what is at `place`, at the first name that is free. No
/// name: what is there has to be written itself. False: neither can be.
[[nodiscard]] bool CreateReplacement(const OutputPlace& place, std::string* temporary,
                                     FileHandle* handle);
/// Gives a new file the owner and the permissions of what is at `place`. False: that cannot be.
[[nodiscard]] bool MakeAlike(int handle, const OutputPlace& place);
/// Writes all of `bytes`. False: some are not there.
[[nodiscard]] bool WriteWhole(int handle, std::string_view bytes);
/// Ends a file as far as its bytes are concerned. False: some are not there.
[[nodiscard]] bool EndWriting(FileHandle* handle);
/// Ends a file, and gives `temporary`, if it is not empty, the name `path`. It is empty then.
[[nodiscard]] bool PutInPlace(FileHandle* handle, std::string* temporary, const std::string& path);
/// Removes the file `name`, if it is not empty. It is empty then.
void Remove(std::string* name);

/// Keeps signals that end the process waiting, but for console events where there is a handler,
/// which do not end it. There may be several calls at a time; each has its `ReleaseSignals`.
void HoldSignals();
void ReleaseSignals();

/// The number of the process.
[[nodiscard]] unsigned long ProcessNumber();

/// Calls `create` with names of files beside `place` until one is free, which `name` gets. Names
/// that are taken are left over from a process that was killed, or belong to one with the same
/// number.
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
