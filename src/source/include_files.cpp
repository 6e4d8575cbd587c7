// Enters and leaves source files. The main file and included files are entered in the same way.

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

// Result: as for `AssembleIncludeFile`.
Status CAssembler::EnterFile(std::string_view name) {
    platform::FoundPath file;
    if (const Status status = sources->Find(name, &file); status != 0) {
        if (status == MSG_CANNOT_GET_DIRECTORY) {
            errors.Report(status, noText);
        }
        return MSG_CANNOT_OPEN;
    }
    const std::string& path = file.path;
    if (!sources->Enter(file)) {
        errors.Report(MSG_CANNOT_CHANGE_DIRECTORY, path);
    }
    const std::int32_t fileNumber = fileNames.AddName(path);
    const char* const includer = std::exchange(currentFileName, fileNames.NameOf(fileNumber));
    const Status status = OpenAndRun(path, fileNumber);
    currentFileName = includer;
    if (const auto lost = sources->Leave()) {
        errors.Report(MSG_CANNOT_CHANGE_DIRECTORY, *lost);
    }
    return status;
}

// Result: 0, or the reason why the file could not be opened.
Status CAssembler::OpenAndRun(const std::string& path, std::int32_t fileNumber) {
    CSourceFile file = sources->Open(path, fileBufferSize);
    if (file.IsOpen() == 0) {
        return file.OpenStatus();
    }
    meter.bytesTotal += file.FileSize();
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
    // The operand as written: its value as an expression does not matter, and quotes are part of
    // the name.
    const lsArg& arg = statement->args.First();
    const std::string_view name = arg.text;
    TraceFile(assembler, "INCLUDING", name);
    if (assembler->fileDepth == maxFileDepthAllowed) {
        assembler->ReportError(statement, MSG_FILES_TOO_DEEP, noText, name);
        return 0;
    }
    const std::int32_t status = assembler->AssembleIncludeFile(name);
    TraceFile(assembler, "Closing", name);
    // The lines of the file have their own records; a record of this line would repeat their bytes.
    assembler->flags.Set(RF_NO_DEBUG_RECORD);
    return status == 0 ? 0 : Refuse(statement, arg, status);
}

}  // namespace korv
