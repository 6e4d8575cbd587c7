// korv-as: its table of runs, and a comparison with korv for every source in the other tables.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

#include "frontend/argument_files.h"
#include "run.h"

namespace korv_test {
namespace {

namespace fs = std::filesystem;

class FrontendTest : public testing::TestWithParam<Block> {};

int ModeOf(const std::string& name) {
    return static_cast<int>(fs::status(name).permissions());
}

// Checks a case in the same way as a case of korv, but compares everything that is printed, and every file. New files
// must have the usual permissions.
TEST_P(FrontendTest, Holds) {
    const Case test = ReadCase(GetParam());
    const TempDir directory;
    std::map<std::string, std::string> expected = test.files;
    expected["-"] = "";
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    for (const auto& [name, contents] : test.outputs) {
        expected[name] = contents;
    }
    Strings names;
    for (const auto& file : test.files) {
        names.push_back(file.first);
    }
    expected["console"] = Shown(expected["console"], "", names);
    std::string output;
    const std::string printed = RunKorvAs(test.arguments, &output);
    std::map<std::string, std::string> got = FilesHere();
    for (const auto& [name, contents] : got) {
        EXPECT_TRUE(isWindows || ModeOf(test.files.begin()->first) == ModeOf(name)) << test.title << "\n" << name;
    }
    got["-"] = output;
    got["console"] = printed;
    for (auto* const files : {&expected, &got}) {
        for (auto& [name, contents] : *files) {
            contents = isWindows ? ReplaceAll(contents, "\\", "/") : contents;
        }
    }
    const std::string different = Differences(test, expected, got);
    EXPECT_TRUE(different.empty()) << different;
}

INSTANTIATE_TEST_SUITE_P(Tables, FrontendTest, testing::ValuesIn(ReadBlocks(ProjectPath("tests/frontend/runs.txt"))),
                         [](const auto& test) { return TestName(test.param); });

Strings AllTables() {
    Strings tables = {ProjectPath("docs/manual.md")};
    for (const std::string folder : {"cases", "encodings"}) {
        std::ranges::move(TablesIn(folder), std::back_inserter(tables));
    }
    return tables;
}

// The cases of a table. All instructions of a table of encodings form one case.
std::vector<Case> CasesOf(const std::string& table) {
    std::vector<Case> cases;
    if (Contains(table, "/encodings/")) {
        std::string& source = cases.emplace_back().files["Main.Kor"];
        for (const Encoding& encoding : ReadEncodings(table)) {
            source += " " + encoding.instruction + "\n";
        }
    } else {
        std::ranges::transform(ReadBlocks(table), std::back_inserter(cases), ReadCase);
    }
    return cases;
}

class FrontendPromiseTest : public testing::TestWithParam<std::string> {};

// For every source in the tables, korv-as must write either the same image as korv or none. It may write none only if
// korv writes none, or if korv-as reports an error that korv does not report.
TEST_P(FrontendPromiseTest, EverySourceGivesTheImageOfKorvOrNone) {
    const std::regex stricter("error: .*(\\[(open-if|max-image)\\]|\n *(IF|COND) )", std::regex::icase);
    int images = 0;
    for (const Case& test : CasesOf(GetParam())) {
        for (const std::string format : {"com", "bin"}) {
            const TempDir directory;
            for (const auto& [name, contents] : test.files) {
                WriteFile(name, contents);
            }
            RunKorv({"Main.Kor", "KORV.IMG", format == "com" ? "/b-" : "/b"});
            const std::string printed = RunKorvAs({"Main.Kor", "-o", "AS.IMG", "-f", format, "--max-errors", "0"});
            const auto image = ReadFile("KORV.IMG"), own = ReadFile("AS.IMG");
            const bool isNone = !own && (!image || std::regex_search(printed, stricter));
            EXPECT_TRUE(own ? own == image : isNone) << test.files.at("Main.Kor") << printed;
            EXPECT_EQ(own.has_value(), !Contains(printed, "exit status")) << printed;
            images += own.has_value() ? 1 : 0;
        }
    }
    EXPECT_EQ(images == 0, Contains(GetParam(), "conditions.txt")) << "whose sources that assemble leave an IF open";
}

INSTANTIATE_TEST_SUITE_P(Tables, FrontendPromiseTest, testing::ValuesIn(AllTables()));

// The output of korv-as for a source in which "|" ends a line.
std::string PrintedFor(const std::string& source, const std::string& words = "") {
    const TempDir directory;
    WriteFile("defs.kor", "\n");
    WriteFile("a.kor", ReplaceAll(source, "|", "\n") + "\n");
    return RunKorvAs(Split("a.kor" + words, ' '));
}

// clang-format off
// The place and name of each message for a source, with "!" before errors.
TEST(FrontendTest, WarnsAboutTheseLinesAndNoOthers) {
    const char* rows[][3] = {
        {"", " DB FWD-$| DW FWD-$1|FWD: DW $-FWD|X: EQU LATE*$|LATE: JP NONE+$", "1:5 late-location, 4:8 late-location, !5:10 X12"},
        {"", " LD BC,35000*2| LD (35000*2),A| CALL -32769| LD IX,(65535+1)", "1:8 truncated, 2:5 X23, 3:7 truncated, 4:8 truncated"},
        {"", " DS 35000*1| LD HL,65535| LD DE,-32768|X: EQU 35000*2| JP X", "5:5 X23"},
        {"", " NOP ; a \\| HALT|; b \\|  ; c \\||; d \\\r| DB 1|  DB 2, \\|3", "1:10 continued-comment, 6:5 continued-comment"},
        {"", " ORG 5| NOP|H: ORG $| ORG 9000H", "3:1 register-label, 4:6 org-gap"},
        {" -f hex -o h", " DS 9| ORG 101H| NOP| ORG 103H| NOP| ORG 0FFH| DW 1| ORG 0FFFFH| DW 1| ORG 0| NOP", "11:2 overlap, 7:2 overlap, 3:2 overlap, 5:2 overlap"},
        {" -f bin -W org", " NOP| ORG 5| NOP| ORG 7", "2:6 X47, 4:6 X48, 4:6 org-gap"},
        {"", "EACH: NOP|12:|1B: EQU 1|H: EQU 1|EACHX: NOP|A_H: NOP|101B: NOP", "1:1 number-label, 2:1 number-label, 3:1 number-label, 4:1 register-label, 6:1 number-label, 7:1 number-label"},
        {"", "B: EQU 5| RST B|H: NOP", "!2:6 X16, 3:1 register-label"},
        {"", "R: EQU HL|S: EQU NZ|T: EQU (C)| ORG B| PUSH HL|U: EQU B+1", "1:1 register-label, 1:8 register-value, 2:8 register-value, 3:8 register-value, 4:6 register-value, !6:8 X24"},
        {" -W no-org-gap", " DB (IX+5)| DW 1,(IY-1)| DS (IX+1)| ORG (IX+1)| BIT 1,(IX+1)", "1:5 register-value, 2:7 register-value, 3:5 register-value, 4:6 register-value"},
        {"", " IF !1| ENDIF| IF 1<2 OR 3| ENDIF| IF 1 AND 2=2| ENDIF", "1:5 condition, 3:5 condition, 5:5 condition"},
        {" -W no-org-gap", " DS 0-1| LD A,\"a| DB 1,2,\"b| DB \"a\"| ORG 35000*2| DS 1-1", "1:5 negative-size, 2:7 open-string, 3:9 open-string, 5:6 truncated"},
        {" -f bin -W no-org", " ORG 5| ORG 5| ORG 7| NOP| ORG 9", "3:6 X48, 5:6 org-gap"},
        {"", " IF 0| IF 1| IF 1| ENDIF| ENDIF| IF 0| ELSE| ENDIF| ELSE| IF 1| ENDIF| ENDIF", "2:2 nested-if, 3:2 nested-if, 7:2 nested-if"},
        {"", "END|ENDX|Defb:| LD A,300| DM \"a| DB 1,,2| DB 1,", "1:1 keyword-label, 4:7 X40, 5:5 X45, 6:6 X59, 7:6 X59"},
        {" -W error=range -W no-org-gap", " LD A,300| ORG 5| DB 1,", "!1:7 X40, 3:6 X59"},
        {" -W error=org -W error -W no-error=range", " LD A,300| ORG 300H", "1:7 X40, !2:6 X60, !2:6 org-gap"},
        {"", " DB \"one\\n\"| DB \"C:\\\",0| DB \"\\r\"| DB \"\\t\"| DB \"\\0\"| DB \"\\x\"| DB \"\\\\\"|L1; LD A,5 6|L2; LD (IX+1),2*3", "1:9 escape, 3:6 escape, 4:6 escape, 5:6 escape, 6:6 escape, 7:6 escape, 9:1 hidden-instruction"},
        {"", " IF 3 AND 1=2| ENDIF| IF 1=2 OR 1| ENDIF| IF (1 AND 4)=4| ENDIF| IF 1 AND 2| ENDIF", "1:5 condition, 3:5 condition"},
        {" -Werror -W no-error=empty-operand -W no-open-string -W no-skipped-line", "* x| LD A,300| DB 1,| DM \"a", "!2:7 X40, 3:6 X59"},
        {" -W label-without-colon", "XYZ INCLUDE defs.kor| FROB|Y FROB|W NOP|EACH: FROB", "1:1 X57, !2:2 X33, !3:3 X33, 4:1 X57, !5:7 X33"},
        {" -W no-keyword-label -W no-org-gap -l l", "END LD A,300| ORG 100H| NOP", "1:10 X40"},
        {" -w -W range", "* x| LD A,300|END| DB 1,", ""},
        {" -W error -W no-error --line-length 19", " LD A,300 ; 567890| LD A,300 ; 5678901|", "1:7 X40, !2:2 X41"},
        {"", " IF 1| IF X| ELSE| ENDIF|Y: IF 1", "!2:5 X12, !5:1 X43, !1:2 open-if, !5:4 open-if"},
        {"", " JP B1| JP A1| DB \"B1\",XB1,B1|XB1: EQU 5", "!2:5 X12, !3:14 X12"},
        {" --max-image 3", " DW 1| DS 1| DS 0|", ""},
        {" --max-image 3", " DW 1| DS 65535*32767| FROB", "!2:2 max-image"},
        {" --max-image 3", " DW 1| DW FWD| FROB|B: NOP", "!2:2 max-image"},
        {"", " ENDIF| ENDIF|X: NOP|X: NOP|X: NOP| IFDEF X| .ENDIF| .ENDIF| IFDEF A| FI| ENDIF", "!1:2 X34, !2:2 X34, !4:1 X8, !5:1 X8, !6:2 X33, !8:2 X33, !9:2 X33, !10:2 X33, !11:2 X34"},
        {" --max-errors 2", " FROB| DB 1,| FROB| DB 1,| FROB", "!1:2 X33, 2:6 X59, !3:2 X33"},
    };
    const std::regex message("a\\.kor:([0-9:]+): (error|warning): .* \\[([\\w-]+)\\]\n");
    for (const auto& [words, source, messages] : rows) {
        const std::string printed = PrintedFor(source, words);
        std::string got;
        for (std::sregex_iterator it(printed.begin(), printed.end(), message), end; it != end; ++it) {
            got += (got.empty() ? "" : ", ") + std::string(it->str(2) == "error" ? "!" : "") + it->str(1) + " " + it->str(3);
        }
        EXPECT_EQ(messages, got) << source << "\n" << printed;
        EXPECT_EQ(Contains(got, "!"), Contains(printed, "exit status 1")) << printed;
    }
}

TEST(FrontendTest, BytesAtTheEndsOfLinesAndFilesHideNothing) {
    EXPECT_EQ("", PrintedFor(" NOP\r|; c\r\r|\r| NOP\r|\x1A\x1A"));
    EXPECT_TRUE(Contains(PrintedFor(std::string(" INCLUDE\0 B.KOR", 15)), "warning: a byte 0 hides the rest of its line"));
}

TEST(FrontendTest, RefusesAFaultyCommandLineAndWritesNothing) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "no source file is given; --help lists the options"}, {"a.kor b.kor", "one source file at a time: 'a.kor' and 'b.kor' are given"}, {"-c a.kor", "unknown option '-c'; --help"},
        {"--fo hex a.kor", "unknown option '--fo'; did you mean '--format'?"}, {"--symbol x a.kor", "did you mean '--symbols'?"}, {"--lsiting=x a.kor", "'--lsiting'; did you mean '--listing'?"},
        {"-wv a.kor", "'-v'; did you mean '-V'?"}, {"-symbols x", "'-symbols'; did you mean '--symbols'?"}, {"-- --", "cannot read --"},
        {"a.kor --listing", "missing FILE after '--listing'"}, {"-M -o b a.kor", "missing FILE after '-M'"}, {"-l --summary a.kor", "missing FILE after '-l'"}, {"-l -- a.kor", "missing FILE after '-l'"}, {"-w -I", "missing DIR after '-I'"},
        {"a.kor -o ", "empty FILE after '-o'"}, {"-w ", "the name of the source is empty"}, {"--help=x", "takes no argument: 'x'"},
        {"none.kor", "cannot read none.kor: No such file or directory"}, {"sub", isWindows ? "cannot read sub" : "cannot read sub: Is a directory"}, {"-I sub x", "cannot read x"},
        {"-", "standard input has no name, so the image needs one; use -o"}, {"- -o stdin", "refusing to overwrite stdin: it is an input of this run"}, {"-f elf a.kor", "-f: 'elf' is not com, bin or hex"}, {"-W no-foo a.kor", "unknown warning 'foo'; --help lists them"}, {"-W error=rage a.kor", "'rage'; did you mean 'range'?"}, {"--=x a.kor", "unknown option '--'"},
        {"a.kor -o a.kor", "refusing to overwrite a.kor: it is an input of this run"}, {"a.kor -l sub/link", "refusing to overwrite sub/link: it is an input of this run"}, {"a.kor --symbols data.bin", "refusing to overwrite data.bin"},
        {"a.kor -o b -l ./b", "refusing to write two outputs to one file: b and ./b"}, {"data.bin -o a.kor -l sub/link", "two outputs to one file: a.kor and sub/link"}, {"a.kor -o - -l -", "standard output and standard output"}, {"a.kor -o - -M d", "dependencies need a target with a name"}, {"a.kor -o .AZ -M d", "would misread the name '.AZ'"}, {"a.kor -o a%b -M d", "would misread the name 'a%b'"},
        {"a.kor --summary -l -", "--summary needs standard output for itself"}, {"a.kor --summary -o /dev/stdout", "--summary needs"},
        {"a.kor -o no/a.com", "cannot write no/a.com: No such file or directory"}, {"a.kor -l sub", isWindows ? "cannot write sub" : "cannot write sub: Is a directory"},
        {"-D =1 a.kor", "'' is not a name"}, {"-D 1 a.kor", "'1' is not a name"}, {"-D A.B a.kor", "-D A.B: 'A.B' is not a name"}, {"-D A=X -D =1 none.kor", "-D A=X: could not resolve label: 'X'"}, {"-D A -D A a.kor", "redefinition"},
        {"-D NOP a.kor", "not allowed as label"}, {"--max-errors 9x a.kor", "--max-errors: '9x' is not a number from 0 to 4294967295"}, {"--color red a.kor", "'red' is not auto, always or never"},
        {"--max-image 99999999999999999999 a.kor", "--max-image: '99999999999999999999' is not a number from 0 to"}, {"--line-length=0 a.kor", "'0' is not a number from 1 to 65536"}, {"--line-length 65537 a.kor", "to 65536"},
        {"a.kor -o new -l sub/to", "two outputs"}, {"a.kor -o - -l /dev/stdout", "two outputs"}, {"@ a.kor", "missing FILE after '@'"},
        {"a.kor @none", "cannot read none: No such file or directory"}, {"@sub/x", "sub/x: argument files are nested more than 10 deep"}, {"@open", "open, line 3: missing closing quote"}};
    for (const auto& [words, complaint] : rows) {
        const TempDir directory;
        WriteFile("a.kor", " NOP\n BINCLUDE data.bin\n");
        WriteFile("data.bin", "x");
        WriteFile("stdin", " RET\n");
        WriteFile("sub/x", "@sub/x");
        WriteFile("open", "a.kor\n-o b\nx\"y\n\n");
        fs::create_hard_link("a.kor", "sub/link");
        if (isWindows && (Contains(words, "sub/to") || Contains(words, "/dev/"))) {
            continue;  // links need a privilege on Windows
        }
        isWindows ? void() : fs::create_symlink("../new", "sub/to");
        const auto before = FilesHere();
        const std::string printed = RunKorvAs(words[0] == '\0' ? Strings() : Split(words, ' '));
        EXPECT_TRUE(std::regex_match(printed, std::regex("(.*\n)*korv-as: error: .*\nexit status 2\n"))) << printed;
        EXPECT_TRUE(Contains(printed, complaint)) << words << "\n" << printed;
        EXPECT_EQ(before, FilesHere()) << words;
    }
}

