#include "frontend/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <map>

#include "frontend/messages.h"
#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr const char* version = "korv-as " KORV_VERSION;

template <typename Choice>
using Words = std::map<std::string, Choice>;

const Words<ImageFormat> formats = {
    {"com", ImageFormat::com}, {"bin", ImageFormat::bin}, {"hex", ImageFormat::hex}};
const Words<SymbolFormat> symbolFormats = {{"equ", SymbolFormat::equ}, {"sym", SymbolFormat::sym}};
const Words<ColorChoice> colors = {{"auto", ColorChoice::automatic},
                                   {"always", ColorChoice::always},
                                   {"never", ColorChoice::never}};

std::string WarningHelp() {
    std::string text = "Warnings, for -W (those with * are on):\n";
    for (const WarningRow& row : warningTable) {
        std::string name = (row.isOn ? "  * " : "    ") + std::string(row.name);
        name.resize(std::max<std::size_t>(name.size() + 1, 30), ' ');
        text += name.append(row.meaning) + "\n";
    }
    return text +
           "\nExit status: 0 assembled, 1 errors in the source, 2 wrong use or a file that "
           "cannot be read or written.";
}

// The format whose extension `name` has.
std::optional<ImageFormat> FormatOf(const std::string& name) {
    std::string extension(platform::SplitPath(name).extension);
    std::ranges::transform(extension, extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    });
    const auto found = extension.empty() ? formats.end() : formats.find(extension.substr(1));
    return found == formats.end() ? std::nullopt : std::optional(found->second);
}

// An option with one word of a few; the last one given counts.
template <typename Choice>
CLI::Option* AddChoice(CLI::App* app, const char* name, const Words<Choice>& words, Choice* choice,
                       const char* help) {
    const auto take = [&words, choice, name](const std::string& word) {
        const auto found = words.find(word);
        if (found == words.end()) {
            std::string all;
            for (const auto& row : words) {
                all += (all.empty() ? "" : ", ") + row.first;
            }
            throw CLI::ValidationError(name, word + " is none of " + all);
        }
        *choice = found->second;
    };
    return app->add_option_function<std::string>(name, take, help)->take_last();
}

// An option with a number; the last one given counts.
void AddNumber(CLI::App* app, const char* name, std::uint64_t* number, const char* help) {
    const auto isNumber = [](const std::string& word) {
        const bool isOne = !word.empty() && word.size() <= 18 &&
                           std::ranges::all_of(word, [](char c) { return HasClass(c, CC_DIGIT); });
        return isOne ? "" : word + " is no number";
    };
    app->add_option(name, *number, help)->take_last()->check(isNumber);
}

// What depends on several words. Result: what is wrong with them; empty: nothing.
std::string Complete(Options* options, bool isFormatGiven) {
    if (options->source.empty()) {
        return "no source is given; --help tells the options";
    }
    if (!isFormatGiven) {
        options->format = FormatOf(options->output).value_or(ImageFormat::com);
    }
    for (std::string* const name :
         {&options->output, &options->depfile, &options->listing, &options->symbols}) {
        if (*name == "/dev/stdout") {  // what else goes there stays
            *name = standardStream;
        }
    }
    if (options->output.empty()) {
        if (options->source == standardStream) {
            return "standard input has no name to derive that of the image from: give -o";
        }
        const platform::PathParts parts = platform::SplitPath(options->source);
        const auto named =
            std::ranges::find(formats, options->format, [](const auto& row) { return row.second; });
        options->output =
            std::string(parts.directory) + std::string(parts.baseName) + "." + named->first;
    }
    if (!options->depfile.empty() && options->output == standardStream) {
        return "dependencies need a target with a name: give -o";
    }
    return "";
}

}  // namespace

std::optional<int> ReadOptions(int argumentCount, char** arguments, Options* options) {
    CLI::App app("Assembles one source for the Z80 into one image.", "korv-as");
    std::vector<std::string> warningWords;
    bool isQuiet = false;
    const auto list = [&app](const char* name, std::vector<std::string>* words, const char* help) {
        return app.add_option(name, *words, help)->allow_extra_args(false);
    };
    app.set_help_flag("--help", "print this");
    app.set_version_flag("--version", version, "print the version");
    app.footer(WarningHelp());
    app.get_formatter()->column_width(34);
    app.add_option("FILE", options->source, "the source; - is standard input");
    app.add_option("-o", options->output,
                   "the image; - is standard output; default: beside the source");
    const auto* const format =
        AddChoice(&app, "-f,--format", formats, &options->format,
                  "com, bin (with load header) or hex (Intel HEX); default: by the extension of "
                  "-o, else com");
    list("-D", &options->defines, "NAME or NAME=EXPRESSION: a name defined before the first line");
    list("-I", &options->includes, "DIR: where INCLUDE and BINCLUDE look too");
    app.add_option("-M,--depfile", options->depfile, "write dependencies for make and ninja");
    app.add_option("-l,--listing", options->listing, "write a listing");
    app.add_option("--symbols", options->symbols, "write names and values");
    AddChoice(&app, "--symbol-format", symbolFormats, &options->symbolFormat,
              "equ (assembles again) or sym (BANK:ADDR NAME)");
    list("-W", &warningWords, "NAME, no-NAME, error, error=NAME: see below");
    app.add_flag("-w", isQuiet, "no warnings");
    AddNumber(&app, "--max-errors", &options->maxErrors, "print no more; 0: all; default 100");
    AddNumber(&app, "--max-image", &options->maxImage, "longest image in bytes; default 65536");
    AddChoice(&app, "--color", colors, &options->color, "auto, always or never");
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& end) {
        if (end.get_exit_code() == 0) {
            return app.exit(end);
        }
        PrintFailure(std::string(end.what()) + "; --help tells the options");
        return statusFailure;
    }
    for (const std::string& word : warningWords) {
        if (!options->warnings.Take(word)) {
            PrintFailure("-W " + word + ": there is no such warning; --help tells them");
            return statusFailure;
        }
    }
    if (isQuiet) {
        options->warnings.TakeNone();
    }
    const std::string failure = Complete(options, format->count() > 0);
    if (!failure.empty()) {
        PrintFailure(failure);
        return statusFailure;
    }
    return std::nullopt;
}

}  // namespace korv
