// Parses the command line using the option table. The command line follows the rules of GNU
// programs: options and the source in any order, combined letters ("-wl list"), "--name=value" or
// "--name value", and only files after "--".

#include "frontend/options.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "frontend/argument_files.h"
#include "frontend/nearest.h"
#include "frontend/option_table.h"
#include "frontend/terminal_text.h"
#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::string_view seeHelp = "; --help lists the options";

const OptionRow* RowOf(char letter) {
    const auto row = std::ranges::find(optionTable, letter, &OptionRow::letter);
    return row == optionTable.end() ? nullptr : &*row;
}

const OptionRow* RowOf(std::string_view name) {
    const auto row = std::ranges::find(optionTable, name, &OptionRow::name);
    return row == optionTable.end() || name.empty() ? nullptr : &*row;
}

// The name in "--name" and "--name=value".
std::string_view LongName(std::string_view word) {
    return word.substr(2, word.find('=') - 2);
}

bool IsOption(std::string_view word) {
    return word == "--" || (word.starts_with("--")
                                ? RowOf(LongName(word)) != nullptr
                                : word.size() > 1 && word[0] == '-' && RowOf(word[1]) != nullptr);
}

// The option that the misspelt `name` probably means; empty if none is close. `name` has no dashes.
std::string Meant(std::string_view name) {
    std::vector<std::string_view> names;
    std::ranges::transform(optionTable, std::back_inserter(names), &OptionRow::name);
    std::string_view meant = NearWords(names).Find(name);
    for (const OptionRow& row : optionTable) {
        if (name.size() == 1 && Raised(row.letter) == Raised(name[0])) {
            return {'-', row.letter};
        }
        if (meant.empty() && name.size() > 1 && row.name.starts_with(name)) {
            meant = row.name;
        }
    }
    return meant.empty() ? "" : "--" + std::string(meant);
}

std::string Unknown(std::string_view word) {
    const std::string_view typed = word.substr(0, word.find('='));
    const std::string meant =
        Meant(typed.substr(std::min(typed.find_first_not_of('-'), typed.size())));
    return "unknown option " + Quoted(typed) +
           (meant.empty() ? std::string(seeHelp) : "; did you mean " + Quoted(meant) + "?");
}

class Parser {
  public:
    Parser(const std::vector<std::string>& words, Options* options)
        : words(words), options(options) {}

    // Result, here and below: empty, or an error message.
    std::string Parse() {
        std::string failure;
        bool areOptionsOver = false;
        for (; at < words.size() && failure.empty() && options->request == Request::assemble;
             ++at) {
            const std::string_view word = words[at];
            if (!areOptionsOver && word == "--") {
                areOptionsOver = true;
            } else if (areOptionsOver || word.size() < 2 || word[0] != '-') {
                failure = TakeSource(word);
            } else {
                failure = word.starts_with("--") ? TakeLong(word) : TakeLetters(word);
            }
        }
        return failure;
    }

  private:
    std::string TakeSource(std::string_view word) {
        if (word.empty()) {
            return "the name of the source is empty";
        }
        if (!options->source.empty()) {
            return "one source file at a time: " + Quoted(options->source) + " and " +
                   Quoted(word) + " are given";
        }
        options->source = word;
        return "";
    }

    std::string TakeLong(std::string_view word) {
        const std::string_view name = LongName(word);
        const OptionRow* const row = RowOf(name);
        if (row == nullptr) {
            return Unknown(word);
        }
        const std::size_t end = 2 + name.size();
        return Take(*row, word.substr(0, end),
                    end < word.size() ? std::optional(word.substr(end + 1)) : std::nullopt);
    }

    std::string TakeLetters(std::string_view word) {
        std::string failure;
        for (std::size_t i = 1; i < word.size() && failure.empty(); ++i) {
            const OptionRow* const row = RowOf(word[i]);
            const std::string spelled = {'-', word[i]};
            if (row == nullptr) {
                return Unknown(i == 1 ? word : std::string_view(spelled));
            }
            if (row->NeedsArgument()) {
                const std::string_view rest = word.substr(i + 1);
                return Take(*row, spelled, rest.empty() ? std::nullopt : std::optional(rest));
            }
            failure = Take(*row, spelled, std::nullopt);
        }
        return failure;
    }

