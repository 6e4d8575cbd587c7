// What a run leaves: report files, console reports, the target.

#include "driver/assembler.h"
#include "expr/tmp_string.h"
#include "platform/platform.h"

namespace korv {
namespace {

constexpr char rule[] = "-------------------------------------------------------------------\n";

void PutWordTo(std::FILE* file, std::uint32_t value) {
    std::fputc(static_cast<int>(value & 0xFF), file);
    std::fputc(static_cast<int>(value >> 8 & 0xFF), file);
}

}  // namespace

void CAssembler::WriteDebugFile() {
    std::FILE* const listing =
        platform::OpenForWriting(targetDirectory + "Debug.Out", platform::FileMode::text);
    if (listing == nullptr) {
        std::fprintf(output, "[Korv] Could not open 'debug.out'!\n");
        return;
    }
    debugStream.WriteListing(binary, listing);
    std::fclose(listing);
    if (flags.Has(RF_MESSAGES)) {
        std::fprintf(output, "[Korv] Debugfile written!\n");
    }
}

bool CAssembler::ReportErrors() {
    if (errors.Count() == 0) {
        return false;
    }
    std::fprintf(output, "[Korv] GOT %d ERRORS!\n", errors.Count());
    errors.Print(output, -1);
    std::fputs(rule, output);
    if (std::FILE* const file = platform::OpenForWriting("Errors.Out", platform::FileMode::text)) {
        errors.Print(file, -1);
        std::fclose(file);
        std::fprintf(output, "[Korv] Errors.Out written!\n");
    }
    return true;
}

void CAssembler::ReportWarnings() {
    if (warnings.Count() > 0) {
        std::fprintf(output, "[Korv] Got %d Warnings!\n", warnings.Count());
        warnings.Print(output, -1);
        std::fputs(rule, output);
    }
}

void CAssembler::WriteLabelFile() {
    std::FILE* const file =
        platform::OpenForWriting(targetDirectory + "Labels.Out", platform::FileMode::text);
    if (file == nullptr) {
        std::fprintf(output, "Could not create file Labels.Out.\n");
        return;
    }
    identifiers.DumpIdentifiers(file);
    std::fclose(file);
    if (flags.Has(RF_MESSAGES)) {
        std::fprintf(output, "[Korv] Labels.Out written.\n");
    }
}

void CAssembler::ReportCounts() {
    std::fprintf(output, "%d identifiers found, MaxFileDepth:%d.\n", identifiers.TotalCount(),
                 maxFileDepth);
    std::fprintf(output, "%d lines processed, ", totalLines);
    std::fprintf(output, "%u bytes generated.\n", binary.Position());
}

void CAssembler::WriteTarget(bool gotErrors) {
    // A break after the last look at the flag has no message; it keeps the target from being
    // written all the same.
    if (gotErrors || flags.Has(RF_ABORT)) {
        std::fprintf(output, "[Korv] Got errors! Binary output NOT saved to disk!\n");
        return;
    }
    std::FILE* const file = platform::OpenForWriting(targetName, platform::FileMode::binary);
    if (file == nullptr) {
        std::fprintf(output, "[Korv] Could not open %s.\n", targetName.c_str());
        return;
    }
    if (flags.Has(RF_BINARY)) {
        const std::uint32_t start =
            startAddress == -1 ? binaryStart : static_cast<std::uint32_t>(startAddress);
        const CIdentifier* const exec = identifiers.FindID("EXEC", /*markUsed=*/true);
        std::fputc(0xFE, file);
        PutWordTo(file, start);
        PutWordTo(file, binary.Position() + start - 1);
        PutWordTo(file, exec == nullptr ? start : static_cast<std::uint32_t>(exec->value));
    }
    binary.WriteTo(file);
    std::fclose(file);
    if (flags.Has(RF_MESSAGES)) {
        std::fprintf(output, "[Korv] Binary target secured. (%s)\n", targetName.c_str());
    }
}

void CAssembler::Progress() {
    const std::uint32_t total = bytesTotal / 8;
    const std::uint32_t percentage = total == 0 ? 100 : bytesRead / 8 * 100 / total;
    std::fprintf(output, "%3d%% completed.\r", static_cast<std::int32_t>(percentage));
    std::fflush(output);
}

std::int32_t CAssembler::StatusDump(std::FILE* stream) {
    std::FILE* const to = stream == nullptr ? output : stream;
    std::fputs("Korv Status Dump.\n----------------------------------------------------\n", to);
    std::fprintf(to, "   File depth:        %3d/%d.\n", fileDepth, maxFileDepth);
    std::fprintf(to, "   Conditional depth: %3d.\n", conditionDepth);
    std::fprintf(to, "   Total Linecount:   %3d.\n", totalLines);
    std::fprintf(to, "   Current filename:  %s\n",
                 currentFileName == nullptr ? "(none)" : currentFileName);
    std::fputs("Temp string info\n----------------\n", to);
    CtmpStringManager::DumpStatus(to);
    std::fputs("Identifier manager\n------------------\n", to);
    identifiers.DumpStatus(to);
    std::fputs("Binary target manager\n---------------------\n", to);
    binary.DumpStatus(to);
    return 0;
}

}  // namespace korv
