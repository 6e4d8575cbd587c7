#include "driver/command_line.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr char Raised(char c) {
    return HasClass(c, CC_LOWER) ? static_cast<char>(c - 32) : c;
}

std::string Raised(std::string_view word) {
    std::string raised(word);
    for (char& c : raised) {
        c = Raised(c);
    }
    return raised;
}

// The number at the start of `text`: optional blanks, optional sign, digits; 0 without digits, and
// the nearest value that fits 32 bits.
std::int32_t ReadNumber(std::string_view text) {
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    std::size_t i = 0;
    while (i < text.size() && HasClass(text[i], CC_BLANK)) {
        ++i;
    }
    const bool isNegative = i < text.size() && text[i] == '-';
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        ++i;
    }
    std::int64_t number = 0;
    for (; i < text.size() && HasClass(text[i], CC_DIGIT); ++i) {
        number = std::min(number * 10 + (text[i] - '0'), highest + 1);
    }
    return static_cast<std::int32_t>(isNegative ? -number : std::min(number, highest));
}

class Parser {
  public:
    void ParseWord(const char* word, int index) {
        place = index;
        if (word[0] != '-' && word[0] != '/') {
            ParseFileName(word);
        } else if (word[0] == '/' && platform::IsAbsoluteFileName(word)) {
            ParseFileName(word);
        } else {
            ParseSwitch(word);
        }
    }

    CommandLine result;

  private:
    void ParseFileName(const char* word) {
        if (result.sourceArgument == nullptr) {
            result.sourceArgument = word;
        } else if (result.targetArgument == nullptr) {
            result.targetArgument = word;
        } else {
            std::printf("Unrecognized argument %d!\n", place);
        }
    }

    void ParseSwitch(std::string_view word) {
        const char letter = word.size() > 1 ? Raised(word[1]) : '\0';
        switch (letter) {
            case '?':
            case 'H':
                result.helpWanted = true;
                if (word.size() > 2) {
                    ReportGarbage();
                }
                break;
            case 'B':
            case 'I':
            case 'M':
            case 'P':
            case 'T':
                SwitchOnOrOff(letter, word);
                break;
            case 'D':
                if (word.size() > 2 && Raised(word[2]) == 'S') {
                    result.flagString.Put('D');
                    result.flagString.Put('S');
                    if (word.size() > 3) {
                        ReportGarbage();
                    }
                } else {
                    SwitchOnOrOff(letter, word);
                }
                break;
            case 'F':
                ParseFileBuffer(word);
                break;
            case 'L':
                ParseL(Raised(word));
                break;
            case 'W':
                if (const std::string raised = Raised(word); raised.substr(1) == "WAIT") {
                    result.waitWanted = true;
                } else {
                    SwitchOnOrOff(letter, raised);
                }
                break;
            default:
                std::printf("Unrecognized argument (%d).\n", place);
                break;
        }
    }

    void SwitchOnOrOff(char letter, std::string_view word) {
        if (word.size() == 2 || word[2] == '+') {
            result.flagString.Put(letter);
        } else if (word[2] == '-') {
            result.flagString.Put(static_cast<char>(letter + ('a' - 'A')));
        } else {
            std::printf("Unrecognized switch (argument %d)!\n", place);
        }
        if (word.size() > 3) {
            ReportGarbage();
        }
    }

    void ParseFileBuffer(std::string_view word) {
        if (word.size() < 3 || word[2] != ':') {
            std::printf("Unrecognized switch format (argument %d)!\n", place);
            return;
        }
        result.fileBufferRequest = ReadNumber(word.substr(3));
        if (result.fileBufferRequest <= 0) {
            std::printf("%d illegal filesize! (%s)\n", result.fileBufferRequest, word.data());
        }
    }

    void ParseL(const std::string& raised) {
        constexpr std::string_view form = "LINELEN:";
        const std::string_view word = raised;
        if (!word.substr(1).starts_with(form)) {
            SwitchOnOrOff('L', word);
            return;
        }
        result.lineBufferRequest = ReadNumber(word.substr(1 + form.size()));
        if (result.lineBufferRequest <= 0) {
            std::printf("%d illegal linesize! (%s)\n", result.lineBufferRequest, raised.c_str());
        }
    }

    void ReportGarbage() const { std::printf("Trailing garbage in argument %d!\n", place); }

    int place = 0;  // of the word in the argument vector
};

}  // namespace

const char helpText[] =
    "[Korv] HELP!\n"
    "Command line:\n"
    "  KORV [sourcefilename] [destinationfilename] [switches]\n"
    " - if no sourcefilename is given KORV will default to 'Main.Kor'.\n"
    " - if no destinationfilename is given KORV will default\n"
    "   to 'sourcefilename.COM' for COM files\n"
    "   or 'sourcefilename.BIN' for Binary files. (/b+ option)\n"
    "\n"
    " Switches:\n"
    "  /d[+|-]      Enable/disable debug.out file.\n"
    "  /l[+|-]      Enable/disable label.out file.\n"
    "  /p[+|-]      Enable/disable progress meter.\n"
    "  /m[+|-]      Enable/disable messages.\n"
    "  /t[+|-]      Enable/disable time display.\n"
    "  /b[+|-]      Enable/disable binary file output.\n"
    "  /w[+|-]      Enable/disable warning suppression.\n"
    "  /i[+|-]      Enable/disable system identifier loading.\n"
    "  /f:<n>       Specify filebuffer size in bytes.\n"
    "  /linelen:<n> Specify linebuffer size in bytes.\n"
    "  /wait        Enable wait when KORV is done.\n"
    "  /? /h        Print this help message.\n"
    "\n";

void FlagSlots::Put(char letter) {
    slots[letters.find(Raised(letter))] = letter;
}

CommandLine ParseCommandLine(int argumentCount, char** arguments) {
    Parser parser;
    parser.result.helpWanted = argumentCount == 1;
    for (int i = 1; i < argumentCount; ++i) {
        parser.ParseWord(arguments[i], i);
    }
    return parser.result;
}

}  // namespace korv
