// Commands whose names are taken. BINCLUDE works; the others have fixed answers and read no
// operands.

#include <algorithm>
#include <span>
#include <string>

#include "codegen/handlers.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "platform/platform.h"

namespace korv {
namespace {

// All bytes of a file, in memory.
class FileContents {
  public:
    FileContents() = default;
    ~FileContents() { platform::Free(data); }
    FileContents(const FileContents&) = delete;
    FileContents& operator=(const FileContents&) = delete;

    // False: the file cannot be opened, or not be read to its end. An abort is an end too.
    bool Read(CAssembler* assembler, const std::string& path) {
        platform::InputFile file;
        if (!file.Open(path)) {
            return false;
        }
        assembler->filesRead.insert(file.Identity());
        constexpr std::size_t blockSize = 0x1000000;  // takes no time that anybody would wait
        std::size_t capacity = 0;
        while (!assembler->flags.Has(RF_ABORT)) {
            if (count == capacity) {
                capacity = std::max(2 * capacity, static_cast<std::size_t>(file.Size()) + 4096);
                void* const grown = platform::Reallocate(data, capacity);
                if (grown == nullptr) {
                    return false;
                }
                data = static_cast<std::uint8_t*>(grown);
            }
            const std::size_t got = file.Read(data + count, std::min(capacity - count, blockSize));
            if (got == 0) {
                return !file.Failed();
            }
            count += got;
        }
        return true;
    }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {data, count}; }

  private:
    std::uint8_t* data = nullptr;
    std::size_t count = 0;
};

}  // namespace

Status AnswerOnly(CAssembler*, CStatement*, Status answer) {
    return answer;
}

// The bytes of a file as they are. The file is looked up like a source, and is none: it has no
// number and no depth, and the progress meter does not count it. It is read whole before anything
// is emitted.
Status AssembleBinclude(CAssembler* assembler, CStatement* statement) {
    const lsArg& arg = statement->args[1];
    std::string_view name = arg.text;
    if (arg.IsQuoted() && name.size() > 1) {
        name = name.substr(1, name.size() - 2);
    }
    std::string path;
    FileContents contents;
    if (!assembler->directory.Reaches(name) || !assembler->FindFile(name, &path) ||
        !contents.Read(assembler, path)) {
        assembler->ReportError(statement, MSG_CANNOT_OPEN, arg.text);
    } else if (!assembler->flags.Has(RF_ABORT)) {  // which may have left a part of it
        if (assembler->observer != nullptr) {
            assembler->observer->OnIncludedBytes(path);
        }
        assembler->EmitBytes(contents.Bytes());
    }
    return 0;
}

}  // namespace korv
