// Checks that nothing is missing: each keyword, message, reserved word and switch has a case and is in the manual; each
// option is in the manual and the man page. The manual is written by hand, so it is an independent check of every word
// and text. A failure names the missing item.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <utility>

#include "codegen/keywords.h"
#include "codegen/recogniser.h"
#include "diagnostics/message_numbers.h"
#include "driver/command_line.h"
#include "frontend/instruction_help.h"
#include "frontend/option_table.h"
#include "frontend/warnings.h"
#include "run.h"

namespace korv_test {
namespace {

using StringSet = std::set<std::string>;

// The texts that the first group of `pattern` matches.
template <class Container = Strings>
Container Found(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
}

// The part of the manual from a line that begins with `from` up to the next line that begins with `to`.
std::string Manual(const std::string& from, const std::string& to = "\f") {
    const std::string text = "\n" + ReadFile(ProjectPath("docs/manual.md")).value_or("") + "\n";
    const std::size_t start = text.find("\n" + from);
    return text.substr(start, text.find("\n" + to, start + 1) - start);
}

// The rows of the tables in a part of the manual.
Strings Rows(const std::string& part) {
    return Found(part, "\n(\\| [^\n]*)");
}

// The text of all cases, including the examples in the manual.
std::string AllCases() {
    std::string text;
    for (const std::string& path : TablesIn("cases")) {
        text += "\n" + ReplaceAll(ReadFile(path).value_or(""), "\\n", "\n    ");
    }
    for (const std::string& block : Found(Manual("# "), "\n```(?:korv|messages)([^`]*)")) {
        text += block;
    }
    return text;
}

// clang-format off
// A pattern for the instructions that a form in the manual stands for. "LD r,(IX+d)" also stands for "LD B,(IY-3)". A
// lower-case word that is not in `signs` is a number.
std::regex PatternOf(const std::string& form) {
    const std::map<std::string, std::string> signs = {
        {"r", "[A-EHL]"}, {"r'", "[A-EHL]"}, {"ss", "(BC|DE|HL|SP)"}, {"qq", "(BC|DE|HL|AF)"}, {"IX", "I[XY]"},
        {"cc", "(N?[ZC]|P[OE]?|M)"}, {"(", "\\("}, {")", "\\)"}, {"+", "[-+]"},
        {"x", "([A-EHL]|\\((HL|I[XY][-+][0-9]+)\\)|[-$0-9][-+0-9A-F]*)"}};
    std::string pattern;
    for (const std::string& part : Found(form, "([a-z]+'?|[A-Z]+|.)")) {
        pattern += signs.contains(part) ? signs.at(part) : part[0] >= 'a' ? "[-$0-9][-+0-9A-F]*" : part;
    }
    return std::regex(pattern);
}

TEST(CompletenessTest, EveryInstructionHasItsTestAndItsRow) {
    const std::string lines = ReplaceAll(AllCases(), "|", "\n     ");  // one line for each alternative
    const auto cases = Found<StringSet>(lines, "\n(?:    |raw )[^\\s;]*[ \t]+\\[?([A-Z_]+)");
    std::map<std::string, std::pair<std::regex, bool>> forms;  // the bool is true if a test uses the form
    StringSet listed;
    for (const std::string& row : Rows(Manual("### 5.2", "### 5.8") + Manual("## 6 ", "## 7 "))) {
        for (const std::string& form : Found(row, "`([A-Z][^`]*)`")) {
            forms[form] = {PatternOf(form), cases.contains(form)};
            listed.insert(form.substr(0, form.find(' ')));
        }
    }
    for (const std::string& path : TablesIn("encodings")) {
        for (const Encoding& encoding : ReadEncodings(path)) {
            const std::string& instruction = encoding.instruction;
            bool isListed = false;
            for (auto& [form, state] : forms) {
                if (form.starts_with(instruction.substr(0, 2)) && std::regex_match(instruction, state.first)) {
                    isListed = state.second = true;
                }
            }
            EXPECT_TRUE(isListed) << instruction << ": no row in chapter 5 of the manual";
        }
    }
    for (const auto& [form, state] : forms) {
        EXPECT_TRUE(state.second) << form << ": no line in tests/encodings/, no case";
    }
    StringSet words, helps, accepted, refused;  // the last two: words in lines of tests/cases/
    for (const std::string& line : Found(AllCases(), "\n(    [^\n]*)")) {
        const bool isRefused = line.find(";!") != std::string::npos;
        (isRefused ? refused : accepted).merge(Found<StringSet>(line, "[^A-Z_]([A-Z_]+)(?=[^A-Z_:])"));
    }
    for (const korv::Keyword& row : korv::keywords) {
        const std::string help(HelpFor(row));
        words.insert(std::string(row.word));
        const bool isDirective = row.group != korv::KeywordGroup::instruction && !help.starts_with("Reserved");
        EXPECT_TRUE(!isDirective || (accepted.contains(std::string(row.word)) && refused.contains(std::string(row.word))))
            << row.word << ": no case in tests/cases/ that accepts it, or none that refuses it";
        EXPECT_TRUE(helps.insert(help).second || help.starts_with("Reserved")) << row.word << ": " << help;
    }
    for (const std::string& word : words) {
        EXPECT_TRUE(listed.contains(word)) << word << ": no row in chapters 5 and 6 of the manual";
        Strings texts = {word, word + "A", word.substr(1), word.substr(0, word.size() - 1)};
        for (std::size_t i = 0; i < word.size(); ++i) {
            texts.push_back(word.substr(0, i) + '0' + word.substr(i + 1));
        }
        for (const std::string& text : texts) {
            const korv::Keyword* const found = korv::RecogniseInstruction((text + "\tA").c_str());
            EXPECT_EQ(words.contains(text) ? text : "", found == nullptr ? "" : found->word) << text;
        }
    }
}

TEST(CompletenessTest, EveryMessageHasTheTextOfTheManualAndACase) {
    const StringSet withoutCase = {
        "error 15",  // needs a signal; tested in process_test.cpp
        "error 26",  // an EQU that waits always has its name
        "error 29",  // a name without a value always has its patches
        "error 52",  // needs memory to run out; tested in process_test.cpp
    };
    std::map<std::string, StringSet> texts = {{"21", {""}}, {"42", {""}}};  // the texts in the manual, by number
    StringSet kinds;                                                        // "error 16"
    for (const std::string& row : Rows(Manual("| -1 ", "## 13"))) {
        const Strings cells = Found(row, "\\| ([^|]*) (?=\\|)");
        texts[cells[0]].insert(ReplaceAll(cells[2], "\\*", "*"));
        for (const std::string& kind : Found(cells[1], "(E|W)")) {
            kinds.insert((kind == "E" ? "error " : "warning ") + cells[0]);
        }
    }
    for (const std::string& entry : Found(Manual("These texts", "## 13"), "([0-9]+\\s`[^`]*)`")) {
        texts[entry.substr(0, entry.find('`') - 1)].insert(entry.substr(entry.find('`') + 1));
    }
    EXPECT_EQ(1 + korv::MESSAGE_TABLE.size(), texts.size()) << "messages in the manual, and -1";
    for (std::size_t i = 0; i < korv::MESSAGE_TABLE.size(); ++i) {
        EXPECT_EQ(texts[std::to_string(i)], StringSet{korv::MESSAGE_TABLE.at(i).text})
            << "message " << i << ": its text is not that of chapter 12 of the manual";
    }
    const auto provoked = Found<StringSet>(ReplaceAll(AllCases(), " : error X", "\nerror "),
                                           "(?:\n|;![0-9]* )((?:error|warning) -?[0-9]+)");
    for (const std::string& kind : kinds) {
        EXPECT_TRUE(provoked.contains(kind) || withoutCase.contains(kind)) << kind << ": no case";
    }
    for (const std::string& kind : provoked) {
        EXPECT_TRUE(kinds.contains(kind)) << kind << ": no row in chapter 12 of the manual";
    }
}

// The complete result of a run: its console output, and the names and contents of its files.
std::string Traces(const std::string& source, const Strings& arguments) {
    const TempDir directory;
    WriteFile("Main.Kor", source);
    RunKorv(arguments);
    std::string traces;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        const std::string name = entry.path().filename().string();
        traces += name + "\n" + ReadFile(name).value_or("") + "\n";
    }
    return traces;
}

TEST(CompletenessTest, TheWordsOfTheManualAreReserved) {
    const std::string own = " KORV KORV_VER KORV_LOW KORV_BUILD";  // these have a value, so they can never be labels
    const auto listed = Found<StringSet>(Manual("ADC ADD AND", "```") + own, "([A-Z_]+)");
    const auto free = Found<StringSet>(Manual("`DEFB DEFD", "`MACROS_ON"), "([A-Z_]{2,})");
    StringSet words = listed;
    for (const korv::Keyword& keyword : korv::keywords) {
        const std::string word(keyword.word);
        words.insert(word);
        EXPECT_NE(listed.contains(word), free.contains(word)) << word << ": chapter 8 has a list of the words that are free";
    }
    for (const std::string& word : words) {
        for (const std::string toggle : {"/i", "/i-"}) {
            const bool isReserved = listed.contains(word) && (toggle == "/i" || Contains(own, " " + word));
            const bool isRefused = Contains(Traces(word + ": NOP\n", {toggle}), " error X46 : ");
            EXPECT_EQ(isReserved, isRefused) << word << " as a label, " << toggle << ": see chapter 8 of the manual";
        }
    }
    const std::string count = std::to_string(listed.size()) + " identifiers found";
    for (const std::string source : {"", "LD: DW SET\n"}) {
        EXPECT_TRUE(Contains(Traces(source, {"/m"}), count)) << "other words, or some twice: " << source;
    }
}

TEST(CompletenessTest, TheDocumentsShowWhatARunPrints) {
    for (const auto& [document, name] : {std::pair("README.md", "examples/hello.kor"), {"docs/manual.md", "hello.kor"}}) {
        const std::string text = ReadFile(ProjectPath(document)).value_or("");
        const std::size_t start = text.find("\n;") + 1;
        const TempDir directory;
        WriteFile(name, text.substr(start, text.find("```", start) - start));
        const std::string console = RunKorv({name, "/m"});
        const std::string printed = std::string(name) + " /m\n" + console.substr(0, console.rfind('\n') + 1);
        EXPECT_TRUE(Contains(text, printed)) << document << " does not contain this:\n" << printed;
    }
}

TEST(CompletenessTest, EverySwitchIsOnOffOrMalformed) {
    const std::map<std::string, std::string> signs = {  // the text that appears if the switch is on; for /w, if it is off
        {"/b", "Main.bin"}, {"/d", "Debug.Out"}, {"/ds", "Adding patch"}, {"/l", "Labels.Out"},
        {"/m", "secured. (Main."}, {"/p", "100% completed.\r"}, {"/t", "been online for "},
        {"/w", "warning X57"}, {"/i", "error X46"}, {"/?", "[Korv] HELP!\n"},
        {"/f:<n>", "0 illegal filesize! "}, {"/linelen:<n>", "0 illegal linesize! "},  // with n = 0
        {"/wait", "\nPress a key to continue...\r"}};
    const std::tuple<std::string, char, std::string> endings[] = {  // ' ': the switch keeps its state
        {"", '+', ""}, {"+", '+', ""}, {"-", '-', ""}, {"q", ' ', "Unrecognized switch (argument 3)!\n"},
        {"+-", '+', "Trailing garbage in argument 3!\n"}, {"-+", '-', "Trailing garbage in argument 3!\n"}};
    ASSERT_NE(nullptr, std::freopen(nullDevice, "r", stdin));  // for /wait
    EXPECT_EQ(0U, korv::FlagsFrom("dslpmtbwi", stdout)) << "the letters of a caller's flag string";
    const Strings rows = Rows(Manual("| `/b`", "A word that"));
    EXPECT_EQ(signs.size(), rows.size()) << "switches in the manual";
    const std::string page = ReadFile(ProjectPath("docs/man1/korv.1")).value_or("");
    for (const std::string& row : rows) {
        const std::string name = Found(row, "`([^`]*)`")[0];
        ASSERT_TRUE(signs.contains(name)) << name << ": no test";
        EXPECT_TRUE(Contains(ReplaceAll(page, "\n", " "), ".It Cm " + name.substr(0, name.find(':')) + " ")) << name;
        const auto run = [&](const Strings& words) { return Traces("SET: JP X\nX NOP\n", words); };
        const auto isOn = [&](const std::string& traces) { return Contains(traces, signs.at(name)) != (name == "/w"); };
        const std::string neutral = name == "/i" ? "/b-" : "/i-";
        EXPECT_EQ(Contains(row, "**on**"), isOn(run({neutral}))) << name << " by default";
        for (const auto& [ending, effect, complaint] : endings) {
            for (std::string start : {name, "-" + name.substr(1)}) {
                const bool isToggle = Contains(row, "+`");
                const char before = isToggle && start[0] == '-' ? '-' : '+';
                std::string word = ReplaceAll(start, "<n>", "0") + ending;
                std::transform(word.begin(), word.end(), word.begin(), start[0] == '-' ? toupper : tolower);
                if (isToggle || ending.empty()) {
                    const std::string traces = run({neutral, isToggle ? name + before : "/p-", word});
                    EXPECT_EQ((effect == ' ' ? before : effect) == '+', isOn(traces)) << name << before << " " << word;
                    const bool complains = Contains(traces, "argument 3") && Contains(traces, complaint);
                    EXPECT_EQ(!complaint.empty(), complains) << word;
                }
            }
        }
    }
}

TEST(CompletenessTest, EveryOptionAndWarningOfKorvAsIsInItsDocuments) {
    // Each file, with the texts in it that precede a short and a long option. A separator follows each option.
    const std::string texts[][3] = {{Manual("## 13", "### 13.1"), "`-", "`--"},
                                    {"docs/man1/korv-as.1", " Fl ", " Fl Fl "},
                                    {"editors/completions/korv-as.bash", " -", " --"},
                                    {"editors/completions/_korv-as", "['{*]-", "[,']--"},
                                    {"editors/completions/korv-as.fish", " -s ", " -l "}};
    for (const auto& [name, letter, longName] : texts) {
        const std::string text = ReadFile(ProjectPath(name)).value_or(name);
        const std::string title = name.substr(0, name.find('\n'));
        const auto has = [&text](const std::string& pattern) {
            return std::regex_search(ReplaceAll(text, "\n", " "), std::regex(pattern));
        };
        for (const korv::OptionRow& row : korv::optionTable) {
            EXPECT_TRUE(row.letter == '\0' || has(letter + row.letter + "[^-\\w]")) << title << ": " << row.letter;
            EXPECT_TRUE(row.name.empty() || has(longName + std::string(row.name) + "[^-\\w]")) << title << ": " << row.name;
            const auto choices = row.Choices();
            for (const std::string_view choice : choices.size() > 1 ? choices : decltype(choices)()) {
                EXPECT_TRUE(has("[^-\\w]" + std::string(choice) + "[^-\\w]")) << title << ": " << choice;
            }
        }
        for (const korv::WarningRow& row : korv::warningTable) {
            EXPECT_TRUE(letter == "`-" || has("[ \"]" + std::string(row.name) + "[^-\\w]")) << title << ": " << row.name;
        }
        EXPECT_TRUE(has("no-error")) << title;
    }
    const std::string manual = Manual("### 13.2", "## 14");
    const std::string runs = ReadFile(ProjectPath("tests/frontend/runs.txt")).value_or("");
    std::set<std::string_view> ofCore;  // warnings that have a message number
    for (std::size_t number = 0; number < korv::MESSAGE_TABLE.size(); ++number) {
        if (const auto warning = korv::WarningOf(static_cast<korv::Status>(number))) {
            ofCore.insert(korv::RowOf(*warning).name);
        }
    }
    for (const korv::WarningRow& row : korv::warningTable) {
        EXPECT_TRUE(ofCore.contains(row.name) || Contains(runs, "[" + std::string(row.name) + "]\n"))
            << row.name << ": no case in tests/frontend/runs.txt";
        EXPECT_TRUE(Contains(manual, "\n| `" + std::string(row.name) + (row.isOn ? "` | on | " : "` | off | ")))
            << row.name << ": no row in 13.2 of the manual";
    }
    EXPECT_EQ(RunKorvAs({"--help"}), RunKorvAs({"-h", "--none"}));
    EXPECT_EQ(Strings(), Found(RunKorvAs({"-h"}), "(.{81,})\n")) << "lines of --help";
    EXPECT_EQ("korv-as 2.00.025\n", RunKorvAs({"-wV"}));
}

TEST(CompletenessTest, TheWidthsOfCharactersAreThoseOfUnicode) {
    const TempDir directory;
    const std::string table = ReadFile(ProjectPath("src/frontend/width_table.h")).value_or("");
    const std::string tool = ProjectPath("tools/make_width_table");
    const std::string made = std::system(("python3 " + tool + " >table 2>/dev/null").c_str()) == 0 ? *ReadFile("table") : "";
    const auto heading = [](const std::string& text) { return text.substr(0, text.find("#pragma")); };
    if (heading(made) != heading(table)) {
        GTEST_SKIP() << "There is no Python with the same version of Unicode";
    }
    EXPECT_TRUE(made == table) << "made by " << tool;
}

// The words of two or more letters, in upper case.
StringSet WordsOf(const std::string& text) {
    StringSet words;
    std::string word;
    for (const char c : text + ".") {
        if (std::isalpha(static_cast<unsigned char>(c)) != 0) {
            word += static_cast<char>(std::toupper(c));
        } else if (const std::string whole = std::exchange(word, ""); whole.size() > 1) {
            words.insert(whole);
        }
    }
    return words;
}

// The texts in double quotes in a source, without escapes and without the names of included files.
std::string TextsOf(const std::string& source) {
    std::string texts;
    for (const std::string& line : Split(source, '\n')) {
        bool isText = false;
        for (std::size_t i = 0; i < line.size() && !line.starts_with('#'); ++i) {
            if (!isText && line.compare(i, 2, "//") == 0) {
                break;
            }
            if (line[i] == '\\' || (!isText && line.compare(i, 2, "'\"") == 0)) {
                ++i;
            } else {
                isText = isText != (line[i] == '"');
                texts += isText ? line[i] : ' ';
            }
        }
    }
    return texts;
}

TEST(CompletenessTest, TextsHaveOnlyWordsThatAreKnown) {
    StringSet known = WordsOf(ReadFile(ProjectPath("README.md")).value_or(""));
    std::string unknown;
    for (const std::string folder : {"docs", "tests", "src/frontend", "src/server"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(ProjectPath(folder))) {
            const std::string text = entry.is_regular_file() ? *ReadFile(entry.path().string()) : "";
            if (folder.starts_with("src")) {
                for (const std::string& word : WordsOf(TextsOf(text))) {
                    unknown += known.insert(word).second ? word + " " : "";
                }
            } else if (const auto type = entry.path().extension(); type == ".md" || type == ".txt") {
                known.merge(WordsOf(text));
            }
        }
    }
    EXPECT_EQ("", unknown) << "If they are spelt correctly, add them to tests/words.txt.";
}

}  // namespace
}  // namespace korv_test
