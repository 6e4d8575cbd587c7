// The files under editors/: their words are those of the language, none missing and none too many,
// and their patterns read what the programs print.

#include <gtest/gtest.h>

#include <cstdlib>
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

// The words in all that the first group of `pattern` finds.
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

TEST(EditorsTest, ColourEveryWordAndNoOther) {
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
    EXPECT_EQ(words, WordsIn(Editor("vim/syntax/korv.vim"), "syntax keyword korv\\w+( .*)"));
    EXPECT_EQ(words,
              WordsIn(Editor("vscode/syntaxes/korv.tmLanguage.json"), "\\(\\?:([A-Z_|]+)\\)"));
}

// What a matcher of JSON makes of `output`: a line of "file|line|column|severity|code|message" for
// each line that its pattern fits.
std::string Matched(const std::string& matcher, const std::string& output) {
    const auto group = [&](const std::string& key, const std::string& form) {
        std::smatch found;
        return std::regex_search(matcher, found, std::regex("\"" + key + "\": " + form))
                   ? found.str(1)
                   : "";
    };
    const std::regex pattern(ReplaceAll(group("regexp", "\"(.*)\""), "\\\\", "\\"));
    std::istringstream lines(output);
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, pattern)) {
            for (const std::string key :
                 {"file", "line", "column", "severity", "code", "message"}) {
                const std::string number = group(key, "([0-9])");
                all += (number.empty() ? "" : match.str(std::stoul(number))) +
                       (key == "message" ? "\n" : "|");
            }
        }
    }
    return all;
}

// The same by the errorformat of a vim compiler, where a severity is a letter.
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

bool HasVim() {
    return std::system("command -v vim >/dev/null") == 0;
}

TEST(EditorsTest, ReadWhatKorvPrints) {
    const TempDir directory;
    const auto here = [&](const std::string& text) {
        return ReplaceAll(text, "$DIR", directory.Path());
    };
    WriteFile("Main.Kor", " INCLUDE sub/b (1).kor\n DB 1,\n LD A,()\n");
    WriteFile("sub/b (1).kor", " FROB B\n");
    const std::string output = RunKorv({"Main.Kor"}).console;
    const std::string package = Editor("vscode/package.json");
    EXPECT_EQ(here("$DIR/sub/b (1).kor|1||error|33|Illegal or unknown instruction. [FROB]\n"
                   "$DIR/Main.Kor|3||error|-1|Illegal error number! (Internal error.)\n"
                   "$DIR/Main.Kor|3||error|14|Argument expected.\n"
                   "$DIR/Main.Kor|2||warning|59|Expected argument.\n"),
              Matched(package.substr(package.find("\"source\": \"korv\"")), output));
    if (HasVim()) {
        EXPECT_EQ(here("$DIR/sub/b (1).kor|1|0|e|33|Illegal or unknown instruction. [FROB]\n"
                       "$DIR/Main.Kor|3|0|e|1|Illegal error number! (Internal error.)\n"
                       "$DIR/Main.Kor|3|0|e|14|Argument expected.\n"
                       "$DIR/Main.Kor|2|0|w|59|Expected argument.\n"),
                  MatchedByVim("korv", output));
    }
}

}  // namespace
}  // namespace korv_test
