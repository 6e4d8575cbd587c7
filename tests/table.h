/// The text tables of the tests: cases, encodings, the examples of the manual. README.md tells the
/// form. Whatever a reader does not understand it refuses by an exception that names table and
/// line, in the test that needs it, so that no other test is lost.
#pragma once

#include <istream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korv_test {

struct TableLine {
    std::string table;  ///< its path
    int number = 0;
    std::string text;

    [[nodiscard]] std::string Place() const { return table + ":" + std::to_string(number); }
};
using TableLines = std::vector<TableLine>;

/// The absolute path of a part of the project.
std::string ProjectPath(const std::string& part);
/// The files in a folder of tests/, in order.
std::vector<std::string> TablesIn(const std::string& folder);

TableLines ReadLines(const std::string& table, std::istream&& stream);
TableLines ReadLines(const std::string& path);
/// The fenced blocks of the manual as lines of a table of cases.
TableLines ManualAsTable(const TableLines& manual);

/// A case as it stands in its table.
struct Block {
    std::string title;
    std::string fault;  ///< what is wrong with the block as a whole
    TableLines lines;   ///< from its title on, without comments
};

std::vector<Block> SplitIntoBlocks(const TableLines& lines);

/// A case as it is run.
struct Case {
    std::map<std::string, std::string> files;  ///< contents by name
    std::vector<std::string> arguments = {"Main.Kor"};
    std::string messages;              ///< as printed, without directories: errors, then warnings
    bool hasError = false;             ///< among what is expected
    std::optional<std::string> bytes;  ///< of the target, as by ToHex, or "none"
    std::map<std::string, std::string> outputs;  ///< expected contents by name; "" is the console
};

Case ReadCase(const Block& block);

struct Encoding {
    std::string instruction;
    std::string bytes;    ///< hexadecimal, without blanks
    TableLine line = {};  ///< that it comes from
};

/// A table of encodings: "LD [B|C],5 = 06 05|0E 05" is two of them.
std::vector<Encoding> ReadEncodings(const TableLines& lines);
std::vector<Encoding> ReadEncodings(const std::string& path);

}  // namespace korv_test
