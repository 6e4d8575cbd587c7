// The run, from its first step to its last.

#include <cstdio>
#include <ctime>
#include <utility>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "driver/command_line.h"
#include "driver/run_observer.h"
#include "expr/tmp_string.h"
#include "platform/platform.h"
#include "symbols/system_identifiers.h"

namespace korv {
namespace {

constexpr std::int32_t bucketCount = 211;
constexpr std::uint32_t initialBinarySize = 4096;
constexpr std::string_view defaultSource = "Main.Kor";

}  // namespace

CAssembler::CAssembler(std::FILE* stream, std::int32_t maxMessages)
    : errors(maxMessages),
      warnings(maxMessages),
      output(stream),
      binary(initialBinarySize, stream),
      identifiers(stream, bucketCount),
      startTime(std::time(nullptr)) {
    identifiers.SetLists(&errors, &warnings);
    identifiers.SetFileNames(&fileNames);
    identifiers.SetTarget(&binary);
    identifiers.SetAssembler(this);
    errors.SetFileNames(&fileNames);
    warnings.SetFileNames(&fileNames);
    warnings.SetKind(ML_WARNING);
}

CAssembler::~CAssembler() {
    if (flags.Has(RF_TIME)) {
        std::fprintf(output, "[Korv] System has been online for %1.0f seconds.\n",
                     std::difftime(std::time(nullptr), startTime));
    }
    std::fflush(nullptr);
}

std::uint32_t CAssembler::SetFileBufferSize(std::int32_t n) {
    return std::exchange(fileBufferSize, n > 0 ? static_cast<std::uint32_t>(n) : fileBufferSize);
}

std::int32_t CAssembler::SetLineBufferSize(std::int32_t n) {
    return std::exchange(lineBufferSize, n > 0 ? n : lineBufferSize);
}

std::int32_t CAssembler::RunFromCommandLine(std::string_view source, std::string_view target,
                                            std::string_view flagString) {
    sourceName = source.empty() ? defaultSource : source;
    targetName = target;
    flags.Set(FlagsFrom(flagString, output));
    return Run();
}

std::int32_t CAssembler::Run() {
    if (targetName.empty()) {  // it is named after the source, and stands beside it
        const platform::PathParts parts = platform::SplitPath(sourceName);
        targetName = parts.directory;
        targetName += parts.baseName;
        targetName += flags.Has(RF_BINARY) ? ".bin" : ".com";
    }
    if (sourceName.empty()) {
        errors.Report(MSG_NO_SOURCE_NAME, noText);
    } else if (sourceName == targetName) {
        errors.Report(MSG_SOURCE_IS_TARGET, noText);
        disk.Keep(sourceName);  // a report may have that name too
    } else {
        AssembleSource();
    }

    ReportErrors();
    if (!flags.Has(RF_NO_WARNINGS)) {
        ReportWarnings();
    }
    if (flags.Has(RF_LABELS)) {
        WriteLabelFile();
    }
    if (flags.Has(RF_MESSAGES)) {
        ReportCounts();
    }
    WriteTarget();

    identifiers.ReleasePatches();  // they hold temporary strings
    CtmpStringManager::ReleaseAll();
    std::fflush(nullptr);
    return 0;
}

void CAssembler::Observe(RunObserver* newObserver) {
    observer = newObserver;
    errors.SetReceiver(newObserver);
    warnings.SetReceiver(newObserver);
    flags.Set(RF_OBSERVED);
}

void CAssembler::AssembleSource() {
    if (flags.Has(RF_MESSAGES)) {
        PrintTexts(output, "[Korv] Transforming '%' into '%'.\n", {sourceName, targetName});
    }
    targetDirectory = platform::SplitPath(targetName).directory;
    if (flags.Has(RF_DEBUG) && flags.Has(RF_DEBUG_SYMBOLS)) {
        identifiers.SetLog(&debugStream);
    }
    LoadSystemIdentifiers();
    if (flags.Has(RF_SYSTEM_IDS)) {
        LoadSystemIdentifiersFromString(reservedWords);
    }
    if (flags.Has(RF_BINARY)) {
        location = binaryStart;
    }
    if (observer != nullptr) {
        observer->OnStart();
    }
    std::fflush(output);  // what a break event prints goes past the buffer, and belongs after this

    const std::int32_t status = AssembleIncludeFile(sourceName);
    if (status != 0) {
        errors.Report(status, status == MSG_CANNOT_OPEN ? sourceName : noText);
    }
    identifiers.ReportUnresolved();
    if (flags.Has(RF_ABORT)) {
        errors.Report(MSG_ABORTED, noText);
    }
    if (flags.Has(RF_DEBUG)) {
        WriteDebugFile();
    }
}

}  // namespace korv
