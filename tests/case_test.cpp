// The tables under tests/: every case becomes a test of its own, named after its file and its
// title. README.md tells the format. The examples of the manual are cases too: one that does not
// assemble as it says fails.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "run.h"

namespace korv_test {
namespace fs = std::filesystem;

void PrintTo(const Block& block, std::ostream* stream) {
    *stream << block.lines.front().Place();
}

namespace {

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

// The console output without what is the same in every run: the title, and the clearing line, which
// the help does without.
std::string Trimmed(const std::string& console) {
    const std::string title = "Brelloc Korv v2.00.025 *FAST*\n";
    const bool isHelp = console.find("\n[Korv] HELP!\n") != std::string::npos;
    const std::string clearing = isHelp ? "" : std::string(26, ' ') + "\r";
    if (!console.starts_with(title) || !console.ends_with(clearing)) {
        return console;
    }
    return console.substr(title.size(), console.size() - title.size() - clearing.size());
}

std::vector<Block> AllBlocks() {
    std::vector<Block> blocks =
        SplitIntoBlocks(ManualAsTable(ReadLines(ProjectPath("docs/manual.md"))));
    for (const std::string& path : TablesIn("cases")) {
        const std::vector<Block> more = SplitIntoBlocks(ReadLines(path));
        blocks.insert(blocks.end(), more.begin(), more.end());
    }
    return blocks;
}

// "cases_12_a_title", so that every one has a name of its own.
std::string TestName(const std::string& table, const std::string& title) {
    std::string name = fs::path(table).stem().string() + "_" + title;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class CaseTest : public testing::TestWithParam<Block> {};

TEST_P(CaseTest, Holds) {
    const Case test = ReadCase(GetParam());
    const TempDir directory;
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    const RunResult result = RunKorv(test.arguments);
    const auto here = [&](const std::string& text) {
        return ReplaceAll(text, "$DIR", directory.Path());
    };
    if (!test.outputs.contains("")) {
        ASSERT_EQ(here(test.messages), MessagesIn(result.console)) << result.console;
    }
    // The sources stay as they were, unless they are said to be written over.
    std::map<std::string, std::string> expected = test.outputs;
    expected.insert(test.files.begin(), test.files.end());
    for (const auto& [name, contents] : expected) {
        if (name != result.targetName || test.outputs.contains(name)) {
            EXPECT_EQ(name.empty() ? Trimmed(result.console) : ReadFile(name).value_or("no file"),
                      here(contents))
                << name;
        }
    }
    expected.insert(
        {{"console", ""}, {result.targetName, ""}, {test.hasError ? "Errors.Out" : "", ""}});
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        const std::string name = entry.path().lexically_normal();
        EXPECT_TRUE(entry.is_directory() || expected.contains(name)) << name << " was written";
    }
    if (test.hasError || test.bytes == "none") {
        EXPECT_TRUE(result.target == result.before) << "The target was written.";
    } else {
        ASSERT_TRUE(result.target.has_value()) << result.console;
        const std::string got = ToHex(*result.target);
        const std::string bytes = test.bytes.value_or(got);
        std::size_t from = 0;  // whatever is the same in front, in pieces of a hundred bytes
        while (from + 300 < got.size() && got.compare(from, 300, bytes, from, 300) == 0) {
            from += 300;
        }
        EXPECT_EQ(bytes.substr(from, 600), got.substr(from, 600)) << "from byte " << from / 3;
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, CaseTest, testing::ValuesIn(AllBlocks()), [](const auto& test) {
    const TableLine& first = test.param.lines.front();
    return TestName(first.table, std::to_string(first.number) + " " + test.param.title);
});

class EncodingsTest : public testing::TestWithParam<std::string> {};

// All instructions of a table in one source; the listing tells each one's bytes.
TEST_P(EncodingsTest, Hold) {
    const std::vector<Encoding> encodings = ReadEncodings(GetParam());
    const TempDir directory;
    std::string source;
    for (const Encoding& encoding : encodings) {
        source += " " + encoding.instruction + "\n";
    }
    WriteFile("Main.Kor", source);
    std::istringstream messages(MessagesIn(RunKorv({"Main.Kor", "/d"}).console));
    std::istringstream listing(ReadFile("Debug.Out").value_or(""));
    std::map<std::string, std::string> got;
    for (std::string line; std::getline(messages, line);) {
        got[line.substr(0, line.find(' '))] += "\n" + line;  // "Main.Kor(7)"
    }
    int number = 0;
    for (const auto& [instruction, bytes, line] : encodings) {
        std::string record;  // "<0100> [3E05]  LD A,5"
        std::getline(listing, record);
        record.erase(0, record.find('[')) += got["Main.Kor(" + std::to_string(++number) + ")"];
        if (const std::string expected = "[" + bytes + "]  " + instruction; record != expected) {
            ADD_FAILURE_AT(line.table.c_str(), line.number)
                << "expected " << expected << "\n     got " << record;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, EncodingsTest, testing::ValuesIn(TablesIn("encodings")),
                         [](const auto& test) { return TestName(test.param, ""); });

}  // namespace
}  // namespace korv_test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
