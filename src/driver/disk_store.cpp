#include "driver/disk_store.h"

#include <algorithm>

#include "driver/assembler.h"

namespace korv {

Status DiskStore::Find(std::string_view name, platform::FoundPath* file) {
    if (!Reaches(name)) {
        return MSG_CANNOT_OPEN;
    }
    *file = directory.FullPath(name);
    return file->path.empty() ? MSG_CANNOT_GET_DIRECTORY : 0;
}

CSourceFile DiskStore::Open(const std::string& path, std::uint32_t bufferSize) {
    CSourceFile file(path, bufferSize);
    if (file.IsOpen() != 0) {
        filesRead.insert(file.Stream().Identity());
    }
    return file;
}

Status DiskStore::Read(std::string_view name, FileBytes* file) {
    platform::InputFile stream;
    if (Find(name, &file->found) != 0 || !stream.Open(file->found.path)) {
        return MSG_CANNOT_OPEN;
    }
    filesRead.insert(stream.Identity());
    constexpr std::uint64_t longestBlock = 0x1000000;  // RF_ABORT is tested between blocks
    const auto blockSize =
        static_cast<std::size_t>(std::clamp<std::uint64_t>(stream.Size(), 4096, longestBlock));
    std::size_t got = 1;
    while (got != 0 && !flags->Has(RF_ABORT)) {
        char* const to = file->buffer.Room(blockSize);
        if (to == nullptr) {
            return MSG_CANNOT_OPEN;
        }
        got = stream.Read(to, blockSize);
        file->buffer.Advance(got);
    }
    file->bytes = file->buffer.Bytes();
    return stream.Failed() ? MSG_CANNOT_OPEN : 0;
}

void DiskStore::Keep(std::string_view name) {
    const std::string path = directory.FullPath(name).path;
    if (platform::IsRegularFile(path)) {
        static_cast<void>(Open(path, 0));
    }
}

}  // namespace korv