TEST(FrontendTest, AFileOfMoreThan256MebibytesIsRefused) {
    const TempDir directory;
    WriteFile("stdin", "");
    fs::resize_file("stdin", 0x10000001);
    EXPECT_EQ("korv-as: error: cannot read stdin: File too large\nexit status 2\n", RunKorvAs({"stdin"}));
    EXPECT_EQ("korv-as: error: cannot read standard input: File too large\nexit status 2\n", RunKorvAs({"-", "-o", "a"}));
}

TEST(FrontendTest, SplitsArgumentFilesLikeGnu) {
    const std::pair<std::string, const char*> rows[] = {
        {"\xEF\xBB\xBF# all\n -I  lib\t-w\r\n\t# more\n\na#b #c\n#", "-I|lib|-w|a#b|#c|"}, {"\xC3\xA4 # c\n#d", "ä|#|c|"}, {"", ""},
        {"'a \"b'c \"d 'e\"f '' \"\\\"\"", "a \"bc|d 'ef||\"|"}, {"a\\ b 'c\\'d' \\\\e \\#", "a b|c'd|\\e|#|"}, {"a \\\n b\\\r\nc\\", "a|b|c|"},
        {"\na\n'b\n", "a|b\n|line 3: missing closing quote"}, {std::string("a\n\0", 3), "line 2: byte 0 in a text"}};
    for (const auto& [text, expected] : rows) {
        Strings words;
        const std::string failure = korv::SplitWords(text, &words);
        std::string got;
        for (const std::string& word : words) {
            got += word + "|";
        }
        EXPECT_EQ(expected, got + failure) << text;
    }
}

