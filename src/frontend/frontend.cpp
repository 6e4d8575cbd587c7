// One run of korv-as: options, source, assembly, outputs. All outputs are opened before the first
// is given its name, so a failure leaves none, or the old ones.

#include "frontend/frontend.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "driver/assembler.h"
#include "driver/disk_store.h"
#include "expr/tmp_string.h"
#include "frontend/messages.h"
#include "frontend/options.h"
#include "frontend/outputs.h"
#include "frontend/run_watch.h"
#include "platform/platform.h"

namespace korv {
namespace {

struct Output {
    std::string name;
    std::string contents;
};

bool IsColored(ColorChoice choice) {
    const char* const noColor = std::getenv("NO_COLOR");
    return choice == ColorChoice::automatic
               ? platform::TakesColors(stderr) && (noColor == nullptr || *noColor == '\0')
               : choice == ColorChoice::always;
}

// All that `read` gives, a block at a time. False: that is longer than any source.
template <typename Read>
bool ReadAll(Read read, std::string* text) {
    constexpr std::size_t longest = 0x10000000;
    char block[65536];
    for (std::size_t count = 0; (count = read(block, sizeof block)) != 0;) {
        text->append(block, count);
        if (text->size() > longest) {
            return false;
        }
    }
    return true;
}

// Reads what cannot be read again for messages. Result: whether `text` is the source.
bool TakeSource(const std::string& source, std::string* text, bool* failed) {
    if (source == standardStream) {
        platform::MakeBinary(stdin);
        const auto read = [](char* to, std::size_t count) {
            return std::fread(to, 1, count, stdin);
        };
        *failed = !ReadAll(read, text) || std::ferror(stdin) != 0;
        return true;
    }
    if (platform::KindOf(source) != platform::FileKind::pipe) {
        return false;
    }
    platform::InputFile pipe;
    const auto read = [&pipe](char* to, std::size_t count) { return pipe.Read(to, count); };
    *failed = !pipe.Open(source) || !ReadAll(read, text) || pipe.Failed();
    return true;
}

bool IsSameFile(const std::string& a, const std::string& b) {
    return a == standardStream || b == standardStream ? a == b : platform::LeadToOneFile(a, b);
}

// Whether an output is a file that has been read, or two are one; says which.
bool AreRefused(const std::vector<Output>& outputs, const std::vector<std::string>& filesRead) {
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto isThis = [&](const std::string& name) {
            return IsSameFile(name, outputs[i].name);
        };
        if (std::ranges::any_of(filesRead, isThis)) {
            PrintFailure(outputs[i].name + " is a file that was read: nothing is written over it");
            return true;
        }
        const std::span<const Output> before(outputs.data(), i);
        if (std::ranges::any_of(before, isThis, &Output::name)) {
            PrintFailure(outputs[i].name + " is given for two outputs");
            return true;
        }
    }
    return false;
}

bool WriteToStandardOutput(const std::string& contents) {
    platform::MakeBinary(stdout);
    return std::fwrite(contents.data(), 1, contents.size(), stdout) == contents.size() &&
           std::fflush(stdout) == 0;
}

// The image, which is the first, gets its name last.
bool WriteAll(const std::vector<Output>& outputs, const platform::FileSet& filesRead) {
    std::vector<std::unique_ptr<platform::OutputFile>> files;
    for (const Output& output : outputs) {
        files.push_back(std::make_unique<platform::OutputFile>());
        if (output.name == standardStream) {
            continue;
        }
        if (!files.back()->Open(output.name, platform::OutputFile::Kind::target, filesRead)) {
            PrintFailure("cannot write " + output.name);
            return false;
        }
        files.back()->Write(output.contents.data(), output.contents.size());
    }
    for (std::size_t i = outputs.size(); i-- > 0;) {
        const bool isStream = outputs[i].name == standardStream;
        if (isStream ? !WriteToStandardOutput(outputs[i].contents) : !files[i]->Commit()) {
            PrintFailure("cannot write " + (isStream ? "standard output" : outputs[i].name));
            return false;
        }
    }
    return true;
}

// The disk, with directories to search, and a main file that may have been read before.
class Sources : public DiskStore {
  public:
    using DiskStore::DiskStore;

    void AddDirectory(std::string_view name) {
        if (std::string path = directory.FullPath(name).path; !path.empty()) {
            searched.push_back(std::move(path));
        }
    }
    CSourceFile Open(const std::string& path, std::uint32_t bufferSize) override {
        const std::string* const text = std::exchange(mainText, nullptr);
        return text != nullptr ? CSourceFile::OfText(*text) : DiskStore::Open(path, bufferSize);
    }

