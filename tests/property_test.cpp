// What holds for every program, tried on programs made by chance out of the tables of encodings: so
// it is known without the assembler what they become. However the lines are arranged, the target
// and the listing have these bytes.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <regex>

#include "run.h"

namespace korv_test {
namespace {

using Lines = std::vector<std::string>;

std::mt19937 chance(4711);

std::ptrdiff_t Below(std::size_t bound) {
    return static_cast<std::ptrdiff_t>(chance() % bound);
}

std::string Joined(const Lines& lines, const std::string& end = "\n") {
    std::string text;
    for (const std::string& line : lines) {
        text += line + end;
    }
    return text;
}

struct Program {
    Lines body;         // instructions, whose numbers are names where these may come late
    Lines definitions;  // of these names, good in any place
    std::string image;  // hexadecimal, without blanks

    std::string Define(const std::string& expression) {
        const std::string name = "Q" + std::to_string(definitions.size());
        definitions.push_back(name + ": EQU " + expression);
        return name;
    }

    // An expression that has the value: "Q0+Q1", or "Q2" which is defined as that.
    std::string Named(int value) {
        const int part = static_cast<int>(Below(1000));
        const std::string first = Define(std::to_string(value - part));
        const std::string sum = first + "+" + Define(std::to_string(part));
        return Below(2) == 0 ? sum : Define(sum);
    }

    void Append(const Encoding& encoding) {
        static const std::regex neverLate("((BIT|SET|RES|IM|RST) [0-9]+)?");
        static const std::regex here(R"(\$(?![0-9A-F]))");
        static const std::regex number(R"(([-+]?)(\$[0-9A-F]+|[0-9]+))");
        const std::string text =
            std::regex_replace(encoding.instruction, here, std::to_string(256 + image.size() / 2));
        std::smatch match;
        std::regex_search(text, match, neverLate, std::regex_constants::match_continuous);
        std::string line = " " + match.str();
        auto rest = match[0].second;
        for (; std::regex_search(rest, text.end(), match, number); rest = match[0].second) {
            const int value = std::stoi(ReplaceAll(match[2], "$", "0x"), nullptr, 0);
            line.append(rest, match[0].first);
            line += std::isalnum(line.back()) != 0 ? "+" : "";  // "IX-5" becomes "IX+Q0"
            line += Named(match[1] == "-" ? -value : value);
        }
        body.push_back(line.append(rest, text.end()));
        image += encoding.bytes;
    }
};

// All instructions of the tables and some data, each once, in programs of 40.
std::vector<Program> AllPrograms() {
    std::vector<Encoding> all = {{"DB 5,-128,$FF", "0580FF"}, {"DW 1234,-2", "D204FEFF"}};
    for (const std::string& path : TablesIn("encodings")) {
        const std::vector<Encoding> encodings = ReadEncodings(path);
        all.insert(all.end(), encodings.begin(), encodings.end());
    }
    std::shuffle(all.begin(), all.end(), chance);
    std::vector<Program> programs(all.size() / 40 + 1);
    for (std::size_t i = 0; i < all.size(); ++i) {
        programs[i / 40].Append(all[i]);
    }
    return programs;
}

// The lines of the program with the definitions anywhere among them.
Lines Mixed(const Program& program) {
    Lines lines = program.body;
    for (const std::string& definition : program.definitions) {
        lines.insert(lines.begin() + Below(lines.size() + 1), definition);
    }
    return lines;
}

// Mixed lines with blanks, comments and line ends of every kind, in small letters.
std::string Decorated(const Program& program) {
    std::string text = Joined(Mixed(program), " \t;; \"B\" C, D: \r\n; \r\n\t\r\n\n");
    text = ReplaceAll(ReplaceAll(text, ",", " \t, "), "+", " + \t");
    std::transform(text.begin(), text.end(), text.begin(), tolower);
    return text;
}

// Mixed lines of which a piece is in a file of its own, and a piece of what is left in another,
// which may include the first.
std::string InThreeFiles(const Program& program) {
    Lines lines = Mixed(program);
    for (const std::string name : {"C.KOR", "B.KOR"}) {
        const auto first = lines.begin() + Below(lines.size() / 2);
        const auto last = first + Below(lines.size() / 2);
        WriteFile(name, Joined(Lines(first, last)));
        lines.insert(lines.erase(first, last), " INCLUDE " + name);
    }
    return Joined(lines);
}

std::string BytesIn(const std::string& listing) {
    static const std::regex record(R"(> \[([0-9A-F]*)\])");
    std::string bytes;
    for (std::sregex_iterator match(listing.begin(), listing.end(), record), end; match != end;
         ++match) {
        bytes += (*match)[1];
    }
    return bytes;
}

TEST(PropertyTest, HoldsForProgramsMadeByChance) {
    // Runs before each other one, and leaves no trace in it.
    const std::string bad =
        " IF 1\n IF 0\n ELSE\n ORG 5\nA: EQU B+C\nB: EQU A\n DW D,A,E+5\nLD: DB '\n INCLUDE NONE\n "
        "JR A\n DB \"A,B\nE: END\n";
    const std::vector<Program> programs = AllPrograms();
    ASSERT_GT(programs.size(), 17U);
    for (const Program& program : programs) {
        const TempDir directory;
        WriteFile("Bad.Kor", bad);
        const std::string body = Joined(program.body);
        const std::string definitions = Joined(program.definitions);
        for (const std::string& source :
             {definitions + body, body + definitions, Decorated(program), InThreeFiles(program)}) {
            SCOPED_TRACE(source);
            EXPECT_FALSE(RunKorv({"Bad.Kor", "/ds", "/b"}).target.has_value());
            WriteFile("Main.Kor", source);
            const RunResult result = RunKorv({"Main.Kor", "/d"});
            ASSERT_EQ(program.image, ReplaceAll(ToHex(result.target.value_or("")), " ", ""))
                << result.console;
            ASSERT_EQ(program.image, BytesIn(ReadFile("Debug.Out").value_or("")));
        }
    }
}

}  // namespace
}  // namespace korv_test
