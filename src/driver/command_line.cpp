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
    std::string_view word;  // in capitals, what selects it; of a switch with a place, its last
                            // character is the letter in the flag string
    Kind kind;
    const char* form = nullptr;  // as the help shows it; null: not at all
    const char* help = nullptr;
    int place = -1;            // in the flag string
    std::uint32_t bits = 0;    // of the flags word: set by the upper-case letter there, cleared by
                               // the lower-case one
    std::uint32_t alsoOn = 0;  // set with them, and not cleared
};

// In the order of the help; a word that begins with another one comes after it.
// clang-format off
constexpr Switch switches[] = {
    {"D", Kind::onOff, "/d[+|-]", "Enable/disable debug.out file.", 0, RF_DEBUG},
    {"DS", Kind::trace, nullptr, nullptr, 1, RF_DEBUG_SYMBOLS, RF_DEBUG},
    {"L", Kind::onOff, "/l[+|-]", "Enable/disable label.out file.", 2, RF_LABELS},
    {"P", Kind::onOff, "/p[+|-]", "Enable/disable progress meter.", 3, RF_PROGRESS},
    {"M", Kind::onOff, "/m[+|-]", "Enable/disable messages.", 5, RF_MESSAGES},
    {"T", Kind::onOff, "/t[+|-]", "Enable/disable time display.", 4, RF_TIME},
    {"B", Kind::onOff, "/b[+|-]", "Enable/disable binary file output.", 7, RF_BINARY},
    {"W", Kind::onOff, "/w[+|-]", "Enable/disable warning suppression.", 6, RF_NO_WARNINGS},
    {"I", Kind::onOff, "/i[+|-]", "Enable/disable system identifier loading.", 8, RF_SYSTEM_IDS},
    {"F", Kind::fileBuffer, "/f:<n>", "Specify filebuffer size in bytes."},
    {"LINELEN:", Kind::lineBuffer, "/linelen:<n>", "Specify linebuffer size in bytes."},
    {"WAIT", Kind::wait, "/wait", "Enable wait when KORV is done."},
    {"?", Kind::help, "/? /h", "Print this help message."},
    {"H", Kind::help},
};
// clang-format on

// The bits of the places in use, all of them as soon as one is used twice.
constexpr unsigned UsedPlaces() {
    unsigned used = 0;
    for (const Switch& row : switches) {
        const unsigned bit = row.place >= 0 ? 1U << row.place : 0U;
        used = (used & bit) != 0 ? ~0U : used | bit;
    }
    return used;
}
static_assert(UsedPlaces() == (1U << (sizeof CommandLine::flagString - 1)) - 1);

// The switch that `word`, in capitals and without its lead character, selects: the longest one that
// it begins with, where /wait has to be all of it.
const Switch* FindSwitch(std::string_view word) {
    const Switch* found = nullptr;
    for (const Switch& row : switches) {
        if (word.starts_with(row.word) && (row.kind != Kind::wait || word == row.word)) {
            found = &row;
        }
    }
    return found;
}

// The number at the start of `text`: optional blanks, optional sign, digits; 0 without digits, and
// the nearest value that fits 32 bits.
std::int32_t ReadNumber(const char* text) {
    text = SkipBlanks(text);
    // A line end is no blank here, but one to the library.
    const long long number = *text < ' ' ? 0 : std::strtoll(text, nullptr, 10);
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

class Parser {
  public:
    void ParseWord(const char* word, int index) {
        place = index;
        if (word[0] == '-' || (word[0] == '/' && !platform::IsFileNotSwitch(word))) {
            ParseSwitch(word);
        } else if (result.sourceArgument.data() == nullptr) {
            result.sourceArgument = word;
        } else if (result.targetArgument.data() == nullptr) {
            result.targetArgument = word;
        } else {
            std::printf("Unrecognized argument %d!\n", place);
        }
    }

    CommandLine result;

  private:
    void ParseSwitch(const char* typed) {
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
                    Put(*row, !rest.starts_with('-'));
                } else {
                    std::printf("Unrecognized switch (argument %d)!\n", place);
                }
                rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
                break;
            case Kind::trace:
                Put(*FindSwitch("D"), true);
                Put(*row, true);
                break;
            case Kind::fileBuffer:
                if (rest.starts_with(':')) {
                    result.fileBufferRequest = ReadSize(rest.data() + 1, "filesize", typed);
                } else {
                    std::printf("Unrecognized switch format (argument %d)!\n", place);
                }
                return;
            case Kind::lineBuffer:
                result.lineBufferRequest = ReadSize(rest.data(), "linesize", word);
                return;
            case Kind::wait:
                result.waitWanted = true;
                break;
            case Kind::help:
                result.helpWanted = true;
                break;
        }
        if (!rest.empty()) {
            std::printf("Trailing garbage in argument %d!\n", place);
        }
    }

    void Put(const Switch& row, bool isOn) {
        const char letter = row.word.back();
        result.flagString[row.place] = isOn ? letter : static_cast<char>(letter + ('a' - 'A'));
    }

    static std::int32_t ReadSize(const char* text, const char* what, std::string_view word) {
        const std::int32_t size = ReadNumber(text);
        if (size <= 0) {
            PrintTexts(stdout, "% illegal %! (%)\n", {std::to_string(size), what, word});
        }
        return size;
    }

    int place = 0;  // of the word in the argument vector
};

}  // namespace

CommandLine ParseCommandLine(int argumentCount, char** arguments) {
    Parser parser;
    parser.result.helpWanted = argumentCount == 1;
    for (int i = 1; i < argumentCount; ++i) {
        parser.ParseWord(arguments[i], i);
    }
    return parser.result;
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
            return candidate.place >= 0 && Raised(c) == candidate.word.back();
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
