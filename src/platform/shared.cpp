#include "platform/shared.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace korv::platform {

Fault requestFault = nullptr;

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
        // A file of known size needs no call to find its end.
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

bool OutputFile::Open(std::string_view name, Kind kind, const FileSet& kept) {
    OutputPlace place;
    place.kind = kind;
    place.path = name;
    if (!FindPlace(kept, &place) || !CreateReplacement(place, &temporary, &handle)) {
        return false;
    }
    path = place.path;
    if (handle < 0) {
        handle = std::move(place.handle);
        isEmptied = !place.isRegular;
    }
    return handle >= 0;
}

bool CreateReplacement(const OutputPlace& place, std::string* temporary, FileHandle* handle) {
    const bool isThere = place.handle >= 0;
    if (!place.isReplaceable || (isThere && !place.isRegular)) {
        return true;
    }
    const Creation creation = CreateAtFreeName(
        place, temporary, [&](const std::string& name) { return Create(name, place, handle); });
    if (creation == Creation::done && isThere && !MakeAlike(*handle, place)) {
        *handle = FileHandle();
        Remove(temporary);
    }
    return creation == Creation::done || (isThere && creation == Creation::isRefused);
}

void OutputFile::GiveUp() {
    handle = FileHandle();
    Remove(&temporary);
}

bool OutputFile::Commit() {
    Write(nullptr, 0);  // empties a file written in place to which nothing was written
    const bool isWhole = !hasFailed && PutInPlace(&handle, &temporary, path);
    GiveUp();
    return isWhole;
}

void OutputFile::Write(const void* bytes, std::size_t count) {
    if (!std::exchange(isEmptied, true)) {
        hasFailed = !SetSize(handle, 0);
    }
    hasFailed = hasFailed || !WriteWhole(handle, {static_cast<const char*>(bytes), count});
}

bool WriteWhole(int handle, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::ptrdiff_t written =
            WriteSome(handle, bytes.data(), std::min(bytes.size(), mostAtOnce));
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace korv::platform
