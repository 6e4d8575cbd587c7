// The files in editors/ must contain all words of the language and no others, and their patterns must match the
// messages of the programs.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "codegen/keywords.h"
#include "expr/registers.h"
#include "expr/token.h"
#include "run.h"

namespace korv_test {
namespace {

using StringSet = std::set<std::string>;

std::string Editor(const std::string& name) {
    return ReadFile(ProjectPath("editors/" + name)).value_or("");
}

// The words in the texts that the first group of `pattern` matches.
StringSet WordsIn(const std::string& text, const std::string& pattern) {
    const std::regex list(pattern);
    const std::regex word("[A-Z_]+");
    StringSet words;
    for (std::sregex_iterator at(text.begin(), text.end(), list), end; at != end; ++at) {
        const std::string found = (*at)[1];
        words.insert(std::sregex_token_iterator(found.begin(), found.end(), word), {});
    }
    return words;
}

TEST(EditorsTest, HighlightEveryWordAndNoOther) {
    StringSet words = {"KORV", "KORV_VER", "KORV_LOW", "KORV_BUILD"};
    for (const korv::Keyword& row : korv::keywords) {
        words.emplace(row.word);
    }
    for (const korv::OperandName& row : korv::operandNames) {
        words.emplace(row.name);
    }
    words.erase("");
    for (const std::string word : {"AND", "EXP", "MOD", "OR", "SHL", "SHR", "XOR"}) {
        EXPECT_NE(0, korv::FindWord(word).code) << word;
        words.insert(word);
    }
    const std::pair<std::string, std::string> files[] = {
        {"vim/syntax/korv.vim", "syntax keyword korv\\w+( .*)"},
        {"vscode/syntaxes/korv.tmLanguage.json", "\\(\\?:([A-Z_|]+)\\)"}};
    for (const auto& [file, pattern] : files) {
        const StringSet found = WordsIn(Editor(file), pattern);
        Strings different;
        std::ranges::set_symmetric_difference(words, found, std::back_inserter(different));
        EXPECT_EQ(Strings(), different) << "words that editors/" << file << " lacks, or has in excess";
    }
}

// The result of a JSON problem matcher for `output`: "file|line|column|severity|code|message" for each line that the
// pattern matches.
std::string Matched(const std::string& matcher, const std::string& output) {
    const auto group = [&](const std::string& key, const std::string& form) {
        std::smatch found;
        return std::regex_search(matcher, found, std::regex("\"" + key + "\": " + form)) ? found.str(1) : "";
    };
    const std::regex pattern(ReplaceAll(group("regexp", "\"(.*)\""), "\\\\", "\\"));
    std::istringstream lines(output);
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, pattern)) {
            for (const std::string key : {"file", "line", "column", "severity", "code", "message"}) {
                const std::string number = group(key, "([0-9])");
                all += (number.empty() ? "" : match.str(std::stoul(number))) + (key == "message" ? "\n" : "|");
            }
        }
    }
    return ReplaceAll(all, "\\", "/");
}

// The same for the errorformat of a vim compiler, in which the severity is a letter.
std::string MatchedByVim(const std::string& compiler, const std::string& output) {
    WriteFile("output", output);
    WriteFile("script", "set rtp^=" + ProjectPath("editors/vim") + "\ncompiler " + compiler + R"(
cgetfile output
let valid = filter(getqflist(), 'v:val.valid')
call writefile(map(valid, 'join([bufname(v:val.bufnr), v:val.lnum, v:val.col, v:val.type, v:val.nr, v:val.text], "|")'), 'matched')
qa!
)");
    EXPECT_EQ(0, std::system("vim -Nu NONE -es -S script </dev/null >/dev/null 2>&1"));
    return ReadFile("matched").value_or("");
}

TEST(EditorsTest, ExtensionHasTheVersionOfThePrograms) {
    const std::string package = Editor("vscode/package.json");
    std::smatch version;
    ASSERT_TRUE(std::regex_search(package, version, std::regex("\"version\": \"(.*)\"")));
    EXPECT_EQ(std::regex_replace(RunKorvAs({"--version"}), std::regex("korv-as |\\b0+(?=\\d)|\n"), ""), version[1]);
}

