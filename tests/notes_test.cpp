// The notes: the example in each row of their tables, and mistakes of all kinds. If a note proposes a change, the
// change must remove the error and cause no other.

#include "frontend/notes.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_table.h"
#include "frontend/word_table.h"
#include "run.h"
#include "table.h"

namespace korv_test {
namespace {

// The analysis of `source`, in which "|" ends a line.
korv::Analysis AnalysisOf(const std::string& source) {
    korv::FileStore store;
    store.SetText(store.FullPath("a.kor"), ReplaceAll(source, "|", "\n") + "\n");
    korv::Options options;
    options.source = "a.kor";
    options.maxErrors = 0;
    return korv::Analyse(options, &store, {});
}

std::string Joined(const Strings& texts, const std::string& separator) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + text;
    }
    return joined;
}

// A regular expression that matches `text` only.
std::string Literal(std::string_view text) {
    return std::regex_replace(std::string(text), std::regex(R"([.*+?^$(){}|\[\]\\])"), R"(\$&)");
}

// "line:first-last note" for each message, one per line. `first` and `last` are columns; one alone is not repeated.
std::string Printed(const korv::Analysis& analysis, bool takesWarnings = true) {
    std::string printed;
    for (const korv::Message& each : analysis.messages) {
        if (takesWarnings || each.severity == korv::Severity::error) {
            const std::uint32_t last = each.place.column + each.place.length;
            printed += std::to_string(each.place.line) + ":" + std::to_string(each.place.column + 1) +
                       (each.place.length > 1 ? "-" + std::to_string(last) : "") + " " + each.note + "\n";
        }
    }
    return printed;
}
std::string Printed(const std::string& source) {
    return Printed(AnalysisOf(source));
}

// The errors that remain after the changes that the notes propose; `without` if the notes propose no change.
std::string ErrorsAfterChange(const std::string& source, const std::string& without = "") {
    const korv::Analysis analysis = AnalysisOf(source);
    std::map<std::pair<std::int32_t, std::uint32_t>, const korv::Edit*> edits;  // by line and column
    std::set<std::int32_t> changed;
    for (const korv::Message& message : analysis.messages) {
        if (message.severity == korv::Severity::error && !message.edits.empty() &&
            changed.insert(message.place.line).second) {
            for (const korv::Edit& edit : message.edits) {
                edits.emplace(std::pair(edit.place.line, edit.place.column), &edit);
            }
        }
    }
    Strings lines = Split(source, '|');
    for (auto it = edits.rbegin(); it != edits.rend(); ++it) {
        const korv::Place& place = it->second->place;
        lines.at(static_cast<std::size_t>(place.line) - 1).replace(place.column, place.length, it->second->text);
    }
    return edits.empty() ? without : Printed(AnalysisOf(Joined(lines, "|")), false);
}

// `text` with each of `alternatives` in the place of the last one that occurs in it; none if there is only one.
Strings Variants(const std::string& text, const Strings& alternatives) {
    Strings variants;
    for (const std::string& each : alternatives.size() > 1 ? alternatives : Strings()) {
        const std::regex place("(.*[^A-Z0-9])" + Literal(each) + "(?![A-Z0-9_.])(.*)");
        if (std::smatch found; variants.empty() && std::regex_match(text, found, place)) {
            for (const std::string& other : alternatives) {
                variants.push_back(found.str(1) + other + found.str(2));
            }
        }
    }
    return variants;
}

// The example of a row of a note table with each alternative of the row in turn.
template <typename Row>
Strings VariantsOf(const Row& row) {
    const std::string example(row.example);
    Strings variants = Variants(example, Split(ReplaceAll(std::string(row.words), "=", ""), ' '));
    if constexpr (requires { row.tokens; }) {
        for (const std::string& term : Split(std::string(row.tokens), ' ')) {
            const std::string texts = std::regex_replace(term, std::regex(R"(^%[a-z]|\\(.))"), "$1");
            std::ranges::move(Variants(example, Split(texts, '|')), std::back_inserter(variants));
        }
    }
    if constexpr (requires { row.shapes; }) {
        std::map<std::string, std::string> operands;  // one of each class
        for (const std::string& pair : Split(
                 "r=B s=5 m=(HL) dd=DE gp=DE pair=HL xy=IX (xy)=(IX) (xy+d)=(IX+1) cc=NZ n=5 nn=5 v=5 (n)=(5) (nn)=(5) "
                 "reg=HL (reg)=(HL) (cc)=(NZ) (any)=(HL) str=\"a\"",
                 ' ')) {
            operands[Split(pair, '=')[0]] = Split(pair, '=')[1];
        }
        std::smatch parts;
        const bool isThere = std::regex_match(example, parts, std::regex("([^ ]* [A-Z]+ )([^|]*)(.*)"));
        for (const std::string& shape :
             row.shapes == "*" || !isThere ? Strings() : Split(std::string(row.shapes), ' ')) {
            Strings given = Split(parts.str(2), ','), written;  // for "any", the operand of the example
            for (const std::string& term : Split(shape, ',')) {
                const auto it = operands.find(term);
                given.push_back("A");
                written.push_back(term == "any" ? given[written.size()] : it == operands.end() ? term : it->second);
            }
            variants.push_back(parts.str(1) + Joined(written, ",") + parts.str(3));
        }
    }
    return variants;
}

