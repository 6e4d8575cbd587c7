// The tables under tests/: every case becomes a test of its own, named after its file and its
// title. README.md tells the format. The examples of the manual are cases too: one that does not
// assemble as it says fails.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "diagnostics/message_numbers.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;

struct Case {
    std::string origin;  // "cases/forward.txt:12"
    std::map<std::string, std::string> files;
    std::vector<std::string> arguments = {"Main.Kor"};
    std::vector<std::string> messages;                 // as in the table: "error 33 2 [FROB]"
    std::optional<std::string> bytes;                  // hexadecimal, or "none"
    std::map<std::string, std::string> expectedFiles;  // "" is the console
};

// What the console is to show for a line of the table; of a file's name the last part.
std::string PrintedMessage(const std::string& line) {
    std::istringstream stream(line);
    std::string kind;
    int number = 0;
    std::string place;
    stream >> kind >> number >> place;
    std::string detail;
    std::getline(stream, detail);
    const std::size_t colon = place.rfind(':');
    std::string file = colon == std::string::npos ? "Main.Kor" : place.substr(0, colon);
    file = file == "-" ? "Uhm, I DUNNO! ;p" : file;
    const std::string text =
        number < 0 ? "Illegal " + kind + " number! (Internal error.)"
                   : std::string(korv::MESSAGE_TABLE.at(static_cast<std::size_t>(number)));
    return file + "(" + place.substr(colon == std::string::npos ? 0 : colon + 1) + ") : " + kind +
           " X" + std::to_string(number) + " : " + text + detail + "\n";
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

void Run(const Case& test) {
    SCOPED_TRACE(test.origin);
    const TempDir directory;
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    const RunResult result = RunKorv(test.arguments);
    if (!test.expectedFiles.contains("")) {
        std::string expected;
        for (const std::string& line : test.messages) {
            expected += PrintedMessage(line);
        }
        EXPECT_EQ(ReplaceAll(expected, "$DIR", directory.Path()), MessagesIn(result.console))
            << result.console;
    }
    for (const auto& [name, contents] : test.expectedFiles) {
        const std::string expected = ReplaceAll(contents, "$DIR", directory.Path());
        if (name.empty()) {
            EXPECT_EQ(expected, Trimmed(result.console));
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
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        constexpr std::string_view letters = "rntv0\\";
        constexpr std::string_view meanings("\r\n\t\v\0\\", letters.size());
        if (text[++i] == 'x') {
            result += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            result += meanings.at(letters.find(text[i]));
        }
    }
    return result;
}

void Register(const std::string& suite, const std::string& title, const std::string& file, int line,
              std::function<void()> body) {
    class Test : public testing::Test {
      public:
        explicit Test(std::function<void()> body) : body(std::move(body)) {}
        void TestBody() override { body(); }

      private:
        std::function<void()> body;
    };
    std::string name = title;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, file.c_str(), line,
                          [body = std::move(body)]() -> testing::Test* { return new Test(body); });
}

void RegisterCases(const fs::path& path) {
    std::ifstream stream(path);
    Case test;
    std::string title;
    int titleLine = 0;
    std::string* block = nullptr;  // where indented lines go
    const auto finish = [&] {
        if (!title.empty()) {
            Register("cases_" + path.stem().string(), title, path, titleLine,
                     [test] { Run(test); });
        }
        test = Case();
    };
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::string keyword = line.substr(0, line.find(' '));
        const std::string rest =
            line.size() > keyword.size() ? line.substr(keyword.size() + 1) : "";
        if (keyword.empty()) {
            if (block != nullptr && !line.empty()) {
                *block += line.substr(4) + "\n";
            }
        } else if (keyword == "case") {
            finish();
            title = rest;
            titleLine = number;
            test.origin = "cases/" + path.filename().string() + ":" + std::to_string(number);
            block = &test.files["Main.Kor"];
        } else if (keyword == "file") {
            block = &test.files[rest];
        } else if (keyword == "raw") {
            *block += Unescaped(rest);
        } else if (keyword == "args") {
            test.arguments = SplitWords(rest);
        } else if (keyword == "error" || keyword == "warning") {
            test.messages.push_back(line);
        } else if (keyword == "bytes") {
            test.bytes = rest;
        } else if (keyword == "console") {
            block = &test.expectedFiles[""];
        } else if (keyword == "labels") {
            block = &test.expectedFiles["Labels.Out"];
        } else if (keyword == "debug") {
            block = &test.expectedFiles["Debug.Out"];
        } else if (keyword == "output") {
            block = &test.expectedFiles[rest];
        } else {
            Register("cases", "malformed", path, number,
                     [=] { FAIL() << path << ":" << number << ": " << line; });
        }
    }
    finish();
}

