// Runs korv-as on arbitrary bytes. The input has the same format as in fuzz_run.cpp, but with options instead of
// switches. All files and outputs are texts in memory. For comparison, the core alone assembles the same texts.

#include <algorithm>
#include <sstream>

#include "driver/assembler.h"
#include "expr/tmp_string.h"
#include "frontend/analyser.h"
#include "frontend/dependencies.h"
#include "frontend/file_store.h"
#include "frontend/image_formats.h"
#include "frontend/listing.h"
#include "frontend/message_printer.h"
#include "frontend/sld.h"
#include "frontend/summary.h"
#include "frontend/symbol_formats.h"
#include "fuzz.h"

namespace {
using korv::Analysis;
using korv::Options;
using Sources = std::vector<std::pair<std::string, std::string>>;  // names and contents

// A file that includes itself twice is read a thousand times, which is legal but slow. So at most 50 files are opened.
class ShortStore : public korv::FileStore {
  public:
    explicit ShortStore(const Sources& sources) : FileStore("/no-such-directory") {
        for (const auto& [name, contents] : sources) {
            SetText("/no-such-directory/" + name, contents);
            SetText("/no-such-directory/SUB/" + name, contents);
        }
    }
    korv::CSourceFile Open(const std::string& path, std::uint32_t bufferSize) override {
        return ++openings > 50 ? korv::CSourceFile("", 0) : FileStore::Open(path, bufferSize);
    }

  private:
    int openings = 0;
};

Options OptionsFrom(const std::string& line) {
    Options options;
    if (!TakeWords(WordsIn(line, 12, {"MAIN.KOR"}), &options).empty() || options.request != korv::Request::assemble) {
        options = {};
        (void)TakeWords({"MAIN.KOR"}, &options);
    }
    options.source = "MAIN.KOR";
    options.maxImage = std::min<std::uint64_t>(options.maxImage, 100000);
    options.lineLength = std::min<std::uint64_t>(options.lineLength, 100000);
    options.maxErrors = options.maxErrors == 0 ? 5000 : options.maxErrors;
    return options;
}

void CheckPlace(const Analysis& analysis, const korv::Place& place) {
    if (place.IsSomewhere()) {
        const auto& text = *analysis.files.at(static_cast<std::size_t>(place.file)).text;
        Require(place.line >= 1 && place.line <= text.LineCount(), "line of a place");
        Require(place.column + std::size_t{place.length} <= text.Line(place.line).size(), "column of a place");
    }
}

void CheckData(const Analysis& analysis) {
    for (const korv::Message& message : analysis.messages) {
        CheckPlace(analysis, message.place);
        for (const korv::Related& related : message.related) {
            CheckPlace(analysis, related.place);
        }
        for (const korv::Edit& edit : message.edits) {
            CheckPlace(analysis, edit.place);
        }
    }
    for (const korv::Name& name : analysis.names) {
        CheckPlace(analysis, name.definition);
        for (const korv::Place& use : name.uses) {
            CheckPlace(analysis, use);
        }
    }
    std::size_t bytes = 0, blockBytes = 0;
    for (const korv::Statement& statement : analysis.statements) {
        Require(statement.offset == bytes, "offset of a statement");
        bytes += statement.count;
    }
    for (const korv::Block& block : analysis.blocks) {
        blockBytes += block.count;
    }
    if (analysis.failure.empty()) {
        Require(bytes == analysis.image.size() && blockBytes == bytes, "bytes of the statements");
    }
}

void MakeOutputs(const Options& options, const Analysis& analysis) {
    std::size_t size = korv::MessagesText(analysis, {.isColored = true, .isTerminal = true}).size();
    size += korv::MessagesText(analysis, {}).size() + korv::ListingText(analysis).size();
    if (analysis.errorCount == 0) {
        size += korv::ComImage(analysis).size() + korv::HexImage(analysis).size() + korv::SldText(analysis).size();
        size += korv::SummaryText(analysis).size() + korv::SummaryJson(analysis).size();
        size += korv::DependenciesOf(analysis, options.output).text.size();
        size += korv::BinImage(analysis).size();
        for (const korv::SymbolFormatRow& row : korv::SymbolFormats()) {
            size += korv::SymbolText(analysis, row.format).text.size();
        }
    }
    Require(size != 0, "no output");
}

// Compares `analysis` with the result of the core for the same files.
void CompareWithCore(const Options& options, const Sources& sources, const Analysis& analysis) {
    ShortStore store(sources);
    korv::CAssembler assembler(stderr);
    assembler.sources = &store;
    assembler.sourceName = options.source;
    assembler.maxImage = static_cast<std::uint32_t>(options.maxImage);
    assembler.SetLineBufferSize(static_cast<std::int32_t>(options.lineLength));
    assembler.flags.Set((options.hasFreeNames ? 0 : korv::RF_SYSTEM_IDS) |
                        (options.format == korv::ImageFormat::bin ? korv::RF_BINARY : 0));
    assembler.AssembleSource();
    if (analysis.errorCount == 0) {
        Require(assembler.errors.Count() == 0, "an error of the core is missing");
        Require(std::ranges::equal(assembler.binary.Bytes(), analysis.image), "another image than the core's");
    }
    assembler.identifiers.ReleasePatches();
    korv::CtmpStringManager::ReleaseAll();
}

}  // namespace

extern "C" {
const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=512";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream input(std::string(data, data + size));
    std::string line;
    Sources sources = {{"MAIN.KOR", ""}, {"B.KOR", ""}, {"C.KOR", ""}, {"DAT", ""}};
    std::getline(input, line);
    for (auto& [name, contents] : sources) {
        std::getline(input, contents, '\xFE');
    }
    const Options options = OptionsFrom(line);
    ShortStore store(sources);
    const Analysis analysis = korv::Analyse(options, &store, {.statements = true, .names = true, .uses = true});
    Require(analysis.failure.empty() || !options.defines.empty(), "no result");
    CheckData(analysis);
    if (analysis.failure.empty()) {
        MakeOutputs(options, analysis);
        ShortStore again(sources);  // the choice of parts to collect must affect nothing else
        const Analysis least = korv::Analyse(options, &again, {});
        Require(least.image == analysis.image, "the image depends on what is wanted");
        Require(least.messages.size() == analysis.messages.size() || !options.debug.empty() ||
                    options.format == korv::ImageFormat::hex || options.warnings.IsOn(korv::Warning::unusedLabel),
                "the messages depend on what is wanted");
    }
    if (options.defines.empty()) {
        CompareWithCore(options, sources, analysis);
    }
    return 0;
}
}