// Files that refer to each other endlessly are read only up to a limit.
TEST(FrontendTest, ArgumentFilesEndAtTenDeepAndAtAMegabyte) {
    const TempDir directory;
    for (int i = 1; i <= 10; ++i) {
        const std::string next = "@" + std::to_string(i + 1) + "\n";
        WriteFile(std::to_string(i), i == 10 ? "a.kor" : next);
        WriteFile("all/" + std::to_string(i), i == 10 ? "" : ReplaceAll(std::string(1000, 'x'), "x", "@all/" + next.substr(1)));
    }
    WriteFile("a.kor", " RET\n");
    EXPECT_EQ("", RunKorvAs({"@1"}));
    EXPECT_TRUE(Contains(RunKorvAs({"@all/1"}), "the argument files have more than 1048576 bytes")) << "or it would not end";
    WriteFile("b.kor", ReplaceAll(std::string(70000, 'x'), "x", " INCLUDE all/10\n"));
    EXPECT_EQ("b.kor:65536:2: error: too many files are included [max-files]\n INCLUDE all/10\n ^~~~~~~\n"
              "b.kor:65536:2: note: check whether a file includes itself\nkorv-as: 1 error\nexit status 1\n", RunKorvAs({"b.kor"}));
}
// clang-format on

}  // namespace
}  // namespace korv_test