    // `attached` is the argument if it is in the same word.
    std::string Take(const OptionRow& row, std::string_view spelled,
                     std::optional<std::string_view> attached) {
        if (row.argument.empty() && attached) {
            return std::string(spelled) + " takes no argument: " + Quoted(*attached);
        }
        if (row.NeedsArgument() && !attached) {
            // A file name that looks like an option is probably a mistake. "./-o" or "--listing=-o"
            // works.
            if (at + 1 == words.size() || IsOption(words[at + 1])) {
                return "missing " + std::string(row.argument) + " after " + Quoted(spelled);
            }
            attached = words[++at];
        }
        if (row.NeedsArgument() && attached->empty()) {
            return "empty " + std::string(row.argument) + " after " + Quoted(spelled);
        }
        const std::string failure = row.take(row, attached.value_or(""), options);
        return failure.empty() ? "" : std::string(spelled) + ": " + failure;
    }

    const std::vector<std::string>& words;
    std::size_t at = 0;
    Options* options;
};

// The extension of a format is its name on the command line.
std::string ExtensionOf(ImageFormat format) {
    return "." + std::string(RowOf("format")->Choices()[static_cast<std::size_t>(format)]);
}

ImageFormat FormatOf(std::string_view name) {
    const std::string_view extension = platform::SplitPath(name).extension;
    for (const ImageFormat format : {ImageFormat::bin, ImageFormat::hex}) {
        if (std::ranges::equal(extension, ExtensionOf(format), {}, Raised, Raised)) {
            return format;
        }
    }
    return ImageFormat::com;
}

// Completes the options that depend on others, and checks them.
std::string Complete(Options* options) {
    if (options->source.empty()) {
        return "no source file is given" + std::string(seeHelp);
    }
    if (options->isQuiet) {
        options->warnings.TakeNone();
    }
    options->format = options->wantedFormat.value_or(FormatOf(options->output));
    for (std::string* const name : {&options->output, &options->depfile, &options->listing,
                                    &options->symbols, &options->debug}) {
        if (*name == "/dev/stdout") {  // opening it as a file could lose other text written there
            *name = standardStream;
        }
        if (options->summary && *name == standardStream) {
            return "--summary needs standard output for itself; give the other output a name";
        }
    }
    if (options->output.empty()) {
        if (options->source == standardStream) {
            return "standard input has no name, so the image needs one; use -o";
        }
        const platform::PathParts parts = platform::SplitPath(options->source);
        options->output = std::string(parts.directory) + std::string(parts.baseName) +
                          ExtensionOf(options->format);
    }
    if (!options->depfile.empty() && options->output == standardStream) {
        return "dependencies need a target with a name; use -o";
    }
    return "";
}

// Appends `left` and, from column 34 on, `right`, in lines of at most 80 characters.
void AddHelp(std::string_view left, std::string_view right, std::string* text) {
    constexpr std::size_t column = 34;
    constexpr std::size_t width = 80 - column;
    std::string start(left);
    if (start.size() > column - 2) {
        *text += start + "\n";
        start.clear();
    }
    while (!right.empty()) {
        std::size_t end = right.size();
        if (end > width) {
            end = right.rfind(' ', width);
        }
        start.resize(column, ' ');
        *text += start.append(right.substr(0, end)) + "\n";
        start.clear();
        right.remove_prefix(std::min(end + 1, right.size()));
    }
}

}  // namespace

std::string TakeWords(const std::vector<std::string>& words, Options* options) {
    std::string failure = Parser(words, options).Parse();
    if (failure.empty() && options->request == Request::assemble) {
        failure = Complete(options);
    }
    return failure;
}

std::string ReadOptions(int argumentCount, char** arguments, Options* options) {
    std::vector<std::string> words(arguments + std::min(argumentCount, 1),
                                   arguments + argumentCount);
    const std::string failure = ExpandArgumentFiles(&words);
    return failure.empty() ? TakeWords(words, options) : failure;
}

std::string HelpText() {
    std::string text =
        "Usage: korv-as [OPTION]... FILE\n"
        "Assembles the Z80 source FILE, or standard input if it is -, into one image.\n\n";
    for (const OptionRow& row : optionTable) {
        std::string left = row.letter == '\0' ? "    " : std::string{' ', ' ', '-', row.letter};
        if (!row.name.empty()) {
            left.append(row.letter == '\0' ? "  --" : ", --").append(row.name);
        }
        left.append(row.NeedsArgument() ? " " : "").append(row.argument);
        AddHelp(left, row.help, &text);
    }
    AddHelp("  @FILE",
            "take further words from FILE, quoted as in a shell; # begins a comment line", &text);
    text += "\nWarnings, for -W; those with * are on by default:\n";
    for (const WarningRow& row : warningTable) {
        AddHelp((row.isOn ? "  * " : "    ") + std::string(row.name), row.meaning, &text);
    }
    return text +
           "\nExit status: 0 assembled; 1 errors in the source; 2 wrong use, or a file that\n"
           "cannot be read or written.\n";
}

std::string VersionText() {
    return "korv-as " KORV_VERSION "\n";
}

}  // namespace korv
