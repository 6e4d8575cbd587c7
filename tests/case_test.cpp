// The tables under tests/: every case becomes a test of its own, named after its table, line and title. The examples of
// the manual are cases too.

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
            messages += line.substr(line.rfind('/', end) + 1) + "\n";
        }
    }
    return messages;
}

// The console output of which a case tells `lines`: the title is in front, the clearing line at the end, which the help
// does without.
std::string Console(const std::string& lines) {
    const bool isHelp = lines.find("[Korv] HELP!\n") != std::string::npos;
    return "Brelloc Korv v2.00.025 *FAST*\n" + lines + (isHelp ? "" : std::string(26, ' ') + "\r");
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
    const Case test = ReadCase(GetParam());
    const TempDir directory;
    for (const auto& [name, contents] : test.files) {
        WriteFile(name, contents);
    }
    const std::string console = RunKorv(test.arguments);
    const auto here = [&](const std::string& text) { return ReplaceAll(text, "$DIR", directory.Path()); };
    // The sources stay as they were, unless they are said to be written over.
    std::map<std::string, std::string> expected = test.files, got;
    for (const auto& [name, contents] : test.outputs) {
        expected[name] = here(name == "console" ? Console(contents) : contents);
    }
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        if (!entry.is_directory()) {
            got[entry.path().lexically_normal()] = ReadFile(entry.path()).value_or("unreadable");
        }
    }
    if (!test.outputs.contains("console")) {
        ASSERT_EQ(here(test.messages), MessagesIn(console)) << console;
        got.erase("console");
    }
    if (test.hasError && !expected.contains("Errors.Out")) {
        got.erase("Errors.Out");
    } else if (!test.hasError && test.bytes != "none" && !test.outputs.contains(test.target)) {
        const std::string image = ReplaceAll(ToHex(got[test.target]), " ", "");
        ASSERT_TRUE(fs::exists(test.target)) << console;
        expected[test.target] = test.bytes.value_or(image);
        got[test.target] = image;
    }
    for (const auto& [name, text] : expected) {
        got.try_emplace(name, "no file");
    }
    for (const auto& [name, text] : got) {
        const std::string& wanted = expected.try_emplace(name, "no file").first->second;
        const auto same = std::mismatch(wanted.begin(), wanted.end(), text.begin(), text.end());
        const auto from = static_cast<std::size_t>(same.first - wanted.begin()) / 1000 * 1000;
        EXPECT_EQ(wanted.substr(from, 2000), text.substr(from, 2000)) << name << " from character " << from;
    }
}

// "commandline_txt_12_case_a_title".
INSTANTIATE_TEST_SUITE_P(Tables, CaseTest, testing::ValuesIn(AllBlocks()), [](const auto& test) {
    const TableLine& line = test.param.front();
    const std::string name = line.place.substr(line.place.rfind('/') + 1) + " " + line.text;
    return std::regex_replace(name, std::regex("[^A-Za-z0-9]"), "_");
});

}  // namespace
}  // namespace korv_test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
