// The parts of lines that messages point at.

#include <gtest/gtest.h>

#include "driver/assembler.h"
#include "frontend/logical_line.h"
#include "run.h"

namespace korv_test {
namespace {

class Recorder : public korv::MessageReceiver {
  public:
    void OnMessage(std::int32_t, std::int32_t, std::string_view, const korv::SourcePlace& place) override {
        places.push_back(place);
    }
    std::vector<korv::SourcePlace> places;
};

// A line, and the parts of it that messages point at. An empty part means the whole line.
// clang-format off
const std::vector<std::pair<std::string, Strings>> rows = {
    // the number of operands
    {" LD A,B,C,D", {"C"}}, {" ADD A,B,C", {"C"}}, {" NOP 1", {"1"}}, {" LD A", {"LD"}}, {" DB", {"DB"}},
    // an operand
    {" LD (IX+1),300", {"300"}}, {" LD (BC),B", {"B"}}, {" LD AF,1", {"AF"}}, {" LD HL,BC", {"BC"}},
    {" LD (1),AF", {"AF"}}, {" LD F,A", {"F"}}, {" ADD BC,HL", {"BC"}}, {" ADC IX,A", {"IX"}}, {" ADD HL,1", {"1"}},
    {" INC 1", {"1"}}, {" BIT 8,A", {"8"}}, {" BIT NIX,A", {"NIX"}}, {" JR PO,1", {"PO"}}, {" JR 9999", {"9999"}},
    {" JR NZ,A", {"A"}}, {" JP NZ,(IX)", {"(IX)"}}, {" CALL 6,5", {"6"}}, {" CALL Z,A", {"A"}}, {" RET 5", {"5"}},
    {" DJNZ 9999", {"9999"}}, {" RST 9", {"9"}}, {" RST NIX", {"NIX"}}, {" IM 3", {"3"}}, {" IM NIX", {"NIX"}},
    {" EX DE,BC", {"BC"}}, {" EX BC,DE", {"BC"}}, {" IN B,(7)", {"B"}}, {" IN A,(BC)", {"(BC)"}}, {" IN 1,(C)", {"1"}},
    {" OUT (300),A", {"(300)"}}, {" PUSH SP", {"SP"}}, {" DM 5", {"5"}}, {" DS NIX", {"NIX"}}, {" DS A", {"A"}},
    {" ORG NIX", {"NIX"}}, {" IF A", {"A"}}, {" INCLUDE NONE", {"NONE"}}, {" LD A,( )", {"( )", "LD"}},
    // an expression that cannot be evaluated
    {" JP 1+*,1+*", {"1+*", "1+*"}}, {" LD A,(1+*)", {"(1+*)"}}, {" LD (IX+1+*),1+*", {"(IX+1+*)"}},
    {" DW 1+*,2", {"1+*"}}, {"E: EQU 1+*", {"1+*"}}, {" RST 1+*", {"1+*"}},
    // the mnemonic, the label, the line
    {" ELSE", {"ELSE"}}, {" ENDIF", {"ENDIF"}}, {" EQU 5", {"EQU"}}, {" PROC", {"PROC"}}, {" FROB 1", {"FROB"}},
    {"E: ENDM", {"E", "ENDM"}}, {std::string(300, ' '), {""}},
};

// clang-format on

TEST(PlaceTest, IsThePartAtFault) {
    const TempDir directory;
    std::string source;
    for (const auto& [line, parts] : rows) {
        source += line + '\n';
    }
    WriteFile("a.kor", source);
    korv::CAssembler assembler(stdout);
    Recorder recorder;
    assembler.errors.SetReceiver(&recorder);
    assembler.sourceName = "a.kor";
    assembler.targetName = "a.com";
    assembler.AssembleSource();
    std::vector<Strings> got(rows.size());
    for (const korv::SourcePlace& place : recorder.places) {
        ASSERT_TRUE(place.line > 0 && static_cast<std::size_t>(place.line) <= rows.size());
        const auto row = static_cast<std::size_t>(place.line - 1);
        got[row].push_back(rows[row].first.substr(place.offset, place.length));
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].second, got[i]) << rows[i].first;
    }
}

// A very long line, as in a binary file, must not be stored whole.
TEST(PlaceTest, ALineIsCutAtTheMostThatCanAssemble) {
    const korv::StoredText text("a", std::string(0x10001, 'X'));
    EXPECT_EQ(std::string(0x10000, 'X'), korv::LogicalLineAt(text, 1).text);
}

}  // namespace
}  // namespace korv_test
