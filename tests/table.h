/// Readers of the text tables, whose format README.md describes. If a reader does not understand a line, it throws an
/// exception that names the table and the line, so only the test that needs that line fails.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korv_test {

using Strings = std::vector<std::string>;

struct TableLine {
    std::string place;  ///< "TABLE:LINE"
    std::string text;
};
using Block = std::vector<TableLine>;  ///< the lines of a case

/// Splits `text` at each `at`. The result has one part more than there are such characters.
Strings Split(const std::string& text, char at);

/// The absolute path of a file of the project.
std::string ProjectPath(const std::string& part);
/// The files in a folder of tests/, sorted.
Strings TablesIn(const std::string& folder);

/// The cases in a table, or in the fenced blocks of a manual (.md).
std::vector<Block> ReadBlocks(const std::string& path);

/// The name of the test for a case: the table, the line and the title.
std::string TestName(const Block& block);

/// A case, ready to be run.
struct Case {
    std::map<std::string, std::string> files;  ///< contents by name
    Strings arguments = {"Main.Kor"};
    std::string target;                          ///< the name of the target that the arguments select
    std::string messages;                        ///< as printed, without directories: errors, then warnings
    bool hasError = false;                       ///< true if an error is expected
    std::optional<std::string> bytes;            ///< the target in hexadecimal, or "none"
    std::map<std::string, std::string> outputs;  ///< expected contents by name; "console" as in README.md
    /// By the name of an expectation, or "messages": the offset in it at which each line of the table begins, and the
    /// place of that line.
    std::map<std::string, std::vector<std::pair<std::size_t, std::string>>> places;
    std::string title;  ///< the first line of the case, and its place
};

Case ReadCase(const Block& block);

/// Describes the differences between the texts in `got` and `expected`: the title, then for each name the line of the
/// table, the offset, the two bytes and their lines. Empty if there are none.
std::string Differences(const Case& test, std::map<std::string, std::string> expected,
                        std::map<std::string, std::string> got);

struct Encoding {
    std::string instruction;
    std::string bytes;       ///< hexadecimal, without blanks
    std::string place = {};  ///< "TABLE:LINE"
};

/// Reads a table of encodings. The line "LD [B|C],5 = 06 05|0E 05" stands for two encodings.
std::vector<Encoding> ReadEncodings(const std::string& path);

}  // namespace korv_test
