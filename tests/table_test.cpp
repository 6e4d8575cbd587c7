// The reader of tables: what it makes of a case, and that it refuses, by table and line, whatever would otherwise be an
// expectation that nobody looks at.

#include "table.h"

#include <gtest/gtest.h>

#include <functional>

#include "run.h"

namespace korv_test {
namespace {

std::vector<Case> ReadCases(const std::string& path) {
    std::vector<Case> cases;
    for (const Block& block : ReadBlocks(path)) {
        cases.push_back(ReadCase(block));
    }
    return cases;
}

// Two lines, then each text in turn, make a table: where it is refused, and why.
void ExpectRefusals(const std::string& start, const std::function<void(std::string)>& reader,
                    const std::vector<std::pair<std::string, Strings>>& rows) {
    const TempDir directory;
    for (const auto& [refusal, texts] : rows) {
        for (const std::string& text : texts) {
            WriteFile("T", start + text);
            std::string got;
            try {
                reader("T");
            } catch (const std::exception& exception) {
                got = exception.what();
            }
            EXPECT_EQ(refusal, got) << text;
        }
    }
}

// clang-format off
TEST(TableTest, RefusesCasesByTableAndLine) {
    ExpectRefusals("case A\n    NOP\n", ReadCases, {
        {"", {"bytes 00", "# byte\nbytes 00\n\n\ncase B\nbytes none"}},
        {"T:3: unknown word", {"byte 00", "\tNOP\nbytes 00", "   NOP\nbytes 00"}},
        {"T:3: unknown escape", {"raw \\q", "raw \\", "raw \\x4G", "raw \\#"}},
        {"T:3: more than a line", {"raw NOP\\nHALT\\n"}},
        {"T:3: \\{ without its *count}", {"    \\{NOP}", "bytes \\{00 *}"}},
        {"T:3: alternatives twice", {"    LD [A|B],[C|D]"}},
        {"T:3: no bytes", {"bytes 0", "bytes 0 0", "bytes 0000", "bytes 0G", "bytes none 00", "bytes 00 none"}},
        {"T:3: no message: eror 33", {"    FROB ;! eror 33", "    ;! error 33 ;! eror 33"}},
        {"T:3: no message: error 33 FROB", {"    FROB ;! error 33 FROB", "error 33 FROB"}},
        {"T:3: no place, or two", {"error 33 [FROB]", "    FROB ;! error 33 7"}},
        {"T:3: no such message", {"    FROB ;! error 99", "warning 99 1", "error -2 1"}},
        {"T:3: nothing is expected", {"    NOP"}},
        {"T:3: no name", {"file"}},
        {"T:3: a name for \"output\" only", {"console x", "output"}},
        {"T:3: given twice", {"file Main.Kor"}},
        {"T:4: given twice", {"file X\nfile X", "output X\noutput X", "bytes 00\noutput Main.com"}},
        {"T:4: bytes beside an error", {"bytes 00\nerror 16 1"}},
        {"T:4: messages beside the console", {"error 16 1\nconsole", "    FROB ;! error 33\nconsole"}},
        {"T:5: bytes beside an error", {"bytes 00\nconsole\n    M(1) : error X16 : Q"}},
        {"T:5: outside a case, or a title of another case", {"bytes 00\n\n    NOP", "bytes 00\n\nbytes 00", "bytes 00\n\ncase A\nbytes 00"}},
    });
}

TEST(TableTest, RefusesEncodingsByTableAndLine) {
    ExpectRefusals("# I and R\n\n", ReadEncodings, {
        {"", {"LD I,A = ED 47"}},
        {"T:3: unequal groups", {"LD [I|R],A = ED 47", "LD I,A = ED 47|ED 4F"}},
        {"T:3: alternatives twice", {"LD [I|R],[A|B] = ED 47|ED 4F"}},
        {"T:3: no bytes", {"LD [I|R],A = ED 47|", "LD I,A = ED 4", "LD I,A = ED 4G"}},
        {"T:3: no \" = \"", {"LD I,A =ED 47", "LD I,A"}},
    });
}
// clang-format on

TEST(TableTest, MakesACaseOfItsLines) {
    const TempDir directory;
    WriteFile("T",
              "# a comment\ncase A; korv a \"\"\nfile B\n    FROB [X|YZ] ;!1 error 33 [=] ;! warning 2 [=]\n"
              "file Main.Kor\n    \\{ L\\#: \\+\\n*3}\nraw  L\\{a\\\\*2}\\r\\xE4\\n\n"
              "         ;! error 1 [\\{z*3}]\n    DB \"\\ ;! error 2 [=]\n"
              "error -1 -:0\n");
    const Case test = ReadCases("T")[0];
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
}

}  // namespace
}  // namespace korv_test
