// The tables under tests/: every case becomes a test of its own, named after its file and its
// title. README.md tells the format. The examples of the manual are cases too: one that does not
// assemble as it says fails.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "diagnostics/message_numbers.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;

struct Case {
    std::string name;
    std::string origin;  // path and line
    std::map<std::string, std::string> files;
    std::vector<std::string> arguments = {"Main.Kor"};
    std::vector<std::string> messages;                 // as in the table: "error 33 2 [FROB]"
    std::optional<std::string> bytes;                  // hexadecimal, or "none"
    std::map<std::string, std::string> expectedFiles;  // "" is the console
};

// What the console is to show for a line of the table; of a file's name the last part.
std::string PrintedMessages(const std::string& line) {
    std::istringstream stream(line);
    std::string kind, place, details;
    int number = 0;
    stream >> kind >> number >> place;
    std::getline(stream, details);
    const std::size_t colon = place.rfind(':');
    std::string file = colon == std::string::npos ? "Main.Kor" : place.substr(0, colon);
    file = file == "-" ? "Uhm, I DUNNO! ;p" : file;
    const std::string text = number < 0
                                 ? "Illegal " + kind + " number! (Internal error.)"
                                 : korv::MESSAGE_TABLE.at(static_cast<std::size_t>(number)).text;
    std::string printed;
    std::istringstream lines(ReplaceAll(place.substr(colon + 1), ",", "\n"));  // npos + 1 is 0
    for (std::string lineNumber; std::getline(lines, lineNumber);) {
        const std::string head =
            file + "(" + lineNumber + ") : " + kind + " X" + std::to_string(number) + " : " + text;
        printed += head + ReplaceAll(details, "] [", "]\n" + head + " [") + "\n";
    }
    return printed;
}

// The lines of `console` that are messages, without the directories of their files.
std::string MessagesIn(const std::string& console) {
    std::istringstream stream(console);
    std::string messages;
    for (std::string line; std::getline(stream, line);) {
        const std::size_t end = std::min(line.find(") : error X"), line.find(") : warning X"));
        if (end != std::string::npos) {
            messages += line.substr(line.rfind('/', end) + 1) + "\n";
        }
    }
    return messages;
}

// The console output without what is the same in every run: the title, and the clearing line.
std::string Trimmed(std::string console) {
    console.erase(0, console.find('\n') + 1);
    const std::string clearing = std::string(26, ' ') + "\r";
    if (console.ends_with(clearing)) {
        console.resize(console.size() - clearing.size());
    }
    return console;
}

void PrintTo(const Case& test, std::ostream* stream) {
    *stream << test.origin;
}

class CaseTest : public testing::TestWithParam<Case> {};

TEST_P(CaseTest, Holds) {
    const Case& test = GetParam();
    const TempDir directory;
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    const RunResult result = RunKorv(test.arguments);
    if (!test.expectedFiles.contains("")) {
        std::string errors;
        std::string warnings;
        for (const std::string& line : test.messages) {
            (line.starts_with("error") ? errors : warnings) += PrintedMessages(line);
        }
        EXPECT_EQ(ReplaceAll(errors + warnings, "$DIR", directory.Path()),
                  MessagesIn(result.console))
            << result.console;
    }
    for (const auto& [name, contents] : test.expectedFiles) {
        const std::string expected = ReplaceAll(contents, "$DIR", directory.Path());
        if (name.empty()) {
            EXPECT_EQ(expected, Trimmed(result.console));
            EXPECT_TRUE(test.messages.empty()) << "The console tells them.";
        } else {
            EXPECT_EQ(expected, ReadFile(name).value_or("no file")) << name;
        }
    }
    if (test.bytes.has_value()) {
        EXPECT_EQ(*test.bytes, result.target ? ToHex(*result.target) : "none") << result.console;
    }
}

std::string Unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        constexpr std::string_view letters = "rntv0\\";
        constexpr std::string_view meanings("\r\n\t\v\0\\", letters.size());
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
        } else if (text[++i] == 'x') {
            result += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            result += meanings.at(letters.find(text[i]));
        }
    }
    return result;
}

