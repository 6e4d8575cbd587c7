#include "driver/disk_store.h"

#include <algorithm>

#include "driver/assembler.h"

namespace korv {

Status DiskStore::Find(std::string_view name, platform::FoundPath* found) {
    if (!Reaches(name)) {
        return MSG_CANNOT_OPEN;
    }
    *found = Locate(name);
    return found->path.empty() ? MSG_CANNOT_GET_DIRECTORY : 0;
}

Status DiskStore::Find(std::string_view name, std::string* path) {
    platform::FoundPath found;
    const Status status = Find(name, &found);
    *path = std::move(found.path);
    return status;
}

Status DiskStore::Enter(std::string_view name, std::string* path) {
    platform::FoundPath found;
    Status status = Find(name, &found);
    if (status == 0 && !directory.EnterDirectoryOf(found)) {
        status = MSG_CANNOT_CHANGE_DIRECTORY;
    }
    *path = std::move(found.path);
    return status;
}

CSourceFile DiskStore::Open(const std::string& path, std::uint32_t bufferSize) {
    CSourceFile file(path, bufferSize);
    if (file.IsOpen() != 0) {
        filesRead.insert(file.Stream().Identity());
    }
    return file;
}

Status DiskStore::Leave(std::string* path) {
    if (directory.Leave()) {
        return 0;
    }
    *path = directory.Path();
    return MSG_CANNOT_CHANGE_DIRECTORY;
}

Status DiskStore::Read(std::string_view name, FileBytes* file) {
    platform::InputFile stream;
    if (Find(name, &file->path) != 0 || !stream.Open(file->path)) {
        return MSG_CANNOT_OPEN;
    }
    filesRead.insert(stream.Identity());
    constexpr std::uint64_t longestBlock = 0x1000000;  // read in less time than anybody would wait
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
    platform::InputFile file;
    const std::string path = Locate(name).path;
    if (platform::KindOf(path) == platform::FileKind::regular && file.Open(path)) {
        filesRead.insert(file.Identity());
    }
}

}  // namespace korv
