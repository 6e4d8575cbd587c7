#include "driver/command_line.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

enum class Kind { onOff, trace, fileBuffer, lineBuffer, wait, help };

struct Switch {
    std::string_view word;  // in upper case; selects the switch. If the switch has bits, the last
                            // character is its letter in the flag string
    Kind kind;
    const char* form = nullptr;  // as shown in the help; null: not shown
    const char* help = nullptr;
    std::uint32_t bits = 0;    // of the flags word: set by the upper-case letter in the flag
                               // string, cleared by the lower-case one
    std::uint32_t alsoOn = 0;  // set with `bits`, but not cleared with them
};

// In the order of the help; a word comes after any other word that it begins with.
// clang-format off
constexpr Switch switches[] = {
    {"D", Kind::onOff, "/d[+|-]", "Enable/disable debug.out file.", RF_DEBUG},
    {"DS", Kind::trace, nullptr, nullptr, RF_DEBUG_SYMBOLS, RF_DEBUG},
    {"L", Kind::onOff, "/l[+|-]", "Enable/disable label.out file.", RF_LABELS},
    {"P", Kind::onOff, "/p[+|-]", "Enable/disable progress meter.", RF_PROGRESS},
    {"M", Kind::onOff, "/m[+|-]", "Enable/disable messages.", RF_MESSAGES},
    {"T", Kind::onOff, "/t[+|-]", "Enable/disable time display.", RF_TIME},
    {"B", Kind::onOff, "/b[+|-]", "Enable/disable binary file output.", RF_BINARY},
    {"W", Kind::onOff, "/w[+|-]", "Enable/disable warning suppression.", RF_NO_WARNINGS},
    {"I", Kind::onOff, "/i[+|-]", "Enable/disable system identifier loading.", RF_SYSTEM_IDS},
    {"F", Kind::fileBuffer, "/f:<n>", "Specify filebuffer size in bytes."},
    {"LINELEN:", Kind::lineBuffer, "/linelen:<n>", "Specify linebuffer size in bytes."},
    {"WAIT", Kind::wait, "/wait", "Enable wait when KORV is done."},
    {"?", Kind::help, "/? /h", "Print this help message."},
    {"H", Kind::help},
};
// clang-format on

// The letters of the flag string, in order.
constexpr std::string_view letters = "DSLPTMWBI";
static_assert(letters.size() == sizeof CommandLine::flagString - 1);

// The switch whose word is the longest prefix of `word`; null for none. `word` is in upper case and
// has no leading "/" or "-". /wait must be the whole word.
const Switch* FindSwitch(std::string_view word) {
    const Switch* found = nullptr;
    for (const Switch& row : switches) {
        if (word.starts_with(row.word) && (row.kind != Kind::wait || word == row.word)) {
            found = &row;
        }
    }
    return found;
}

void Put(const Switch& row, bool isOn, CommandLine* result) {
    const char letter = row.word.back();
    result->flagString[letters.find(letter)] =
        isOn ? letter : static_cast<char>(letter + ('a' - 'A'));
}

// Reads the number at the start of `text`: optional blanks, an optional sign, digits. The number is
// 0 if there are no digits, and is clamped to 32 bits. Prints a message unless it is positive.
std::int32_t ReadSize(const char* text, const char* what, std::string_view word) {
    text = SkipBlanks(text);
    // A line end is not a blank here, but `strtoll` would skip it.
    const long long number = *text < ' ' ? 0 : std::strtoll(text, nullptr, 10);
    using Limits = std::numeric_limits<std::int32_t>;
    const auto size = std::clamp<long long>(number, Limits::min(), Limits::max());
    if (size <= 0) {
        PrintTexts(stdout, "% illegal %! (%)\n", {std::to_string(size), what, word});
    }
    return static_cast<std::int32_t>(size);
}

// Reads the switch `typed`, which is at `place` in the argument vector.
void ParseSwitch(const char* typed, int place, CommandLine* result) {
    std::string word(typed);
    std::ranges::transform(word, word.begin(), Raised);
    const Switch* const row = FindSwitch(word.c_str() + 1);
    if (row == nullptr) {
        std::printf("Unrecognized argument (%d).\n", place);
        return;
    }
    std::string_view rest = std::string_view(word).substr(1 + row->word.size());
    switch (row->kind) {
        case Kind::onOff:
            if (rest.empty() || rest[0] == '+' || rest[0] == '-') {
                Put(*row, !rest.starts_with('-'), result);
            } else {
                std::printf("Unrecognized switch (argument %d)!\n", place);
            }
            rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
            break;
        case Kind::trace:
            Put(*FindSwitch("D"), true, result);
            Put(*row, true, result);
            break;
        case Kind::fileBuffer:
            if (rest.starts_with(':')) {
                result->fileBufferRequest = ReadSize(rest.data() + 1, "filesize", typed);
            } else {
                std::printf("Unrecognized switch format (argument %d)!\n", place);
            }
            return;
        case Kind::lineBuffer:
            result->lineBufferRequest = ReadSize(rest.data(), "linesize", word);
            return;
        case Kind::wait:
            result->waitWanted = true;
            break;
        case Kind::help:
            result->helpWanted = true;
            break;
    }
    if (!rest.empty()) {
        std::printf("Trailing garbage in argument %d!\n", place);
    }
}

}  // namespace

CommandLine ParseCommandLine(int argumentCount, char** arguments) {
    CommandLine result;
    result.helpWanted = argumentCount == 1;
    for (int i = 1; i < argumentCount; ++i) {
        const char* const word = arguments[i];
        if (word[0] == '-' || (word[0] == '/' && !platform::IsFileNotSwitch(word))) {
            ParseSwitch(word, i, &result);
        } else if (result.sourceArgument.data() == nullptr) {
            result.sourceArgument = word;
        } else if (result.targetArgument.data() == nullptr) {
            result.targetArgument = word;
        } else {
            std::printf("Unrecognized argument %d!\n", i);
        }
    }
    return result;
}

void PrintHelp() {
    std::fputs(
        "[Korv] HELP!\n"
        "Command line:\n"
        "  KORV [sourcefilename] [destinationfilename] [switches]\n"
        " - if no sourcefilename is given KORV will default to 'Main.Kor'.\n"
        " - if no destinationfilename is given KORV will default\n"
        "   to 'sourcefilename.COM' for COM files\n"
        "   or 'sourcefilename.BIN' for Binary files. (/b+ option)\n"
        "\n"
        " Switches:\n",
        stdout);
    for (const Switch& row : switches) {
        if (row.form != nullptr) {
            std::printf("  %-12s %s\n", row.form, row.help);
        }
    }
    std::fputs("\n", stdout);
}

std::uint32_t FlagsFrom(std::string_view flagString, std::FILE* console) {
    std::uint32_t bits = RF_SYSTEM_IDS;
    for (const char c : flagString) {
        if (c == ' ') {
            continue;
        }
        const auto* const row = std::ranges::find_if(switches, [c](const Switch& candidate) {
            return candidate.bits != 0 && Raised(c) == candidate.word.back();
        });
        if (row != std::end(switches)) {
            bits = HasClass(c, CC_LOWER) ? bits & ~row->bits : bits | row->bits | row->alsoOn;
        } else {
            std::fprintf(console, "Unrecognized flag encountered: %c\n", c);
        }
    }
    return bits;
}

}  // namespace korv
