// Entering and leaving source files. The main file and an include file are entered the same way.

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "codegen/handlers.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "source/source_file.h"
#include "source/source_store.h"

namespace korv {
namespace {

void TraceFile(CAssembler* assembler, std::string_view event, std::string_view name) {
    if (assembler->flags.Has(RF_DEBUG_SYMBOLS)) {
        assembler->debugStream.AddText({event, " '", name, "'.\n"});
    }
}

}  // namespace

Status CAssembler::AssembleIncludeFile(std::string_view name) {
    ++fileDepth;
    maxFileDepth = std::max(maxFileDepth, fileDepth);
    const Status status = EnterFile(name);
    --fileDepth;
    return status;
}

// Result: as `AssembleIncludeFile`.
Status CAssembler::EnterFile(std::string_view name) {
    std::string path, directory;
    const Status entry = sources->Enter(name, &path);
    if (entry == MSG_CANNOT_CHANGE_DIRECTORY) {
        errors.Report(entry, path);
    } else if (entry != 0) {
        if (entry == MSG_CANNOT_GET_DIRECTORY) {
            errors.Report(entry, noText);
        }
        return MSG_CANNOT_OPEN;
    }
    std::int32_t fileNumber = 0;
    if (std::unique_ptr<char[]> copy = CopyOf(path); copy != nullptr) {
        fileNumber = fileNames.AddName(std::move(copy));
    }
    const char* const includer = std::exchange(currentFileName, fileNames.NameOf(fileNumber));
    const Status status = OpenAndRun(path, fileNumber);
    currentFileName = includer;
    if (const Status left = sources->Leave(&directory); left != 0) {
        errors.Report(left, directory);
    }
    return status;
}

// Result: 0, or why the file could not be opened or not be read.
Status CAssembler::OpenAndRun(const std::string& path, std::int32_t fileNumber) {
    CSourceFile file = sources->Open(path, fileBufferSize);
    if (file.IsOpen() == 0) {
        return file.OpenStatus();
    }
    bytesTotal += file.FileSize();
    const std::unique_ptr<char[]> line(new (std::nothrow) char[std::max(
        static_cast<std::size_t>(lineBufferSize) + 1, CSourceFile::leastRoom)]);
    if (line == nullptr) {
        return MSG_OUT_OF_MEMORY;
    }
    CStatement statement(this, line.get(), fileNumber);
    if (observer != nullptr) {
        observer->OnFile(path, fileNumber, &statement);
    }
    const std::int32_t lineCounter = RunStatements(&file, &statement);
    if (observer != nullptr) {
        observer->OnFileEnd();
    }
    if (file.Stream().Failed()) {
        errors.Report(MSG_CANNOT_OPEN, path, {.file = fileNumber, .line = lineCounter});
    }
    if (flags.Has(RF_PROGRESS)) {
        Progress();
    }
    totalLines += lineCounter;
    return 0;
}

Status AssembleInclude(CAssembler* assembler, CStatement* statement) {
    // The text as written: what it would be as an expression does not matter, and quotes are part
    // of the name.
    const std::string_view name = statement->args[1].text;
    TraceFile(assembler, "INCLUDING", name);
    if (assembler->fileDepth == maxFileDepthAllowed) {
        assembler->ReportError(statement, MSG_FILES_TOO_DEEP, noText, name);
        return 0;
    }
    const std::int32_t status = assembler->AssembleIncludeFile(name);
    TraceFile(assembler, "Closing", name);
    // The lines of the file have their own records; this one would show their bytes again.
    assembler->flags.Set(RF_NO_DEBUG_RECORD);
    return status;
}

}  // namespace korv
