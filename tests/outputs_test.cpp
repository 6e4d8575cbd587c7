// What is written for debuggers and as a summary, over the analysis of a source.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "frontend/analyser.h"
#include "frontend/dependencies.h"
#include "frontend/file_store.h"
#include "frontend/program_checks.h"
#include "frontend/sld.h"
#include "frontend/summary.h"
#include "frontend/symbol_formats.h"
#include "run.h"

namespace korv_test {
namespace {

korv::Analysis Analyse(const std::string& source) {
    korv::Options options;
    options.source = source;
    korv::FileStore store;
    korv::Analysis analysis = korv::Analyse(options, &store, {.statements = true, .names = true});
    EXPECT_EQ(analysis.errorCount, 0U) << source << analysis.failure;
    return analysis;
}

// An include, two ORGs, values that need 17 bits or a sign, names and comments that must be changed or left out.
korv::Analysis AnalyseSample() {
    const TempDir directory;
    WriteFile("a.kor", R"(LESS: EQU -5
BIG: EQU 35000*2
 ORG 8000H
START: CALL SUB1 ; LOGPOINT a|b
 DJNZ START
 INCLUDE p.kor
 ORG 0C000H
?X: LDIR ; AWPMEM
TEXT: DB "a;WPMEM",1 ; WPMEM
 DS 3
)");
    WriteFile("p.kor", "SUB1: LD A,LESS\n RET\n; ASSERTION \\\n  goes on\n IF 0\n HALT ; WPMEM\n ENDIF\n");
    return Analyse("a.kor");
}

const std::string SLD = R"(|SLD.data.version|1
||K|KEYWORDS|WPMEM,LOGPOINT,ASSERTION
a.kor|1||0|-1|-1|Z|pages.size:65536,pages.count:32,slots.count:1,slots.adr:0
a.kor|4||0|0|32768|T|
a.kor|4||0|0|32768|K|; LOGPOINT a!b
a.kor|5||0|0|32771|T|
p.kor|1||0|0|32773|T|
p.kor|2||0|0|32775|T|
p.kor|3||0|0|32776|K|; ASSERTION \   goes on
a.kor|8||0|0|49152|T|
a.kor|9||0|0|49154|K|; WPMEM
a.kor|8||0|0|49152|L|,?X,,
a.kor|2||0|-1|70000|L|,BIG,,+equ
a.kor|1||0|-1|-5|L|,LESS,,+equ,+used
a.kor|4||0|0|32768|L|,START,,+used
p.kor|1||0|0|32773|L|,SUB1,,+used
a.kor|9||0|0|49154|L|,TEXT,,
)";

const std::string SUMMARY = R"(Image: 21 bytes. Room to FFFFH: 16371 bytes.

0000 ................................#...............+............... FFFF
A character is 1 KiB: # code, + data, . free.

File   Statements  Code  Data  DS
a.kor          10     7     8   3
p.kor           4     3     0   0

From    To  Bytes
8000  8007      8
C000  C00C     13

Largest routines  Bytes
TEXT                 11
START                 5
SUB1                  3
?X                    2

T-states  Address  Best  Worst
START        8000    25     30
SUB1         8005    17     17
?X           C000    16     21
)";

const std::string SUMMARY_JSON =
    R"({"imageBytes":21,"room":16371,"map":"................................#...............+...............",)"
    R"("files":[{"name":"a.kor","statements":10,"code":7,"data":8,"space":3},)"
    R"({"name":"p.kor","statements":4,"code":3,"data":0,"space":0}],)"
    R"("blocks":[{"from":32768,"to":32775,"bytes":8},{"from":49152,"to":49164,"bytes":13}],)"
    R"("largest":[{"name":"TEXT","bytes":11},{"name":"START","bytes":5},{"name":"SUB1","bytes":3},)"
    R"({"name":"?X","bytes":2}],)"
    R"("routines":[{"name":"START","address":32768,"bytes":5,"best":25,"worst":30},)"
    R"({"name":"SUB1","address":32773,"bytes":3,"best":17,"worst":17},)"
    R"({"name":"?X","address":49152,"bytes":2,"best":16,"worst":21},)"
    R"({"name":"TEXT","address":49154,"bytes":11,"best":0,"worst":0}]})"
    "\n";

// For each symbol format, by name: its text and what it leaves out.
const std::map<std::string_view, std::pair<std::string, std::string>> SYMBOLS = {
    {"equ",
     {R"(LESS:                    EQU -5
START:                   EQU $8000
SUB1:                    EQU $8005
?X:                      EQU $C000
TEXT:                    EQU $C002
BIG:                     EQU $0001 SHL 16 OR $1170
)",
      ""}},
    {"sym",
     {"; this file was created with wlalink's format, by korv-as\n[labels]\n"
      "00:8000 START\n00:8005 SUB1\n00:C002 TEXT\n",
      "2 values, 1 name"}},
    {"noi", {"DEF START 0x8000\nDEF SUB1 0x8005\nDEF ?X 0xC000\nDEF TEXT 0xC002\n", "2 values"}},
    {"cspect", {"8000 8000 00 START\n8005 8005 00 SUB1\nC000 C000 00 ?X\nC002 C002 00 TEXT\n", "2 values"}},
};

