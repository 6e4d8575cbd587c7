// The results of a run: report files, console reports, the target.

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "expr/tmp_string.h"
#include "platform/platform.h"

namespace korv {

// A report never overwrites an input. A target may, unless `platform::IsProtectedFrom` forbids it
// for the names of source and target.
bool CAssembler::OpenOutput(platform::OutputFile* file, const std::string& name,
                            platform::OutputFile::Kind kind) {
    const bool isKept =
        kind == platform::OutputFile::Kind::report || platform::IsProtectedFrom(sourceName, name);
    return disk.Reaches(name) &&
           file->Open(name, kind, isKept ? disk.FilesRead() : platform::FileSet());
}

// The last step of each output. Commits `file` if its contents are complete. Result: whether the
// file has been written.
bool CAssembler::CommitOutput(platform::OutputFile* file, const std::string& name, bool isWhole) {
    const bool isWritten = isWhole && file->Commit();
    if (!isWritten) {
        PrintTexts(output, "[Korv] Could not write %.\n", {name});
    }
    return isWritten;
}

// Writes the report file `name` by calling `write`, which returns whether the report is complete.
// Prints `confirmation` if the file has been written, or `complaint` if it cannot be opened.
template <class Write>
void CAssembler::WriteReport(const std::string& name, const char* complaint,
                             const char* confirmation, Write write) {
    platform::OutputFile file;
    if (!OpenOutput(&file, name)) {
        std::fputs(complaint, output);
    } else if (CommitOutput(&file, name, write(&file))) {
        std::fputs(confirmation, output);
    }
}

void CAssembler::ReportError(const CStatement* statement, std::int32_t number,
                             std::string_view text, std::string_view part) {
    errors.Report(number, text, statement->PlaceOf(part));
}

void CAssembler::ReportWarning(const CStatement* statement, std::int32_t number,
                               std::string_view text, std::string_view part) {
    warnings.Report(number, text, statement->PlaceOf(part));
}

void CAssembler::WriteDebugFile() {
    const auto write = [this](platform::OutputFile* file) {
        // Even an aborted run gets its listing. Only an abort while the listing is being written
        // makes it incomplete.
        const std::uint32_t aborted = flags.Clear(RF_ABORT) & RF_ABORT;
        debugStream.WriteListing(this, file);
        return (flags.Set(aborted) & RF_ABORT) == 0;
    };
    WriteReport(targetDirectory + "Debug.Out", "[Korv] Could not open 'debug.out'!\n",
                flags.Has(RF_MESSAGES) ? "[Korv] Debugfile written!\n" : "", write);
}

void CAssembler::PrintList(const CMessageList& list, const char* heading) {
    std::fprintf(output, heading, list.Count());
    list.Print(ReportWriter(output));
    std::fputs("-------------------------------------------------------------------\n", output);
}

void CAssembler::ReportErrors() {
    if (errors.Count() == 0) {
        return;
    }
    PrintList(errors, "[Korv] GOT %d ERRORS!\n");
    const auto write = [this](platform::OutputFile* file) {
        errors.Print(ReportWriter(file));
        return true;
    };
    WriteReport("Errors.Out", "", "[Korv] Errors.Out written!\n", write);
}

void CAssembler::ReportWarnings() {
    if (warnings.Count() > 0) {
        PrintList(warnings, "[Korv] Got %d Warnings!\n");
    }
}

void CAssembler::WriteLabelFile() {
    const auto write = [this](platform::OutputFile* file) {
        identifiers.DumpIdentifiers(file);
        return true;
    };
    WriteReport(targetDirectory + "Labels.Out", "Could not create file Labels.Out.\n",
                flags.Has(RF_MESSAGES) ? "[Korv] Labels.Out written.\n" : "", write);
}

void CAssembler::ReportCounts() {
    std::fprintf(output, "%d identifiers found, MaxFileDepth:%d.\n", identifiers.TotalCount(),
                 maxFileDepth);
    std::fprintf(output, "%d lines processed, %u bytes generated.\n", totalLines,
                 binary.Position());
}

CAssembler::LoadHeader CAssembler::MakeLoadHeader() {
    const std::uint32_t start =
        startAddress == noStartAddress ? binaryStart : static_cast<std::uint32_t>(startAddress);
    const std::uint32_t end = binary.Position() + start - 1;
    std::int32_t value = 0;
    const bool hasExec = identifiers.FindID("EXEC", &value) == 0;
    const std::uint32_t exec = hasExec ? static_cast<std::uint32_t>(value) : start;
    const auto byte = [](std::uint32_t word) { return static_cast<std::uint8_t>(word); };
    return {0xFE,           byte(start), byte(start >> 8), byte(end),
            byte(end >> 8), byte(exec),  byte(exec >> 8)};
}

void CAssembler::WriteTarget() {
    const bool gotErrors = errors.Count() > 0;
    platform::OutputFile file;
    const bool isOpen = !gotErrors && !flags.Has(RF_ABORT) &&
                        OpenOutput(&file, targetName, platform::OutputFile::Kind::target);
    // A console event up to this point prevents the target from being written, even if the event is
    // too late for MSG_ABORTED. A later event has no effect.
    const bool isAborted = (flags.Set(RF_SETTLED) & RF_ABORT) != 0;
    if (gotErrors || isAborted) {
        std::fprintf(output, "[Korv] Got errors! Binary output NOT saved to disk!\n");
        return;
    }
    if (!isOpen) {
        PrintTexts(output, "[Korv] Could not open %.\n", {targetName});
        return;
    }
    if (flags.Has(RF_BINARY)) {
        const LoadHeader header = MakeLoadHeader();
        file.Write(header.data(), header.size());
    }
    binary.WriteTo(&file);
    if (CommitOutput(&file, targetName) && flags.Has(RF_MESSAGES)) {
        PrintTexts(output, "[Korv] Binary target secured. (%)\n", {targetName});
    }
}

void CAssembler::Progress() {
    const std::uint32_t total = meter.bytesTotal / 8;
    const std::uint32_t percentage = total == 0 ? 100 : meter.bytesRead / 8 * 100 / total;
    std::fprintf(output, "%3d%% completed.\r", static_cast<std::int32_t>(percentage));
    std::fflush(output);
}

std::int32_t CAssembler::StatusDump(std::FILE* stream) {
    std::FILE* const to = stream == nullptr ? output : stream;
    std::fprintf(to,
                 "Korv Status Dump.\n----------------------------------------------------\n"
                 "   File depth:        %3d/%d.\n   Conditional depth: %3d.\n"
                 "   Total Linecount:   %3d.\n",
                 fileDepth, maxFileDepth, conditionDepth, totalLines);
    PrintTexts(to, "   Current filename:  %\n",
               {currentFileName == nullptr ? "(none)" : currentFileName});
    std::fputs("Temp string info\n----------------\n", to);
    CtmpStringManager::DumpStatus(to);
    std::fputs("Identifier manager\n------------------\n", to);
    identifiers.DumpStatus(to);
    std::fputs("Binary target manager\n---------------------\n", to);
    binary.DumpStatus(to);
    return 0;
}

}  // namespace korv
