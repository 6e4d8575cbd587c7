// One run of korv-as: options, source, analysis, messages, outputs. Each step uses the result of
// the previous one, and only the last one writes files.

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
#include "frontend/platform/platform.h"
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

void Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

int Fail(const std::string& sentence) {
    Print(FailureText(sentence, StyleOf(stderr, ColorChoice::never)));
    return statusFailure;
}

// Ends the run if memory is exhausted. Unfinished files are removed at exit.
int OnAllocationFailure(std::size_t) {
    std::fputs("korv-as: error: out of memory\n", stderr);
    std::exit(statusFailure);
}

// Reads standard input into `store` as the main file. Result: empty, or an error message.
std::string TakeStandardInput(FileStore* store) {
    if (platform::IsMissing(stdin)) {
        return "it is closed";
    }
    platform::MakeBinary(stdin);
    std::string bytes;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), stdin)) {
        if (bytes.size() + count > FileStore::longestFile) {
            return "File too large";
        }
        bytes.append(block.data(), count);
    }
    if (std::ferror(stdin) != 0) {
        return std::generic_category().message(errno);
    }
    store->SetText(store->FullPath(standardStream), bytes,
                   platform::IdentityOf(stdin).value_or(platform::FileIdentity()));
    return "";
}

Wanted WantedFor(const Options& options) {
    const bool isListed = !options.listing.empty();
    const bool isMeasured = !options.debug.empty() || options.summary;
    return {.statements = isListed || isMeasured || options.format == ImageFormat::hex,
            .names = isListed || isMeasured || !options.symbols.empty() ||
                     options.warnings.IsOn(Warning::unusedLabel),
            .useCounts = isListed};
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

// Adds to `outputs` the outputs of a run without errors, the image first. Result: empty, or why an
// output cannot be made.
std::string MakeOutputs(const Options& options, Analysis* analysis, std::vector<Output>* outputs) {
    const auto add = [outputs](const std::string& name, std::string text) {
        outputs->push_back({name, std::move(text), /*isText=*/true});
    };
    outputs->push_back({options.output, ImageText(*analysis, options.format)});
    if (!options.depfile.empty()) {
        Dependencies dependencies = DependenciesOf(*analysis, options.output);
        if (!dependencies.failure.empty()) {
            return dependencies.failure;
        }
        add(options.depfile, std::move(dependencies.text));
    }
    if (!options.symbols.empty()) {
        add(options.symbols, SymbolFileText(options, analysis));
    }
    if (!options.debug.empty()) {
        add(options.debug, SldText(*analysis));
    }
    if (options.summary) {
        const bool isJson = options.summary == SummaryFormat::json;
        add(standardStream, isJson ? SummaryJson(*analysis) : SummaryText(*analysis));
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
    std::vector<Output> outputs;
    std::string failure;
    if (analysis.errorCount == 0) {
        failure = MakeOutputs(options, &analysis, &outputs);
    }
    if (analysis.errorCount != 0) {
        outputs.clear();  // -W may turn a warning about an output into an error
    }
    if (!options.listing.empty()) {  // it contains the messages, so it is made after them
        outputs.push_back({options.listing, ListingText(analysis), /*isText=*/true});
    }
    Print(MessagesText(analysis, StyleOf(stderr, options.color)));
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
