// Properties of every program, tried on programs made by chance out of the tables of encodings: so
// what a program becomes is known without the assembler. Every number that may come late is written
// as an expression of names, which may be defined anywhere.

#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // <regex> of g++ 12 under sanitizers

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

// All instructions of the tables, and some data, in any order.
std::vector<Encoding> AllInstructions() {
    std::vector<Encoding> all = {{"DB 5,-128,$FF", "0580FF"}, {"DW 1234,-2", "D204FEFF"}};
    for (const std::string& path : TablesIn("encodings")) {
        const std::vector<Encoding> encodings = ReadEncodings(path);
        all.insert(all.end(), encodings.begin(), encodings.end());
    }
    std::shuffle(all.begin(), all.end(), chance);
    return all;
}

struct Program {
    Lines body;
    Lines definitions;
    std::string image;  // hexadecimal, without blanks

    std::string Define(const std::string& expression) {
        const std::string name = "Q" + std::to_string(definitions.size());
        definitions.push_back(name + ": EQU " + expression);
        return name;
    }

    void Append(const std::string& text, const std::string& bytes) {
        static const std::regex number("(\\$(?![0-9A-F]))?([-+]?)(\\$[0-9A-F]+|[0-9]+)|\\$");
        static const std::regex notLate("(BIT|SET|RES|IM|RST) [0-9]+|");
        std::smatch match;
        std::regex_search(text, match, notLate, std::regex_constants::match_continuous);
        std::string line = " " + match.str();
        auto at = match[0].second;
        for (; std::regex_search(at, text.end(), match, number); at = match[0].second) {
            const std::string digits = match[3];
            int value = digits.empty() ? 0 : std::stoi(ReplaceAll(digits, "$", "0x"), nullptr, 0);
            value = match[2] == "-" ? -value : value;
            value +=
                match[1].matched || digits.empty() ? 256 + static_cast<int>(image.size() / 2) : 0;
            const std::ptrdiff_t part = Below(1000);
            std::string sum = Define(std::to_string(value - part));
            sum += "+" + Define(std::to_string(part));
            line.append(at, match[0].first);
            line += line.ends_with("IX") || line.ends_with("IY") ? "+" : "";
            line += Below(2) == 0 ? sum : Define(sum);
        }
        body.push_back(line.append(at, text.end()));
        image += bytes;
    }
};

// The lines with the definitions among them.
Lines Mixed(const Program& program) {
    Lines lines = program.body;
    for (const std::string& definition : program.definitions) {
        lines.insert(lines.begin() + Below(lines.size() + 1), definition);
    }
    return lines;
}

// Makes a piece of the lines a file of its own.
void MoveToFile(const std::string& name, Lines* lines) {
    const auto first = lines->begin() + Below(lines->size() / 2);
    const auto last = first + Below(lines->size() / 2);
    WriteFile(name, Joined(Lines(first, last)));
    lines->insert(lines->erase(first, last), " INCLUDE " + name);
}

TEST(PropertyTest, HoldsForProgramsMadeByChance) {
    const std::string bad =
        " IF 1\n IF 0\n ELSE\n ORG 5\nA: EQU B+C\nB: EQU A\n DW D,A,E+5\nLD: DB '\n INCLUDE NONE\n "
        "JR A\n DB \"A,B\nE: END\n";
    const std::regex listedBytes("> \\[([0-9A-F]*)\\]");
    const auto all = AllInstructions();
    ASSERT_GT(all.size(), 700U);
    for (std::size_t next = 0; next < all.size() && !HasFailure();) {
        const TempDir directory;
        Program program;
        for (const std::size_t end = std::min(next + 40, all.size()); next < end; ++next) {
            program.Append(all[next].instruction, all[next].bytes);
        }
        const std::string body = Joined(program.body);
        const std::string definitions = Joined(program.definitions);
        std::string decorated = Joined(Mixed(program), " \t;; \"B\" C, D: \r\n; \r\n\t\r\n\n");
        decorated = ReplaceAll(ReplaceAll(decorated, ",", " \t, "), "+", " + \t");
        std::transform(decorated.begin(), decorated.end(), decorated.begin(), tolower);
        Lines split = Mixed(program);
        MoveToFile("C.KOR", &split);
        MoveToFile("B.KOR", &split);
        WriteFile("Bad.Kor", bad);
        for (const std::string& source :
             {definitions + body, body + definitions, decorated, Joined(split)}) {
            SCOPED_TRACE(source);
            EXPECT_FALSE(RunKorv({"Bad.Kor", "/ds", "/b"}).target.has_value());  // leaves no trace
            WriteFile("Main.Kor", source);
            const RunResult result = RunKorv({"Main.Kor", "/d"});
            const std::string listing = ReadFile("Debug.Out").value_or("");
            std::string listed;
            for (std::sregex_iterator match(listing.begin(), listing.end(), listedBytes), end;
                 match != end; ++match) {
                listed += (*match)[1];
            }
            EXPECT_EQ(program.image, ReplaceAll(ToHex(result.target.value_or("")), " ", ""))
                << result.console;
            EXPECT_EQ(program.image, listed);
        }
    }
}

}  // namespace
}  // namespace korv_test