// Appends the cases of a table.
void AddCases(const std::string& path, std::istream&& table, std::vector<Case>* cases) {
    std::string* block = nullptr;  // where indented lines go
    int number = 0;
    for (std::string line; std::getline(table, line);) {
        ++number;
        const std::string keyword = line.substr(0, line.find(' '));
        const std::string rest = line.substr(std::min(line.size(), keyword.size() + 1));
        const std::map<std::string, std::string> outputs = {
            {"console", ""}, {"labels", "Labels.Out"}, {"debug", "Debug.Out"}, {"output", rest}};
        if (keyword == "case") {
            cases->emplace_back();
            cases->back().name = rest;
            cases->back().origin = path + ":" + std::to_string(number);
            block = &cases->back().files["Main.Kor"];
            continue;
        }
        Case& test = cases->back();
        if (keyword == "file") {
            block = &test.files[rest];
        } else if (keyword == "raw") {
            *block += Unescaped(rest);
        } else if (keyword == "args") {
            std::istringstream words(rest);
            test.arguments.assign(std::istream_iterator<std::string>(words), {});
        } else if (keyword == "bytes") {
            test.bytes = test.bytes ? *test.bytes + " " + rest : rest;
        } else if (outputs.contains(keyword)) {
            block = &test.expectedFiles[outputs.at(keyword)];
        } else if (line.starts_with("    ")) {
            *block += line.substr(4) + "\n";
            if (const std::size_t mark = line.find(";! "); mark != std::string::npos) {
                std::string message = line.substr(mark + 3);  // "error 16 [NZ]"
                const std::size_t end = message.find(' ', message.find(' ') + 1);
                const auto place = std::count(block->begin(), block->end(), '\n');
                message.insert(std::min(end, message.size()), " " + std::to_string(place));
                test.messages.push_back(message);
            }
        } else if (!line.empty()) {
            test.messages.push_back(line);  // or a line that fails, as it is no message
        }
    }
}

// All instructions of a table in one source; the listing tells each one's bytes.
Case EncodingsCase(const std::string& path) {
    Case test;
    test.name = "encodings " + fs::path(path).stem().string();
    test.origin = path;
    test.arguments = {"Main.Kor", "/d"};
    std::size_t offset = 0;
    for (const auto& [instruction, bytes] : ReadEncodings(path)) {
        test.files["Main.Kor"] += " " + instruction + "\n";
        char head[16];
        std::snprintf(head, sizeof head, "<%02zX> [", offset);
        test.expectedFiles["Debug.Out"] += head + bytes + "]  " + instruction + "\n";
        offset += bytes.size() / 2;
    }
    return test;
}

// The fenced blocks of the manual as a table: "```korv SWITCHES" with a source, then "```bytes" or
// "```messages".
std::istringstream ManualAsTable(const std::string& path) {
    std::ifstream manual(path);
    std::string table;
    std::string block;
    int number = 0;
    for (std::string line; std::getline(manual, line);) {
        ++number;
        if (line.starts_with("```")) {
            block = block.empty() ? line.substr(3) + " " : "";
            if (block.starts_with("korv ")) {
                table += "case the manual at line " + std::to_string(number) + "\nargs Main.Kor" +
                         block.substr(4) + "\n";
            }
        } else if (block.starts_with("korv ")) {
            table += "    " + line + "\n";
        } else if (block == "bytes " || block == "messages ") {
            table += (block == "bytes " ? block : "") + line + "\n";
        }
    }
    return std::istringstream(table);
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const std::string& path : TablesIn("encodings")) {
        cases.push_back(EncodingsCase(path));
    }
    for (const std::string& path : TablesIn("cases")) {
        AddCases(path, std::ifstream(path), &cases);
    }
    const std::string manual = ProjectPath("docs/manual.md");
    AddCases(manual, ManualAsTable(manual), &cases);
    return cases;
}

std::string TestName(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.name;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Tables, CaseTest, testing::ValuesIn(AllCases()), TestName);

}  // namespace
}  // namespace korv_test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
