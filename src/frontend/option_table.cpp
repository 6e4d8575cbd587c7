#include "frontend/option_table.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "frontend/nearest.h"
#include "frontend/terminal_text.h"

namespace korv {
namespace {

constexpr std::uint64_t mostOf32Bits = 0xFFFFFFFF;

// Each `Take` stores an argument in a member of `Options`; there is one for each type. If an option
// is repeated, the last one counts, except for lists and warnings.
std::string Take(const OptionRow&, std::string_view, bool* isOn) {
    *isOn = true;
    return "";
}

std::string Take(const OptionRow&, std::string_view word, std::string* text) {
    *text = word;
    return "";
}

std::string Take(const OptionRow&, std::string_view word, std::vector<std::string>* list) {
    list->emplace_back(word);
    return "";
}

std::string Take(const OptionRow& row, std::string_view word, std::uint64_t* number) {
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, *number);
    if (error == std::errc() && stop == end && *number >= row.least && *number <= row.most) {
        return "";
    }
    return Quoted(word) + " is not a number from " + std::to_string(row.least) + " to " +
           std::to_string(row.most);
}

std::string Take(const OptionRow&, std::string_view word, WarningChoice* warnings) {
    if (warnings->Take(word)) {
        return "";
    }
    std::string_view name = word;
    for (const std::string_view prefix : {"no-", "error="}) {
        name.remove_prefix(name.starts_with(prefix) ? prefix.size() : 0);
    }
    std::vector<std::string_view> names;
    std::ranges::transform(warningTable, std::back_inserter(names), &WarningRow::name);
    const std::string_view meant = NearWords(names).Find(name);
    return "unknown warning " + Quoted(name) +
           (meant.empty() ? "; --help lists them" : "; did you mean " + Quoted(meant) + "?");
}

// The choices are in the order of the enumerators. Omitting an optional argument selects the first
// choice.
template <typename Choice>
requires std::is_enum_v<Choice> std::string Take(const OptionRow& row, std::string_view word,
                                                 Choice* choice) {
    const std::vector<std::string_view> words = row.Choices();
    const auto found = std::ranges::find(words, word);
    if (found != words.end() || word.empty()) {
        *choice = word.empty() ? Choice{} : static_cast<Choice>(found - words.begin());
        return "";
    }
    std::string all;
    for (const std::string_view& each : words) {
        all += all.empty() ? "" : &each == &words.back() ? " or " : ", ";
        all += each;
    }
    return Quoted(word) + " is not " + all;
}

template <typename Choice>
std::string Take(const OptionRow& row, std::string_view word, std::optional<Choice>* choice) {
    return Take(row, word, &choice->emplace());
}

template <auto member>
std::string Store(const OptionRow& row, std::string_view word, Options* options) {
    return Take(row, word, &(options->*member));
}

template <Request request>
std::string Ask(const OptionRow&, std::string_view, Options* options) {
    options->request = request;
    return "";
}

// clang-format off
constexpr OptionRow rows[] = {
    {'o', "", "FILE", "write the image to FILE; - is standard output; by default, it is written beside the source, with the extension of its format",
     Store<&Options::output>},
    {'f', "format", "com|bin|hex", "com: the bytes alone; bin: with the load header; hex: Intel HEX; by default, the extension of -o decides, otherwise com",
     Store<&Options::wantedFormat>},
    {'D', "", "NAME[=EXPRESSION]", "define NAME before the first line; without an expression its value is 1", Store<&Options::defines>},
    {'I', "", "DIR", "also search DIR for the files of INCLUDE and BINCLUDE; may be repeated", Store<&Options::includes>},
    {'M', "depfile", "FILE", "write the dependencies for make and ninja", Store<&Options::depfile>},
    {'l', "listing", "FILE", "write a listing", Store<&Options::listing>},
    {0, "symbols", "FILE", "write names and values", Store<&Options::symbols>},
    {0, "symbol-format", "equ|sym|noi|cspect", "equ, the default, can be assembled again; the others are for debuggers", Store<&Options::symbolFormat>},
    {0, "debug", "FILE", "write source-level debugging data (SLD)", Store<&Options::debug>},
    {0, "summary", "[=text|json]", "print the sizes and T-states of the program", Store<&Options::summary>},
    {'W', "", "NAME", "turn a warning on; no-NAME: turn it off; error=NAME, no-error=NAME: make it an error or not; error: make all of them errors",
     Store<&Options::warnings>},
    {'w', "", "", "print no warnings", Store<&Options::isQuiet>},
    {0, "line-length", "N", "accept lines of up to N bytes, including comment and line end; default 256", Store<&Options::lineLength>, 1, longestLine},
    {0, "no-reserved", "", "allow reserved words as labels", Store<&Options::hasFreeNames>},
    {0, "max-errors", "N", "print at most N errors; 0: all; default 100", Store<&Options::maxErrors>, 0, mostOf32Bits},
    {0, "max-image", "N", "accept images of up to N bytes; default 65536", Store<&Options::maxImage>, 0, mostOf32Bits},
    {0, "color", "auto|always|never", "colour the messages; auto, the default: on a terminal unless NO_COLOR is set", Store<&Options::color>},
    {'h', "help", "", "print this text", Ask<Request::printHelp>},
    {'V', "version", "", "print the version", Ask<Request::printVersion>},
};
// clang-format on

}  // namespace

const std::span<const OptionRow> optionTable = rows;

std::vector<std::string_view> OptionRow::Choices() const {
    std::string_view rest = argument;
    std::vector<std::string_view> words;
    if (rest.starts_with("[=")) {
        rest = rest.substr(2, rest.size() - 3);
    }
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = rest.find('|');
        words.push_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    }
    return words;
}

}  // namespace korv
