// One run of korv-as: options, source, analysis, messages, outputs. Each step works on the result
// of the one before it, and only the last one writes files.

#include "frontend/frontend.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "frontend/analyser.h"
#include "frontend/dependencies.h"
#include "frontend/file_store.h"
#include "frontend/image_formats.h"
#include "frontend/listing.h"
#include "frontend/message_printer.h"
#include "frontend/options.h"
#include "frontend/output_set.h"
#include "frontend/program_checks.h"
#include "frontend/sld.h"
#include "frontend/summary.h"
#include "frontend/symbol_formats.h"
#include "platform/platform.h"

namespace korv {
namespace {

TextStyle StyleOf(std::FILE* stream, ColorChoice choice) {
    const char* const noColor = std::getenv("NO_COLOR");
    const bool isColored =
        choice == ColorChoice::automatic
            ? platform::TakesColors(stream) && (noColor == nullptr || *noColor == '\0')
            : choice == ColorChoice::always;
    return {.isColored = isColored, .isTerminal = platform::IsTerminal(stream)};
}

void Print(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

int Fail(const std::string& sentence) {
    Print(stderr, FailureText(sentence, StyleOf(stderr, ColorChoice::never)));
    return statusFailure;
}

// Ends the run when there is no memory for it. Unfinished files are removed at the exit.
int OnAllocationFailure(std::size_t) {
    std::fputs("korv-as: error: out of memory\n", stderr);
    std::exit(statusFailure);
}

// Reads standard input into `store`. Result: why that fails; empty: it is the main file.
std::string TakeStandardInput(FileStore* store) {
    if (platform::IsMissing(stdin)) {
        return "it is closed";
    }
    platform::MakeBinary(stdin);
    std::string bytes;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), stdin)) {
        bytes.append(block.data(), count);
        if (bytes.size() > FileStore::longestFile) {
            return "File too large";
        }
    }
    if (std::ferror(stdin) != 0) {
        return std::generic_category().message(errno);
    }
    platform::FileIdentity identity;
    const bool isFile = platform::IdentityOf(stdin, &identity);
    store->SetText(store->FullPath(standardStream), std::move(bytes),
                   isFile ? identity : platform::FileIdentity());
    return "";
}

Wanted WantedFor(const Options& options) {
    const bool isListed = !options.listing.empty();
    const bool isDescribed = isListed || !options.debug.empty() || options.summary.has_value();
    return {.statements = isDescribed || options.format == ImageFormat::hex,
            .names = isDescribed || !options.symbols.empty() ||
                     options.warnings.IsOn(Warning::unusedLabel),
            .uses = isListed};
}

std::string ImageText(const Analysis& analysis, ImageFormat format) {
    switch (format) {
        case ImageFormat::com:
            return ComImage(analysis);
        case ImageFormat::bin:
            return BinImage(analysis);
        case ImageFormat::hex:
            return HexImage(analysis);
    }
    return "";
}

// What is to be written; the image is the first. A source with errors leaves only a listing.
// Result: why that cannot be; empty: `outputs` is complete.
std::string MakeOutputs(const Options& options, const Analysis& analysis,
                        std::vector<Output>* outputs) {
    const bool isWhole = analysis.errorCount == 0;
    if (isWhole) {
        outputs->push_back({options.output, ImageText(analysis, options.format)});
    }
    if (isWhole && !options.depfile.empty()) {
        Dependencies dependencies = DependenciesOf(analysis, options.output);
        if (!dependencies.failure.empty()) {
            return dependencies.failure;
        }
        outputs->push_back({options.depfile, std::move(dependencies.text), /*isText=*/true});
    }
    if (!options.listing.empty()) {
        outputs->push_back({options.listing, ListingText(analysis), /*isText=*/true});
    }
    if (isWhole && !options.symbols.empty()) {
        outputs->push_back(
            {options.symbols, SymbolText(analysis, options.symbolFormat), /*isText=*/true});
    }
    if (isWhole && !options.debug.empty()) {
        outputs->push_back({options.debug, SldText(analysis), /*isText=*/true});
    }
    if (isWhole && options.summary) {
        const bool isJson = options.summary == SummaryFormat::json;
        outputs->push_back({standardStream, isJson ? SummaryJson(analysis) : SummaryText(analysis),
                            /*isText=*/true});
    }
    return "";
}

int Assemble(const Options& options) {
    FileStore store;
    for (const std::string& directory : options.includes) {
        store.AddSearchDirectory(directory);
    }
    if (options.source == standardStream) {
        if (const std::string reason = TakeStandardInput(&store); !reason.empty()) {
            return Fail("cannot read standard input: " + reason);
        }
    }
    Analysis analysis = Analyse(options, &store, WantedFor(options));
    if (!analysis.failure.empty()) {
        return Fail(analysis.failure);
    }
    AddProgramWarnings(options, &analysis);
    std::vector<Output> outputs;
    std::string failure = MakeOutputs(options, analysis, &outputs);
    Print(stderr, MessagesText(analysis, StyleOf(stderr, options.color)));
    if (failure.empty()) {
        failure = WriteOutputs(outputs, store.Identities());
    }
    if (!failure.empty()) {
        return Fail(failure);
    }
    return analysis.errorCount != 0 ? statusErrors : statusDone;
}

}  // namespace

int RunFrontend(int argumentCount, char** arguments) {
    platform::OpenStandardStreams();
    const auto previousHook = platform::SetAllocationFailureHook(OnAllocationFailure);
    Options options;
    int status = statusDone;
    std::string failure = ReadOptions(argumentCount, arguments, &options);
    if (failure.empty() && options.request == Request::assemble) {
        status = Assemble(options);
    } else if (failure.empty()) {
        const bool isHelp = options.request == Request::printHelp;
        failure = WriteOutputs({{standardStream, isHelp ? HelpText() : VersionText()}}, {});
    }
    if (!failure.empty()) {
        status = Fail(failure);
    }
    platform::SetAllocationFailureHook(previousHook);
    return status;
}

}  // namespace korv