// "LD [B|C],5 = 06 05|0E 05" as its instructions, each with its bytes.
std::vector<std::pair<std::string, std::string>> Expanded(const std::string& line) {
    const std::size_t equals = line.rfind(" = ");
    const std::string left = line.substr(0, equals);
    std::istringstream groups(line.substr(equals + 3));
    const std::size_t open = left.find('[');
    const std::size_t close = left.find(']');
    std::istringstream alternatives(
        open == std::string::npos ? "" : left.substr(open + 1, close - open - 1));
    std::vector<std::pair<std::string, std::string>> result;
    for (std::string group; std::getline(groups, group, '|');) {
        std::string instruction = left;
        if (open != std::string::npos) {
            std::string alternative;
            std::getline(alternatives, alternative, '|');
            instruction = left.substr(0, open) + alternative + left.substr(close + 1);
        }
        result.emplace_back(instruction, group);
    }
    return result;
}

// All instructions of a table in one source; the listing tells each one's bytes.
void RunEncodings(const fs::path& path) {
    std::ifstream stream(path);
    std::string source;
    std::string expected;
    int offset = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        for (const auto& [instruction, bytes] : Expanded(line)) {
            source += " " + instruction + "\n";
            const std::string hex = ReplaceAll(bytes, " ", "");
            char head[16];
            std::snprintf(head, sizeof head, "<%02X> [", static_cast<unsigned>(offset));
            expected += head + hex + "]  " + instruction + "\n";
            offset += static_cast<int>(hex.size() / 2);
        }
    }
    const TempDir directory;
    WriteFile("Main.Kor", source);
    const RunResult result = RunKorv({"Main.Kor", "/d"});
    EXPECT_EQ("", MessagesIn(result.console));
    EXPECT_EQ(expected, ReadFile("Debug.Out").value_or("no file"));
    EXPECT_EQ(static_cast<std::size_t>(offset), result.target.value_or("").size());
}

// The fenced blocks of the manual: "```korv SWITCHES" with a source, then "```bytes" or
// "```messages".
void RegisterManual(const fs::path& path) {
    std::ifstream stream(path);
    Case test;
    int number = 0;
    int count = 0;
    std::string block;
    std::string text;
    const auto finish = [&] {
        if (test.files.empty()) {
            return;
        }
        Register("manual", "example " + std::to_string(++count) + " " + test.origin, path, number,
                 [test] { Run(test); });
        test = Case();
    };
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (!line.starts_with("```")) {
            text += line + "\n";
            continue;
        }
        const bool isEnd = !block.empty();
        if (!isEnd) {
            block = line.substr(3).empty() ? "text" : line.substr(3);
        } else if (block.starts_with("korv")) {
            finish();
            test.origin = "line " + std::to_string(number);
            test.files["Main.Kor"] = text;
            for (const std::string& word : SplitWords(block.substr(4))) {
                test.arguments.push_back(word);
            }
        } else if (block == "bytes") {
            std::string words;
            for (const std::string& word : SplitWords(text)) {
                words += (words.empty() ? "" : " ") + word;
            }
            test.bytes = words;
        } else if (block == "messages") {
            std::istringstream lines(text);
            for (std::string message; std::getline(lines, message);) {
                test.messages.push_back(message);
            }
        }
        if (isEnd) {
            block.clear();
        }
        text.clear();
    }
    finish();
}

std::vector<fs::path> TablesIn(const std::string& folder) {
    std::vector<fs::path> tables;
    for (const auto& entry : fs::directory_iterator(TestsDirectory() + "/" + folder)) {
        tables.push_back(entry.path());
    }
    std::sort(tables.begin(), tables.end());
    return tables;
}

}  // namespace
}  // namespace korv_test

int main(int argc, char** argv) {
    using namespace korv_test;
    testing::InitGoogleTest(&argc, argv);
    for (const fs::path& path : TablesIn("encodings")) {
        Register("encodings", path.stem(), path, 1, [path] { RunEncodings(path); });
    }
    for (const fs::path& path : TablesIn("cases")) {
        RegisterCases(path);
    }
    RegisterManual(DocsDirectory() + "/manual.md");
    return RUN_ALL_TESTS();
}
