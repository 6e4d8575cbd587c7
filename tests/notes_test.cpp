// The notes: every row of their tables with its example, and mistakes of all kinds. A change of the source that a note
// proposes has to remove its error and bring no other.

#include "frontend/notes.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <map>

#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_table.h"
#include "frontend/statement_rules.h"
#include "frontend/warnings.h"
#include "run.h"
#include "source/source_file.h"
#include "table.h"

namespace korv_test {
namespace {

using korv::Advice;

struct Line {
    std::string cleaned;
    std::string typed;
};

// A run of one source, its errors kept until all names are known.
class Run : public korv::RunObserver, public korv::RunFacts {
  public:
    explicit Run(const std::string& text) : source(text), assembler(console, 1) {
        char line[512];
        std::uint32_t bytes = 0, count = 0;
        korv::CSourceFile file{std::string_view(source)};
        Strings typed = Split(source, '\n');
        for (std::size_t at = 0; file.ReadLine(line, 256, &bytes, &count) == 0 && count > 0; at += count) {
            lines[static_cast<std::int32_t>(at) + 1] = {line, typed.at(at)};
        }
        assembler.flags.Set(korv::RF_SYSTEM_IDS);
        assembler.mainText = &source;
        assembler.sourceName = "a.kor";
        assembler.Observe(this);
        assembler.AssembleSource();
    }
    ~Run() { std::fclose(console); }

    struct Said {
        std::int32_t line;
        std::uint32_t column;
        std::int32_t number;
        Advice advice;
    };
    // The errors that are printed.
    std::vector<Said> Errors() {
        korv::Adviser adviser(*this);
        std::vector<Said> said;
        for (const auto& [number, text, place] : errors) {
            const Line& line = lines[place.line];
            const korv::StatementView view = korv::CutStatement(line.cleaned, line.typed);
            const bool isLate = number == korv::MSG_UNRESOLVED && place.length == 0;
            const korv::LinePart part{place.offset, place.length};
            Advice advice = adviser.AdviceFor({number, true, isLate, view, part, text, place.line});
            if (!advice.isFollowOn) {
                said.push_back({place.line, advice.place.value_or(part).offset + 1, number, advice});
            }
        }
        return said;
    }
    // The source with the changes that the notes propose.
    std::string Changed() {
        std::map<std::int32_t, std::string> changed;
        for (const Said& each : Errors()) {
            if (!each.advice.edits.empty()) {
                changed.try_emplace(each.line, korv::Applied(lines[each.line].typed, each.advice.edits));
            }
        }
        std::string text;
        for (const auto& [number, line] : lines) {
            text += (changed.contains(number) ? changed[number] : line.typed) + "\n";
        }
        return text;
    }

    void OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                   const korv::SourcePlace& place) override {
        if ((kind == korv::ML_ERROR || !korv::WarningOf(number)) && place.line > 0) {
            errors.push_back({number, std::string(text), place});
        }
    }
    void OnStart() override {}
    void OnFile(const std::string&, std::int32_t, korv::CStatement*) override {}
    void OnFileEnd() override {}
    bool OnBlock(korv::CStatement&, std::int32_t) override { return true; }
    void OnStatement(korv::CStatement&, std::uint32_t) override {}

    [[nodiscard]] std::optional<korv::KnownName> FindName(std::string_view name) const override {
        for (std::int32_t i = 0; i < assembler.identifiers.RecordCount(); ++i) {
            const korv::CIdentifier& record = assembler.identifiers.Record(i);
            if (record.Name() == name) {
                const bool hasValue = (record.flags & korv::IDF_RESOLVED) != 0;
                const bool isWaiting = !hasValue && (record.flags & korv::IDF_EQU) != 0;
                const auto line = lines.find(record.line);
                return korv::KnownName{hasValue, record.value, false, "a.kor:" + std::to_string(record.line),
                                       isWaiting && line != lines.end() ? line->second.cleaned : ""};
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] bool HasFile(std::string_view name) const override {
        return name == "defs.kor" || name == "DEFS.KOR";
    }
    [[nodiscard]] std::vector<std::string_view> DefinedNames() const override {
        std::vector<std::string_view> names;
        for (std::int32_t i = 0; i < assembler.identifiers.RecordCount(); ++i) {
            if ((assembler.identifiers.Record(i).flags & korv::IDF_RESOLVED) != 0) {
                names.push_back(assembler.identifiers.Record(i).Name());
            }
        }
        return names;
    }

  private:
    struct Error {
        std::int32_t number;
        std::string text;
        korv::SourcePlace place;
    };
    std::string source;
    std::FILE* console = std::fopen(nullDevice, "w");
    std::map<std::int32_t, Line> lines;
    std::vector<Error> errors;
    korv::CAssembler assembler;
};

// What is printed for `source`, in which "|" ends a line: "line:column number note" for each error; and what is wrong
// with the change that is proposed.
std::string Printed(const std::string& source) {
    Run run(ReplaceAll(source, "|", "\n") + "\n");
    std::string printed;
    for (const Run::Said& each : run.Errors()) {
        printed += std::to_string(each.line) + ":" + std::to_string(each.column) + " " + std::to_string(each.number) +
                   " " + each.advice.note + "\n";
    }
    return printed;
}
std::string ErrorsAfterChange(const std::string& source) {
    const std::string text = ReplaceAll(source, "|", "\n") + "\n";
    const std::string changed = Run(text).Changed();
    return changed == text ? "" : Printed(changed.substr(0, changed.size() - 1));
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
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10000; ++i) {
        EXPECT_TRUE(index.Find("LABLE" + std::to_string(200000 + i)).empty() || i < 100);
    }
    EXPECT_GT(std::chrono::milliseconds(500), std::chrono::steady_clock::now() - start);
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
