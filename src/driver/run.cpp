// The run, from its first step to its last.

#include <cstdio>
#include <ctime>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "driver/command_line.h"
#include "driver/run_observer.h"
#include "expr/tmp_string.h"
#include "platform/platform.h"

namespace korv {

CAssembler::CAssembler(std::FILE* stream, std::int32_t maxMessages)
    : errors(maxMessages, ML_ERROR, &fileNames),
      warnings(maxMessages, ML_WARNING, &fileNames),
      output(stream),
      binary(/*initialSize=*/4096, stream),
      identifiers(this),
      startTime(std::time(nullptr)) {}

CAssembler::~CAssembler() {
    if (flags.Has(RF_TIME)) {
        std::fprintf(output, "[Korv] System has been online for %1.0f seconds.\n",
                     std::difftime(std::time(nullptr), startTime));
    }
    std::fflush(nullptr);
}

std::int32_t CAssembler::RunFromCommandLine(std::string_view source, std::string_view target,
                                            std::string_view flagString) {
    sourceName = source.empty() ? "Main.Kor" : source;
    targetName = target;
    flags.Set(FlagsFrom(flagString, output));
    return Run();
}

std::int32_t CAssembler::Run() {
    if (targetName.empty()) {  // in the directory of the source, with its name
        const platform::PathParts parts = platform::SplitPath(sourceName);
        targetName = parts.directory;
        targetName += parts.baseName;
        targetName += flags.Has(RF_BINARY) ? ".bin" : ".com";
    }
    if (sourceName.empty()) {
        errors.Report(MSG_NO_SOURCE_NAME, noText);
    } else if (sourceName == targetName) {
        errors.Report(MSG_SOURCE_IS_TARGET, noText);
        disk.Keep(sourceName);  // a report of that name must not overwrite it
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

    identifiers.ReleasePatches();  // patches hold temporary strings
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
    if (flags.Has(RF_BINARY)) {
        location = binaryStart;
    }
    if (observer != nullptr) {
        observer->OnStart();
    }
    std::fflush(output);  // a console event prints unbuffered, and must appear after this

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