TEST(EditorsTest, PatternsMatchTheMessages) {
    const TempDir directory;
    WriteFile("Main.Kor", " INCLUDE sub/b (1).kor\n DB 1,\n LD A,()\n");
    WriteFile("sub/b (1).kor", " FROB B\n");
    const std::string package = Editor("vscode/package.json");
    const std::string ofKorv = RunKorv({"Main.Kor"}), ofKorvAs = RunKorvAs({"Main.Kor"});
    const auto here = [&](const std::string& text) {
        return ReplaceAll(text, "$DIR", ReplaceAll(directory.Path(), "\\", "/"));
    };
    EXPECT_EQ(here("$DIR/sub/b (1).kor|1||error|33|Illegal or unknown instruction. [FROB]\n"
                   "$DIR/Main.Kor|3||error|-1|Illegal error number! (Internal error.)\n"
                   "$DIR/Main.Kor|3||error|14|Argument expected.\n"
                   "$DIR/Main.Kor|2||warning|59|Expected argument.\n"),
              Matched(package.substr(package.find("\"source\": \"korv\"")), ofKorv));
    const std::string messages =
        "sub/b (1).kor|1|2|error|X33|illegal or unknown instruction: 'FROB'\n"
        "Main.Kor|2|6|warning|X59|expected argument\n"
        "Main.Kor|3|7|error|X-1|nothing between the brackets\n";
    EXPECT_EQ(messages, Matched(Editor("github/korv-as.json"), ofKorvAs));
    std::string withNotes = messages;
    withNotes.insert(withNotes.find("Main.Kor|3|7"), "Main.Kor|2|6|note||add the operand, or remove the comma\n");
    EXPECT_EQ(withNotes + "Main.Kor|3|7|note||add the address or the register\n",
              Matched(package.substr(package.find("\"source\": \"korv-as\"")), ofKorvAs));
    if (std::system("command -v vim >/dev/null") != 0) {
        GTEST_SKIP() << "vim is not installed: its compiler files are not tested";
    }
    EXPECT_EQ(here("$DIR/sub/b (1).kor|1|0|e|33|Illegal or unknown instruction. [FROB]\n"
                   "$DIR/Main.Kor|3|0|e|1|Illegal error number! (Internal error.)\n"
                   "$DIR/Main.Kor|3|0|e|14|Argument expected.\n"
                   "$DIR/Main.Kor|2|0|w|59|Expected argument.\n"),
              MatchedByVim("korv", ofKorv));
    EXPECT_EQ(
        "sub/b (1).kor|1|2|e|-1|illegal or unknown instruction: 'FROB' [X33]\n"
        "Main.Kor|2|6|w|-1|expected argument [X59]\n"
        "Main.Kor|2|6|n|-1|add the operand, or remove the comma\n"
        "Main.Kor|3|7|e|-1|nothing between the brackets [X-1]\n"
        "Main.Kor|3|7|n|-1|add the address or the register\n"
        "|0|0|e|-1|cannot read none.kor: No such file or directory\n",
        MatchedByVim("korv-as", ofKorvAs + RunKorvAs({"none.kor"})));
}

// Checks what bash proposes as the last word of a command line. Bash splits words at "=" and "@".
TEST(EditorsTest, BashCompletesOptionsArgumentsAndFiles) {
    if (std::system("bash -c 'type mapfile compgen' >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "bash is not installed";
    }
    const TempDir directory;
    WriteFile("a b.kor", "");
    WriteFile("sub/c", "");
    // clang-format off
    const std::pair<const char*, const char*> rows[] = {
        {"--symbol-f", "--symbol-format"}, {"-V", "-V"}, {"a.kor --no", "--no-reserved"}, {"-f ", "com bin hex"},
        {"--color = a", "auto always"}, {"-W nu", "number-label null-byte"}, {"-W error = ra", "range"},
        {"-W no-ra", "no-range"}, {"--max-errors ", ""}, {"-I ", "sub"}, {"a", "a b.kor"},
        {"--listing = a", "a b.kor"}, {"@ @su", "@sub"}};
    // clang-format on
    for (const auto& [words, proposed] : rows) {
        WriteFile("script", "source " + ProjectPath("editors/completions/korv-as.bash") + "\nIFS=' '; set -f; words='" +
                                words +
                                R"('
COMP_WORDS=(korv-as ${words% *} "${words##* }"); [[ $words == *' '* ]] || COMP_WORDS=(korv-as "$words")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); set +f
_korv_as korv-as "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf %s "${COMPREPLY[*]}" >proposed)");
        EXPECT_EQ(0, std::system("bash script"));
        EXPECT_EQ(proposed, ReadFile("proposed").value_or("none")) << words;
    }
}

}  // namespace
}  // namespace korv_test
