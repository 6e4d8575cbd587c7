#include "platform/shared.h"

#include <algorithm>
#include <cstdint>
#include <system_error>
#include <utility>

#include "platform/fault_point.h"
#include "platform/platform.h"

namespace korv::platform {
namespace {

FaultPoint faults;
RequestFault fault = RequestFault::failsOnce;

// The words of the C library, which are the same on all systems where it has some.
std::string ReasonOf(int error) {
    return std::error_code(error, std::system_category()).default_error_condition().message();
}

constexpr std::size_t mostAtOnce = 0x10000000;  // bytes that one call moves on any system

}  // namespace

PathParts SplitPath(std::string_view path) {
    const std::size_t separator = path.find_last_of(separators) + 1;  // 0 for none
    const std::size_t name = std::max(separator, DriveLength(path));
    const std::size_t dot = std::min(path.find_last_of('.'), path.size());
    const std::size_t extension = dot < name ? path.size() : dot;
    return {path.substr(0, name), path.substr(name, extension - name), path.substr(extension)};
}

bool IsAbsolutePath(std::string_view name) {
    return DriveLength(name) != 0 || name.starts_with('/') || name.starts_with('\\');
}

std::size_t InputFile::Read(void* buffer, std::size_t count) {
    std::uint64_t wanted = std::min(count, mostAtOnce);
    if (size != 0) {
        // Nobody has to ask for the end of a file whose size is known.
        wanted = std::min(wanted, size - taken);
    }
    if (wanted == 0 || Failed()) {
        return 0;
    }
    const std::ptrdiff_t got = ReadSome(handle, buffer, static_cast<std::size_t>(wanted));
    error = got < 0 ? LastError() : 0;
    const std::size_t bytes = got < 0 ? 0 : static_cast<std::size_t>(got);
    taken += bytes;
    return bytes;
}

std::string InputFile::Reason() const {
    return ReasonOf(error);
}

std::string OutputFile::Reason() const {
    return ReasonOf(error);
}

bool OutputFile::Open(std::string_view name, Kind kind, const FileSet& kept) {
    const bool isOpen = TryOpen(name, kind, kept);
    error = isOpen ? 0 : LastError();
    return isOpen;
}

// False: the system's last error is the reason.
bool OutputFile::TryOpen(std::string_view name, Kind kind, const FileSet& kept) {
    OutputPlace place;
    place.kind = kind;
    place.path = name;
    if (!FindPlace(kept, &place)) {
        return false;
    }
    path = place.path;
    const bool isThere = place.handle >= 0;
    if (place.isReplaceable && (place.isRegular || !isThere)) {
        if (!CreateTemporary(place)) {
            return false;
        }
        if (isThere && handle >= 0 && !MakeAlike(handle, place)) {
            GiveUp();
        }
    }
    if (handle < 0) {
        handle = std::move(place.handle);
        isEmptied = !place.isRegular;
    }
    return handle >= 0;
}

// False: there is no new file, and what is at the place must not be written either.
bool OutputFile::CreateTemporary(const OutputPlace& place) {
    Creation creation = Creation::nameIsTaken;
    // Names that are taken are left over from a process that was killed, or belong to one with the
    // same number.
    for (unsigned i = 0; i < 100 && creation == Creation::nameIsTaken; ++i) {
        temporary = place.directory + "korv" + std::to_string(ProcessNumber() + i) + ".tmp";
        creation = Create(temporary, place, &handle);
    }
    if (creation != Creation::done) {
        temporary.clear();
    }
    return creation == Creation::done || creation == Creation::isRefused;
}

void OutputFile::GiveUp() {
    handle = FileHandle();
    if (!temporary.empty()) {
        Remove(temporary);
        temporary.clear();
    }
}

bool OutputFile::Commit() {
    Write(nullptr, 0);  // an empty file is one too
    if (error == 0 && !PutInPlace(&handle, temporary, path)) {
        error = LastError();
    }
    if (error == 0) {
        temporary.clear();
    }
    GiveUp();
    return error == 0;
}

void OutputFile::Write(const void* bytes, std::size_t count) {
    const char* from = static_cast<const char*>(bytes);
    if (!std::exchange(isEmptied, true) && !Empty(handle)) {
        error = LastError();
    }
    while (count > 0 && error == 0) {
        const std::ptrdiff_t written = WriteSome(handle, from, std::min(count, mostAtOnce));
        if (written <= 0) {
            error = LastError();
            return;
        }
        from += written;
        count -= static_cast<std::size_t>(written);
    }
}

bool FaultFileRequest(std::int64_t n, RequestFault newFault) {
    fault = newFault;
    return faults.Set(n, fault == RequestFault::failsForGood);
}

bool FailsOnPurpose() {
    const bool isHit = faults.Hits();
    if (isHit && fault == RequestFault::isBroken) {
        BreakOff();
        return false;
    }
    return isHit;
}

}  // namespace korv::platform