TEST(OutputsTest, AreTheseForASample) {
    const korv::Analysis analysis = AnalyseSample();
    EXPECT_EQ(korv::SldText(analysis), SLD);
    EXPECT_EQ(korv::SummaryText(analysis), SUMMARY);
    EXPECT_EQ(korv::SummaryJson(analysis), SUMMARY_JSON);
    EXPECT_EQ(korv::SymbolFormats().size(), SYMBOLS.size());
    for (const korv::SymbolFormatRow& row : korv::SymbolFormats()) {
        const korv::SymbolFile file = korv::SymbolText(analysis, row.format);
        EXPECT_EQ(std::pair(file.text, file.Dropped()), SYMBOLS.at(row.name)) << row.name;
    }
    korv::Analysis renamed = analysis;
    renamed.files.at(0).name = "\xFF.kor";
    EXPECT_TRUE(Contains(korv::SummaryJson(renamed), "\"\uFFFD.kor\""));
    std::string unused;
    for (const korv::Message& message : korv::UnusedLabelWarnings(analysis)) {
        unused += std::to_string(message.place.line) + " " + message.detail + ",";
    }
    EXPECT_EQ(unused, "2 'BIG',8 '?X',9 'TEXT',");
}

using Mark = std::tuple<std::string, std::string, std::string>;  // file, line, value

// Every instruction has one T line, whose address holds its first byte in the image, and every label one L line.
void CheckSld(const korv::Analysis& analysis) {
    std::map<std::uint32_t, std::uint8_t> memory;
    for (const korv::Block& block : analysis.blocks) {
        for (std::uint32_t i = 0; i < block.count; ++i) {
            memory[block.address + i] = analysis.image.at(block.offset + i);
        }
    }
    std::vector<Mark> traces, labels, expectedTraces, expectedLabels;
    std::vector<std::uint8_t> bytes, expectedBytes;
    for (const std::string& line : Split(korv::SldText(analysis), '\n')) {
        const Strings fields = Split(line, '|');
        if (fields.size() != 8) {
            EXPECT_TRUE(line.empty() || line.starts_with('|')) << line;
        } else if (fields[6] == "T") {
            traces.emplace_back(fields[0], fields[1], fields[5]);
            bytes.push_back(memory.at(static_cast<std::uint32_t>(std::stoul(fields[5]))));
        } else if (fields[6] == "L") {
            labels.emplace_back(fields[0], fields[1], Split(fields[7], ',').at(1));
        }
    }
    for (const korv::Statement& statement : analysis.statements) {
        if (statement.kind == korv::StatementKind::instruction && !statement.isSkipped) {
            const korv::Opening& opening = analysis.openings.at(static_cast<std::size_t>(statement.opening));
            expectedTraces.emplace_back(analysis.files.at(static_cast<std::size_t>(opening.file)).name,
                                        std::to_string(statement.line), std::to_string(statement.address));
            expectedBytes.push_back(analysis.image.at(statement.offset));
        }
    }
    for (const korv::Name& name : analysis.names) {
        if (name.kind == korv::NameKind::label || name.kind == korv::NameKind::constant) {
            expectedLabels.emplace_back(analysis.files.at(static_cast<std::size_t>(name.definition.file)).name,
                                        std::to_string(name.definition.line), name.text);
        }
    }
    EXPECT_GT(traces.size(), 4U);
    EXPECT_EQ(traces, expectedTraces);
    EXPECT_EQ(bytes, expectedBytes);
    EXPECT_EQ(labels, expectedLabels);
}

TEST(OutputsTest, RulesHoldOnlyNamesThatMakeAndNinjaReadBack) {
    korv::Analysis analysis = AnalyseSample();
    const std::string rest = ": \\\n  a.kor \\\n  p.kor\n\na.kor:\n\np.kor:\n";
    for (const std::string name : {"+,-./@_~(){}!]Zz09", "\xC3\xA4", "a\\b\\\\c", "define.", "./.Sx", ".", "a~"}) {
        EXPECT_EQ(name + rest, korv::DependenciesOf(analysis, name).text);
    }
    EXPECT_EQ("a\\ \\#\\:$$b" + rest, korv::DependenciesOf(analysis, "a #:$b").text);
    const std::string refusal = "cannot write dependencies: make or ninja would misread the name '";
    for (const std::string name : {"~a", "a%", "a=b", "define", "././define", "././.SUFFIXES", "._", "a)", "a ",
                                   "ab:", "a\\", "a\\#b", "a\nb"}) {
        EXPECT_EQ(refusal + name + "'", korv::DependenciesOf(analysis, name).failure);
    }
    analysis.files.at(1).name = "p*.kor";
    EXPECT_EQ(refusal + "p*.kor'", korv::DependenciesOf(analysis, "a").failure);
    analysis.files.at(1).isStandardInput = true;
    EXPECT_EQ("a: \\\n  a.kor\n\na.kor:\n", korv::DependenciesOf(analysis, "a").text);
}

TEST(OutputsTest, DebuggingDataLeadToTheBytesOfEveryInstruction) {
    CheckSld(AnalyseSample());
    for (const std::string name : {"guess", "loader", "dump"}) {
        SCOPED_TRACE(name);
        CheckSld(Analyse(ProjectPath("examples/" + name + ".kor")));
    }
}

}  // namespace
}  // namespace korv_test
