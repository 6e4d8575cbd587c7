// The notes: every row of their tables with its example, and mistakes of all kinds. A change of the source that a note
// proposes has to remove its error and bring no other.

#include "frontend/notes.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <map>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_table.h"
#include "frontend/statement_rules.h"
#include "run.h"
#include "table.h"

namespace korv_test {
namespace {

// A run of `source`, in which "|" ends a line.
korv::Analysis AnalysisOf(const std::string& source) {
    korv::FileStore store;
    store.SetText(store.FullPath("a.kor"), ReplaceAll(source, "|", "\n") + "\n");
    korv::Options options;
    options.source = "a.kor";
    options.maxErrors = 0;
    return korv::Analyse(options, &store, {});
}

// What is printed for `source`: "line:column number note" for each error.
std::string Printed(const korv::Analysis& analysis) {
    std::string printed;
    for (const korv::Message& each : analysis.messages) {
        if (each.severity == korv::Severity::error && each.number != 0) {
            printed += std::to_string(each.place.line) + ":" + std::to_string(each.place.column + 1) + " " +
                       std::to_string(each.number) + " " + each.note + "\n";
        }
    }
    return printed;
}
std::string Printed(const std::string& source) {
    return Printed(AnalysisOf(source));
}

// The errors that are left when the changes have been made that the notes propose; empty if there are none to make.
std::string ErrorsAfterChange(const std::string& source) {
    const korv::Analysis analysis = AnalysisOf(source);
    std::map<std::int32_t, std::string> changed;
    for (const korv::Message& message : analysis.messages) {
        if (message.severity != korv::Severity::error || message.edits.empty() ||
            changed.contains(message.place.line)) {
            continue;
        }
        std::string line(analysis.LineOf(message.place));
        for (auto edit = message.edits.rbegin(); edit != message.edits.rend(); ++edit) {
            line.replace(edit->place.column, edit->place.length, edit->text);
        }
        changed[message.place.line] = line;
    }
    Strings lines = Split(source, '|');
    for (const auto& [number, line] : changed) {
        lines.at(static_cast<std::size_t>(number) - 1) = line;
    }
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "|") + line;
    }
    return changed.empty() ? "" : Printed(text);
}

TEST(NotesTest, EachRowHasItsExampleAndProposesWhatAssembles) {
    const TempDir directory;
    WriteFile("defs.kor", "");
    const auto check = [](std::string_view row, const std::string& example, std::string_view fix,
                          std::string_view note) {
        const std::string printed = example.empty() ? "" : Printed(example);
        EXPECT_EQ(example.empty() ? 0 : 1, std::ranges::count(printed, '\n')) << row << example << "\n" << printed;
        const std::string_view start = note.empty() ? "write " : note.substr(0, note.find('%'));
        EXPECT_TRUE(example.empty() || Contains(printed, std::string(start))) << example << "\n" << printed;
        EXPECT_EQ("", fix.empty() ? "" : ErrorsAfterChange(example)) << example;
    };
    for (const korv::WordRow& row : korv::wordTable) {
        check(row.words, std::string(row.example), row.fix, row.note);
    }
    for (const korv::TokenRow& row : korv::tokenTable) {
        check(row.tokens, std::string(row.example), row.fix, row.note);
    }
    for (const korv::OperandRow& row : korv::operandTable) {
        check(row.words, std::string(row.example), row.fix, row.note);
    }
}

TEST(NotesTest, MistakesGetOneMessageAtTheirPlace) {
    const TempDir directory;
    WriteFile("defs.kor", "");
    std::ifstream table(ProjectPath("tests/frontend/mistakes.txt"));
    int count = 0;
    for (std::string line; std::getline(table, line);) {
        if (line.empty() || line[0] == '~') {
            continue;
        }
        const std::size_t cut = line.find(" <- ");
        ASSERT_NE(std::string::npos, cut) << line;
        const std::string source = line.substr(cut + 4);
        const bool isWhole = line[0] != '?';  // what is proposed is not all that the example lacks
        EXPECT_EQ(line.substr(isWhole ? 0 : 1, cut - (isWhole ? 0 : 1)) + "\n", Printed(source)) << source;
        EXPECT_EQ("", isWhole ? ErrorsAfterChange(source) : "") << source;
        ++count;
    }
    EXPECT_LT(100, count);
}

TEST(NotesTest, NearWordsAreFoundAndNoneThatIsFar) {
    const std::vector<std::string_view> words = {"LOOP1", "HISCORE", "START", "SCREEN_WIDTH", "AB"};
    korv::NearWords near(words);
    for (const auto& [word, found] : std::map<std::string, std::string>{{"LOPO1", "LOOP1"},
                                                                        {"LOOP", "LOOP1"},
                                                                        {"HIGHSCORE", "HISCORE"},
                                                                        {"STRAT", "START"},
                                                                        {"AC", ""},
                                                                        {"SCREENWIDTH", "SCREEN_WIDTH"},
                                                                        {"STAAAAT", ""},
                                                                        {"LXXP", ""},
                                                                        {"LOOP111", "LOOP1"}}) {
        EXPECT_EQ(found, near.Find(word)) << word;
    }
    EXPECT_EQ("RETI", korv::NearWords({"RET", "RETI"}).Find("RETY", [](std::string_view it) { return it == "RETI"; }));
    std::vector<std::string> many(60000);
    std::vector<std::string_view> views;
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = "LABEL" + std::to_string(100000 + i);
        views.push_back(many[i]);
    }
    korv::NearWords index(views);
    const std::clock_t start = std::clock();  // of the processor, which others use too
    for (int i = 0; i < 10000; ++i) {
        EXPECT_TRUE(index.Find("LABLE" + std::to_string(200000 + i)).empty() || i < 100);
    }
    EXPECT_GT(2 * CLOCKS_PER_SEC, std::clock() - start);
}

TEST(NotesTest, StatementsThatSurprise) {
    const auto escape = [](std::string_view line) {
        const auto part = korv::FindEscape(korv::CutStatement(line));
        return part ? static_cast<int>(part->offset) : -1;
    };
    EXPECT_EQ(8, escape(" DB \"one\\n\""));
    EXPECT_EQ(8, escape(" DB 1,\"a\\\"b\""));
    EXPECT_EQ(-1, escape(" DB \"C:\\\",0"));
    EXPECT_EQ(-1, escape(" INCLUDE \"a\\new\""));
    for (const std::string word : {"B", "H", "O", "7", "EACH", "1B"}) {
        EXPECT_TRUE(korv::ReadsAsNumber(word)) << word;
    }
    EXPECT_FALSE(korv::ReadsAsNumber("A") || korv::ReadsAsNumber("EACHX") || korv::ReadsAsRegister("AX"));
    EXPECT_TRUE(korv::ReadsAsRegister("P") && korv::ReadsAsRegister("HL"));
    for (const auto& [text, surprises] : std::map<std::string, bool>{{"DEBUG AND MODE=2", true},
                                                                     {"A=1 OR B", true},
                                                                     {"!X", true},
                                                                     {"(A AND 4)=4", false},
                                                                     {"A AND B", false}}) {
        const korv::StatementView view = korv::CutStatement(" IF " + text);
        EXPECT_EQ(surprises, !korv::SurpriseInCondition(view.operands[0]).empty()) << text;
    }
}

}  // namespace
}  // namespace korv_test
