// The cases in cases/ and the examples in the manual. Each is a separate test, named after its table, line and title.
// This file also tests the reader of the tables.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "run.h"

namespace korv_test {
namespace fs = std::filesystem;

void PrintTo(const Block& block, std::ostream* stream) {
    *stream << block.front().place;
}

namespace {

// The lines of `console` that are messages, without the directories of their files.
std::string MessagesIn(const std::string& console) {
    std::istringstream stream(console);
    std::string messages;
    for (std::string line; std::getline(stream, line);) {
        const std::size_t end = std::min(line.find(") : error X"), line.find(") : warning X"));
        if (end != std::string::npos) {
            messages += line.substr(line.find_last_of("/\\", end) + 1) + "\n";
        }
    }
    return messages;
}

// The console output of a case that expects `lines`: the title, these lines and, except after the help text, the
// blanks that erase the meter.
std::string Console(const std::string& lines) {
    const bool isHelp = lines.find("[Korv] HELP!\n") != std::string::npos;
    const std::string wiped(isHelp ? 0 : 26, ' ');  // a variable, because GCC 12 warns if this is part of the sum
    return "Brelloc Korv v2.00.025 *FAST*\n" + lines + wiped + (isHelp ? "" : "\r");
}

std::vector<Block> AllBlocks() {
    Strings tables = TablesIn("cases");
    tables.push_back(ProjectPath("docs/manual.md"));
    std::vector<Block> blocks;
    for (const std::string& path : tables) {
        std::ranges::move(ReadBlocks(path), std::back_inserter(blocks));
    }
    return blocks;
}

class CaseTest : public testing::TestWithParam<Block> {};

TEST_P(CaseTest, Holds) {
    Case test = ReadCase(GetParam());
    const TempDir directory;
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    const std::string console = RunKorv(test.arguments);
    const auto here = [&](const std::string& text) { return Shown(text, directory.Path()); };
    // The sources must be unchanged, unless the case expects other contents.
    std::map<std::string, std::string> expected = test.files, got = FilesHere();
    for (const auto& [name, contents] : test.outputs) {
        expected[name] = here(name == "console" ? Console(contents) : contents);
    }
    if (!test.outputs.contains("console")) {
        const std::string different =
            Differences(test, {{"messages", here(test.messages)}}, {{"messages", MessagesIn(console)}});
        ASSERT_TRUE(different.empty()) << different << console;
        got.erase("console");
    }
    if (test.hasError && !expected.contains("Errors.Out")) {
        got.erase("Errors.Out");
    } else if (!test.hasError && test.bytes != "none" && !test.outputs.contains(test.target)) {
        ASSERT_TRUE(fs::exists(test.target)) << test.title << "\n" << console;
        expected[test.target] = test.bytes ? FromHex(*test.bytes) : got[test.target];
    }
    test.places.erase("console");  // the title line is in no table
    const std::string different = Differences(test, expected, got);
    EXPECT_TRUE(different.empty()) << different;
}

// The name of a test looks like "commandline_txt_12_case_a_title".
INSTANTIATE_TEST_SUITE_P(Tables, CaseTest, testing::ValuesIn(AllBlocks()),
                         [](const auto& test) { return TestName(test.param); });

// A fault in a table is reported with the name of the table and the line.
TEST(TableTest, RefusesWhatWouldBeAnExpectationThatNobodyLooksAt) {
    // clang-format off
    const std::string inCase = "case A\n    NOP\n", inEncodings = "# I and R\n\n";
    const std::tuple<std::string, std::string, Strings> rows[] = {  // the start of a table, the message, lines that cause it
        {inCase, "", {"bytes 00", "bytes 00\n\n\ncase B\nbytes none"}},
        {inCase, "T:3: unknown word", {"byte 00", "# byte", "\tNOP\nbytes 00", "   NOP\nbytes 00"}},
        {inCase, "T:3: unknown escape", {"raw \\q", "raw \\", "raw \\x4G", "raw \\#"}},
        {inCase, "T:3: \\{ without its *count}", {"    \\{NOP}", "bytes \\{00 *}"}},
        {inCase, "T:3: alternatives twice", {"    LD [A|B],[C|D]"}},
        {inCase, "T:3: no bytes", {"bytes 0", "bytes 0 0", "bytes 0000", "bytes 0G", "bytes none 00", "bytes 00 none",
                                     "    NOP ;= 0"}},
        {inCase, "T:3: no message: eror 33", {"    FROB ;! eror 33", "    ;! error 33 ;! eror 33"}},
        {inCase, "T:3: no message: error 33 FROB", {"    FROB ;! error 33 FROB", "error 33 FROB"}},
        {inCase, "T:3: no place, or two", {"error 33 [FROB]", "    FROB ;! error 33 7"}},
        {inCase, "T:3: no such message", {"    FROB ;! error 99", "warning 99 1", "error -2 1"}},
        {inCase, "T:3: nothing is expected", {"    NOP"}},
        {inCase, "T:3: no name", {"file"}},
        {inCase, "T:3: a name for \"output\" only", {"console x", "output"}},
        {inCase, "T:3: given twice", {"file Main.Kor"}},
        {inCase, "T:4: given twice", {"file X\nfile X", "output X\noutput X", "bytes 00\noutput Main.com"}},
        {inCase, "T:4: bytes beside an error", {"bytes 00\nerror 16 1"}},
        {inCase, "T:4: messages beside the console", {"error 16 1\nconsole", "    FROB ;! error 33\nconsole"}},
        {inCase, "T:5: bytes beside an error", {"bytes 00\nconsole\n    M(1) : error X16 : Q"}},
        {inCase, "T:5: outside a case, or a title of another case", {"bytes 00\n\n    NOP", "bytes 00\n\ncase A"}},
        {inEncodings, "", {"LD I,A = ED 47"}},
        {inEncodings, "T:3: unequal groups", {"LD [I|R],A = ED 47", "LD I,A = ED 47|ED 4F"}},
        {inEncodings, "T:3: alternatives twice", {"LD [I|R],[A|B] = ED 47|ED 4F"}},
        {inEncodings, "T:3: no bytes", {"LD [I|R],A = ED 47|", "LD I,A = ED 4", "LD I,A = ED 4G"}},
        {inEncodings, "T:3: no \" = \"", {"LD I,A =ED 47", "LD I,A"}},
    };
    // clang-format on
    const TempDir directory;
    for (const auto& [start, refusal, texts] : rows) {
        for (const std::string& text : texts) {
            WriteFile("T", start + text);
            std::string got;
            try {
                if (start == inEncodings) {
                    ReadEncodings("T");
                } else {
                    std::ranges::for_each(ReadBlocks("T"), ReadCase);
                }
            } catch (const std::exception& exception) {
                got = exception.what();
            }
            EXPECT_EQ(refusal, got) << text;
        }
    }
}

TEST(TableTest, MakesACaseOfItsLines) {
    const TempDir directory;
    WriteFile("T",
              "case A; korv a \"\"\n    \\{ L\\#: \\+\\n*3}\nraw  L\\{a\\\\*2}\\r\\xE4\\n\n"
              "         ;! error 1 [\\{z*3}]\n    DB \"\\ ;! error 2 [=]\nerror -1 -:0\n"
              "file B\n    FROB [X|YZ] ;!1 error 33 [=] ;! warning 2 [=]\n\n"
              "case B\n    DB 1  ;= 01\n    [ RET| DB \";=\"] ;= C9 3B  3D\n");
    const Case test = ReadCase(ReadBlocks("T")[0]);
    EXPECT_EQ("FROB X\nFROB YZ\n", test.files.at("B"));
    EXPECT_EQ(" L0: 1\n L1: 2\n L2: 3\n La\\a\\\r\xE4\nDB \"\\\n", test.files.at("Main.Kor"));
    EXPECT_EQ((Strings{"a", ""}), test.arguments);
    EXPECT_EQ(
        "Main.Kor(4) : error X1 : System Error! [zzz]\n"
        "Main.Kor(5) : error X2 : *Identifiers* [=]\n"
        "Uhm, I DUNNO! ;p(0) : error X-1 : Illegal error number! (Internal error.)\n"
        "B(1) : error X33 : Illegal or unknown instruction. [X]\n"
        "B(2) : error X33 : Illegal or unknown instruction. [YZ]\n"
        "B(1) : warning X2 : *Identifiers* [X]\nB(2) : warning X2 : *Identifiers* [YZ]\n",
        test.messages);
    const Case other = ReadCase(ReadBlocks("T")[1]);
    EXPECT_EQ("DB 1\n RET\n DB \";=\"\n", other.files.at("Main.Kor"));
    EXPECT_EQ("01C93B3D", other.bytes);
}

}  // namespace
}  // namespace korv_test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
