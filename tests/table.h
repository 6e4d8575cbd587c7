/// The text tables of the tests; README.md tells their form. Whatever a reader does not understand it refuses by an
/// exception with table and line, in the one test that needs it.
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
using Block = std::vector<TableLine>;  ///< a case as it stands in its table, without comments

/// The parts of `text` between the characters `at`: one more than there are of these.
Strings Split(const std::string& text, char at);

/// The absolute path of a part of the project.
std::string ProjectPath(const std::string& part);
/// The files in a folder of tests/, in order.
Strings TablesIn(const std::string& folder);

/// The cases of a table, or of the fenced blocks of a manual (.md).
std::vector<Block> ReadBlocks(const std::string& path);

/// The name of its test: the table, the line and the title.
std::string TestName(const Block& block);

/// A case as it is run.
struct Case {
    std::map<std::string, std::string> files;  ///< contents by name
    Strings arguments = {"Main.Kor"};
    std::string target;                          ///< the name of the file that they ask for
    std::string messages;                        ///< as printed, without directories: errors, then warnings
    bool hasError = false;                       ///< among what is expected
    std::optional<std::string> bytes;            ///< of the target in hexadecimal, or "none"
    std::map<std::string, std::string> outputs;  ///< expected contents by name; "console" as in README.md
    /// The lines of the table that an expectation comes from, by the offsets in it from which they count; for messages
    /// by marks under "messages".
    std::map<std::string, std::vector<std::pair<std::size_t, std::string>>> places;
    std::string title;  ///< the first line of the case, and its place
};

Case ReadCase(const Block& block);

/// Where the texts in `got` differ from those that `test` expects, by name: the title, then for each the line of the
/// table, the offset, the two bytes and their lines. Empty: nowhere.
std::string Differences(const Case& test, std::map<std::string, std::string> expected,
                        std::map<std::string, std::string> got);

struct Encoding {
    std::string instruction;
    std::string bytes;       ///< hexadecimal, without blanks
    std::string place = {};  ///< of the line that it comes from
};

/// A table of encodings: "LD [B|C],5 = 06 05|0E 05" is two of them.
std::vector<Encoding> ReadEncodings(const std::string& path);

}  // namespace korv_test
