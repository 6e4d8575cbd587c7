// The summary and the rule for make with unusual file names. All other tests of outputs are in frontend/runs.txt.

#include <gtest/gtest.h>

#include "frontend/analyser.h"
#include "frontend/dependencies.h"
#include "frontend/file_store.h"
#include "frontend/summary.h"
#include "frontend/symbol_formats.h"
#include "run.h"

namespace korv_test {
namespace {

korv::Analysis AnalyseSample() {
    const TempDir directory;
    WriteFile("a.kor", " INCLUDE p.kor\n");
    WriteFile("p.kor", " RET\n");
    korv::Options options;
    options.source = "a.kor";
    korv::FileStore store;
    return korv::Analyse(options, &store, {.statements = true});
}

TEST(OutputsTest, ASummaryIsUtf8WhateverItsNamesAre) {
    korv::Analysis analysis = AnalyseSample();
    analysis.files.at(0).name = "\xFF.kor";
    EXPECT_TRUE(Contains(korv::SummaryJson(analysis), "\"\uFFFD.kor\""));
}

TEST(OutputsTest, ANameWithoutAValueIsNoSymbol) {
    korv::Analysis analysis;
    analysis.names.emplace_back().text = "NONE";
    EXPECT_EQ("", korv::SymbolText(analysis, korv::SymbolFormat::equ).text);
}

TEST(OutputsTest, RulesHoldOnlyNamesThatMakeAndNinjaReadBack) {
    korv::Analysis analysis = AnalyseSample();
    const std::string rest = ": \\\n  a.kor \\\n  p.kor\n\na.kor:\n\np.kor:\n";
    for (const std::string name : {"+,-./@_~(){}!]AZaz09", "\xC4\x80", "\\a\\b\\\\c", "define.", "./.Sx", ".", "a~"}) {
        EXPECT_EQ(name + rest, korv::DependenciesOf(analysis, name).text);
    }
    EXPECT_EQ("a\\ \\#\\:$$b" + rest, korv::DependenciesOf(analysis, "a #:$b").text);
    const std::string refusal = "cannot write dependencies: make or ninja would misread the name '";
    for (const std::string name : {"~a", "%a", "a=b", "define", "././define", "././.SUFFIXES", "._", "a)", "a ",
                                   "ab:", "a\\", "a\\#b", "a\nb"}) {
        EXPECT_EQ(refusal + name + "'", korv::DependenciesOf(analysis, name).failure);
    }
    analysis.files.at(1).name = "p*.kor";
    EXPECT_EQ(refusal + "p*.kor'", korv::DependenciesOf(analysis, "a").failure);
    analysis.files.at(1).isStandardInput = true;
    EXPECT_EQ("a: \\\n  a.kor\n\na.kor:\n", korv::DependenciesOf(analysis, "a").text);
}

}  // namespace
}  // namespace korv_test
