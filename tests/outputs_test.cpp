// The debugging data of the examples, compared with their analysis.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "frontend/sld.h"
#include "run.h"

namespace korv_test {
namespace {

korv::Analysis Analyse(const std::string& source) {
    korv::Options options;
    options.source = source;
    korv::FileStore store;
    korv::Analysis analysis = korv::Analyse(options, &store, {.statements = true, .names = true});
    EXPECT_EQ(analysis.errorCount, 0U) << source << analysis.failure;
    return analysis;
}

using Mark = std::tuple<std::string, std::string, std::string>;  // file, line, value

// Every instruction must have one T line with the address of its first byte, and every label one L line.
void CheckSld(const korv::Analysis& analysis) {
    std::map<std::uint32_t, std::uint8_t> memory;
    for (const korv::Block& block : analysis.blocks) {
        for (std::uint32_t i = 0; i < block.count; ++i) {
            memory[block.address + i] = analysis.image.at(block.offset + i);
        }
    }
    std::vector<Mark> traces, labels, expectedTraces, expectedLabels;
    std::vector<std::uint8_t> bytes, expectedBytes;
    for (const std::string& line : Split(korv::SldText(analysis), '\n')) {
        const Strings fields = Split(line, '|');
        if (fields.size() != 8) {
            EXPECT_TRUE(line.empty() || line.starts_with('|')) << line;
        } else if (fields[6] == "T") {
            traces.emplace_back(fields[0], fields[1], fields[5]);
            bytes.push_back(memory.at(static_cast<std::uint32_t>(std::stoul(fields[5]))));
        } else if (fields[6] == "L") {
            labels.emplace_back(fields[0], fields[1], Split(fields[7], ',').at(1));
        }
    }
    for (const korv::Statement& statement : analysis.statements) {
        if (statement.kind == korv::StatementKind::instruction && !statement.isSkipped) {
            const korv::Opening& opening = analysis.openings.at(static_cast<std::size_t>(statement.opening));
            expectedTraces.emplace_back(analysis.files.at(static_cast<std::size_t>(opening.file)).name,
                                        std::to_string(statement.line), std::to_string(statement.address));
            expectedBytes.push_back(analysis.image.at(statement.offset));
        }
    }
    for (const korv::Name& name : analysis.names) {
        if (name.kind == korv::NameKind::label || name.kind == korv::NameKind::constant) {
            expectedLabels.emplace_back(analysis.files.at(static_cast<std::size_t>(name.definition.file)).name,
                                        std::to_string(name.definition.line), name.text);
        }
    }
    EXPECT_GT(traces.size(), 4U);
    EXPECT_EQ(traces, expectedTraces);
    EXPECT_EQ(bytes, expectedBytes);
    EXPECT_EQ(labels, expectedLabels);
}

TEST(OutputsTest, DebuggingDataLeadToTheBytesOfEveryInstruction) {
    for (const std::string name : {"guess", "loader", "dump"}) {
        SCOPED_TRACE(name);
        CheckSld(Analyse(ProjectPath("examples/" + name + ".kor")));
    }
}

}  // namespace
}  // namespace korv_test