TEST(NotesTest, EachRowHasItsExampleAndProposesWhatAssembles) {
    const TempDir directory;
    WriteFile("defs.kor", "");
    std::set<std::string> examples;
    const auto check = [&examples](const auto& row) {
        if (row.example.empty()) {
            return;
        }
        const std::string example(row.example);
        EXPECT_TRUE(examples.insert(example).second) << "the example of two rows:" << example;
        const std::string all = std::regex_replace(Literal(row.note), std::regex("%[a-z]?[1-9fkrw]"), ".+");
        const std::regex note("\\d " + (all.empty() ? "write .+" : all) + "\n");
        std::set<std::int32_t> numbers;
        Strings sources = VariantsOf(row);
        sources.push_back(example);
        for (const std::string& source : sources) {
            const std::string printed = Printed(source);
            EXPECT_EQ(1, std::ranges::count(printed, '\n')) << source << "\n" << printed;
            EXPECT_TRUE(std::regex_search(printed, note)) << source << "\n" << printed;
            EXPECT_EQ("", row.fix.empty() ? "" : ErrorsAfterChange(source, "no change")) << source;
            numbers.insert(AnalysisOf(source).messages.at(0).number);
        }
        if constexpr (requires { row.numbers; }) {
            for (const std::string& number : Split(std::string(row.numbers), ' ')) {
                EXPECT_TRUE(number == "*" || numbers.contains(std::stoi(number))) << example << number;
            }
        }
        constexpr bool areForeign = std::is_same_v<decltype(row), const korv::WordRow&>;
        for (const std::string& word : Split(std::string(row.words), ' ')) {
            EXPECT_TRUE(areForeign || word == "*" || korv::FindKeyword(word.substr(word[0] == '=' ? 1 : 0))) << word;
        }
    };
    std::ranges::for_each(korv::wordTable, check);
    std::ranges::for_each(korv::tokenTable, check);
    std::ranges::for_each(korv::operandTable, check);
}

TEST(NotesTest, MistakesGetOneMessageAtTheirPlace) {
    const TempDir directory;
    WriteFile("defs.kor", "");
    std::ifstream table(ProjectPath("tests/frontend/mistakes.txt"));
    ASSERT_TRUE(table.is_open());
    for (std::string line; std::getline(table, line);) {
        if (line.empty() || line[0] == '~') {
            continue;
        }
        const std::size_t cut = line.find(" <- ");
        ASSERT_NE(std::string::npos, cut) << line;
        const std::string source = line.substr(cut + 4);
        const std::size_t start = line.find_first_not_of("?+");
        EXPECT_EQ(ReplaceAll(line.substr(start, cut - start), " && ", "\n") + "\n", Printed(source)) << source;
        const std::string without = line[0] == '+' ? "no change is proposed" : "";
        EXPECT_EQ("", line[0] == '?' ? "" : ErrorsAfterChange(source, without)) << source;
    }
}

TEST(NotesTest, NearWordsAreFoundAndNoneThatIsFar) {
    const std::vector<std::string_view> words = {"LOOP1", "HISCORE", "START", "SCREEN_WIDTH", "AB", "HERZ", "KURQ"};
    korv::NearWords near(words);
    for (const std::string row : {"LOPO1=LOOP1", "LOOP=", "HIGHSCORE=HISCORE", "STRAT=START",
                                  "AC=", "STAAAAT=", "LXXP=", "SCREENWIDTH=SCREEN_WIDTH", "LOOP111=LOOP1",
                                  "STARG=START", "STARB=", "STARU=", "HERQ=", "KURZ="}) {
        const Strings parts = Split(row, '=');
        EXPECT_EQ(parts[1], near.Find(parts[0])) << row;
    }
    EXPECT_EQ("RETI", korv::NearWords({"RET", "RETI"}).Find("RETY", [](std::string_view it) { return it == "RETI"; }));
    std::vector<std::string> many(60000);
    std::vector<std::string_view> views = {"LABELHEIGHT"};
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = "LABEL" + std::to_string(100000 + i);
        views.push_back(many[i]);
    }
    korv::NearWords all(views);
    const std::clock_t start = std::clock();  // processor time, since other programs may be running too
    for (int i = 0; i < 10000; ++i) {
        EXPECT_EQ(i < 99 ? "LABELHEIGHT" : "", all.Find(i < 99 ? "LABELHIEGHT" : "LABLE" + std::to_string(200000 + i)));
    }
    EXPECT_GT(2 * CLOCKS_PER_SEC, std::clock() - start);
}

}  // namespace
}  // namespace korv_test