    const std::string* mainText = nullptr;  // not owned; null: the main file is read by its name

  private:
    platform::FoundPath Locate(std::string_view name) override {
        platform::FoundPath found = directory.FullPath(name);
        if (std::exchange(isMain, false) || found.path.empty() || found.isFile ||
            platform::IsAbsolutePath(name)) {
            return found;
        }
        for (const std::string& elsewhere : searched) {
            platform::FoundPath other = directory.FullPath(elsewhere + '/' + std::string(name));
            if (other.isFile) {
                return other;
            }
        }
        return found;
    }

    std::vector<std::string> searched;  // full paths
    bool isMain = true;                 // the next name is that of the main file
};

class Frontend {
  public:
    explicit Frontend(Options newOptions)
        : options(std::move(newOptions)),
          messages(stderr, IsColored(options.color), options.maxErrors),
          assembler(stderr),
          watch(&assembler, &messages,
                {options.warnings, options.defines, options.maxImage,
                 !options.listing.empty() || options.format == ImageFormat::hex,
                 options.format == ImageFormat::hex}) {}

    int Run() {
        std::string text;
        bool failed = false;
        if (TakeSource(options.source, &text, &failed)) {
            isFromStream = true;
            sources.mainText = &text;
            messages.texts.SetText(1, text);
            if (options.source == standardStream) {
                messages.SetStandardInput();
            }
        }
        if (failed) {
            PrintFailure("cannot read " + options.source);
            return statusFailure;
        }
        Assemble();
        const int status = Status();
        assembler.identifiers.ReleasePatches();  // they hold temporary strings
        CtmpStringManager::ReleaseAll();
        return status;
    }

  private:
    void Assemble() {
        for (const std::string& directory : options.includes) {
            sources.AddDirectory(directory);
        }
        assembler.sources = &sources;
        assembler.sourceName = options.source;
        assembler.flags.Set(RF_SYSTEM_IDS | (options.format == ImageFormat::bin ? RF_BINARY : 0));
        assembler.AssembleSource();
        watch.Finish();
    }

    int Status() {
        if (!watch.DefineFailure().empty()) {
            PrintFailure(watch.DefineFailure());
            return statusFailure;
        }
        if (watch.IsWithoutSource()) {
            PrintFailure("cannot read " + options.source);
            return statusFailure;
        }
        const std::vector<Output> outputs =
            messages.Errors() == 0 ? Outputs() : std::vector<Output>();
        messages.PrintCounts();
        if (messages.Errors() != 0) {
            return statusErrors;
        }
        const bool isDone =
            !AreRefused(outputs, ReadNames()) && WriteAll(outputs, sources.FilesRead());
        return isDone ? statusDone : statusFailure;
    }

    // What is to be written; warns of an image that has no single meaning.
    std::vector<Output> Outputs() {
        const std::string image = ImageBytes(&assembler);
        std::vector<Output> outputs = {{options.output, image}};
        if (options.format == ImageFormat::hex) {
            outputs[0].contents = HexText(image, watch.Blocks());
        }
        const auto add = [&outputs](const std::string& name, std::string contents) {
            outputs.push_back({name, std::move(contents)});
        };
        if (!options.depfile.empty()) {
            add(options.depfile, DependencyText(options.output, ReadNames()));
        }
        if (!options.listing.empty()) {
            const std::string bytes = options.format == ImageFormat::bin
                                          ? image.substr(assembler.LoadHeader().size())
                                          : image;
            add(options.listing, ListingText(bytes, watch.Records(), &messages));
        }
        if (!options.symbols.empty()) {
            add(options.symbols, SymbolText(assembler.identifiers, options.symbolFormat));
        }
        return outputs;
    }

    // The files that were read, by the names that a rule of a Makefile would have.
    std::vector<std::string> ReadNames() const {
        std::vector<std::string> names;
        for (const std::string& path : watch.Files()) {
            names.push_back(messages.TypedName(path));
        }
        names.erase(names.begin(), names.begin() + (isFromStream ? 1 : 0));
        return names;
    }

    Options options;
    Messages messages;
    CAssembler assembler;
    Sources sources{&assembler.flags};
    RunWatch watch;
    bool isFromStream = false;
};

}  // namespace

int RunFrontend(int argumentCount, char** arguments) {
    platform::OpenStandardStreams();
    Options options;
    if (const std::optional<int> status = ReadOptions(argumentCount, arguments, &options)) {
        return *status;
    }
    return Frontend(std::move(options)).Run();
}

}  // namespace korv
