#include "frontend/summary.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/report_writer.h"
#include "frontend/routines.h"
#include "frontend/terminal_text.h"
#include "frontend/text_buffer.h"

namespace korv {
namespace {

constexpr std::uint32_t addressCount = 0x10000;
constexpr std::uint32_t kibibyte = 1024;
constexpr std::size_t largestCount = 10;

/// Bytes by the kind of statement that emitted them.
struct Sizes {
    std::uint64_t statements = 0;  ///< assembled statements; blank lines and comments do not count
    std::uint64_t code = 0;
    std::uint64_t data = 0;
    std::uint64_t space = 0;  ///< emitted by DS
};

struct Summary {
    std::vector<Sizes> files;  ///< in the order of `Analysis::files`
    std::string map;           ///< a character for each KiB
    std::uint32_t room = 0;    ///< bytes above the highest used address, up to FFFFH
    std::vector<Routine> routines;
    std::vector<Routine> largest;
};

void Count(const Statement& statement, Sizes* sizes) {
    sizes->statements += statement.kind == StatementKind::blank ? 0 : 1;
    switch (statement.kind) {
        case StatementKind::instruction:
            sizes->code += statement.count;
            break;
        case StatementKind::data:
            sizes->data += statement.count;
            break;
        case StatementKind::space:
            sizes->space += statement.count;
            break;
        case StatementKind::blank:
        case StatementKind::label:
        case StatementKind::directive:
        case StatementKind::unknown:
            break;
    }
}

// One character for each KiB: '#' if at least half of its used bytes are code, '+' if fewer are,
// '.' if no byte is used.
std::string MapOf(std::span<const Statement> statements) {
    struct Bytes {
        std::uint64_t code = 0, data = 0;
    };
    std::array<Bytes, addressCount / kibibyte> kibibytes{};
    for (const Statement& statement : statements) {
        for (std::uint32_t done = 0; done < statement.count;) {
            const std::uint32_t address = (statement.address + done) % addressCount;
            const std::uint32_t count =
                std::min(statement.count - done, kibibyte - address % kibibyte);
            Bytes& bytes = kibibytes[address / kibibyte];
            (statement.kind == StatementKind::instruction ? bytes.code : bytes.data) += count;
            done += count;
        }
    }
    std::string map;
    for (const auto& [code, data] : kibibytes) {
        map += code == 0 && data == 0 ? '.' : code >= data ? '#' : '+';
    }
    return map;
}

Summary Summarise(const Analysis& analysis) {
    Summary summary;
    summary.files.resize(analysis.files.size());
    for (const Statement& statement : analysis.statements) {
        if (!statement.isSkipped) {
            const auto opening = static_cast<std::size_t>(statement.opening);
            Count(statement,
                  &summary.files[static_cast<std::size_t>(analysis.openings[opening].file)]);
        }
    }
    summary.map = MapOf(analysis.statements);
    std::uint32_t end = 0;
    for (const Block& block : analysis.blocks) {
        end = std::max(end, block.address + block.count);
    }
    summary.room = addressCount - end;
    summary.routines = RoutinesOf(analysis);
    summary.largest.resize(std::min(largestCount, summary.routines.size()));
    // Routines of equal size are ordered by address.
    const auto isLarger = [](const Routine& a, const Routine& b) {
        return a.count != b.count ? a.count > b.count : a.address < b.address;
    };
    std::ranges::partial_sort_copy(summary.routines, summary.largest, isLarger);
    return summary;
}

// A table whose cells are added row by row. The first column is aligned left and all others right;
// each is as wide as its widest cell.
class Table {
  public:
    explicit Table(std::initializer_list<std::string_view> headings) : widths(headings.size()) {
        for (const std::string_view heading : headings) {
            Add(heading);
        }
    }

    void Add(std::string_view text) {
        texts.Put(text);
        Add(text.size(), EndColumn(text, 0, false));
    }
    void AddNumber(std::uint64_t value) {
        char* const start = texts.Room(longestNumber);
        AddDigits(start, PutNumber(start, value));
    }
    void AddAddress(std::uint32_t value) {
        char* const start = texts.Room(longestNumber);
        AddDigits(start, PutHex(start, value, 4));
    }

    // Writes the table unless it has only headings.
    void PutTo(TextBuffer* out) const {
        if (cells.size() <= widths.size()) {
            return;
        }
        std::string_view left = texts.Text();
        std::size_t at = 0;
        out->Put("\n");
        for (const Cell& cell : cells) {
            const bool isFirst = at == 0;
            const std::size_t blanks = widths[at] - cell.width;
            char* to = out->Room(blanks + cell.size + 24);
            to = isFirst ? to : PutBlanks(to, to + 2 + blanks);
            to = PutText(to, left.substr(0, cell.size));
            left.remove_prefix(cell.size);
            to = isFirst ? PutBlanks(to, to + blanks) : to;
            at = at + 1 == widths.size() ? 0 : at + 1;
            *to = '\n';
            out->Advance(to + (at == 0 ? 1 : 0));
        }
    }

  private:
    struct Cell {
        std::size_t size;   // in bytes
        std::size_t width;  // in columns
    };
    void AddDigits(char* start, char* end) {
        texts.Advance(end);
        const auto size = static_cast<std::size_t>(end - start);
        Add(size, size);
    }
    void Add(std::size_t size, std::size_t width) {
        std::size_t& widest = widths[column];
        widest = std::max(widest, width);
        column = column + 1 == widths.size() ? 0 : column + 1;
        cells.push_back({size, width});
    }

    std::vector<std::size_t> widths;  // by column
    std::size_t column = 0;           // of the next cell
    std::vector<Cell> cells;
    TextBuffer texts;  // of all cells
};

}  // namespace

void PutSummary(const Analysis& analysis, TextBuffer* text) {
    const Summary summary = Summarise(analysis);
    text->Put("Image: " + std::to_string(analysis.image.size()) +
              " bytes. Room to FFFFH: " + std::to_string(summary.room) + " bytes.\n\n" + "0000 " +
              summary.map + " FFFF\n" + "A character is 1 KiB: # code, + data, . free.\n");

    Table files({"File", "Statements", "Code", "Data", "DS"});
    for (std::size_t i = 0; i < analysis.files.size(); ++i) {
        const Sizes& sizes = summary.files[i];
        if (!analysis.files[i].isBinary) {
            files.Add(analysis.files[i].name);
            files.AddNumber(sizes.statements);
            files.AddNumber(sizes.code);
            files.AddNumber(sizes.data);
            files.AddNumber(sizes.space);
        }
    }
    files.PutTo(text);

    Table blocks({"From", "To", "Bytes"});
    for (const Block& block : analysis.blocks) {
        blocks.AddAddress(block.address);
        blocks.AddAddress(block.address + block.count - 1);
        blocks.AddNumber(block.count);
    }
    blocks.PutTo(text);

    Table largest({"Largest routines", "Bytes"});
    for (const Routine& routine : summary.largest) {
        largest.Add(routine.label->text);
        largest.AddNumber(routine.count);
    }
    largest.PutTo(text);

    Table times({"T-states", "Address", "Best", "Worst"});
    for (const Routine& routine : summary.routines) {
        if (routine.most != 0) {
            times.Add(routine.label->text);
            times.AddAddress(routine.address);
            times.AddNumber(routine.least);
            times.AddNumber(routine.most);
        }
    }
    times.PutTo(text);
}

std::string SummaryText(const Analysis& analysis) {
    TextBuffer text;
    PutSummary(analysis, &text);
    return text.Take();
}

std::string SummaryJson(const Analysis& analysis) {
    using Json = nlohmann::ordered_json;
    const Summary summary = Summarise(analysis);
    Json json = {{"imageBytes", analysis.image.size()},
                 {"room", summary.room},
                 {"map", summary.map},
                 {"files", Json::array()},
                 {"blocks", Json::array()},
                 {"largest", Json::array()},
                 {"routines", Json::array()}};
    for (std::size_t i = 0; i < analysis.files.size(); ++i) {
        const Sizes& sizes = summary.files[i];
        if (!analysis.files[i].isBinary) {
            json["files"].push_back({{"name", analysis.files[i].name},
                                     {"statements", sizes.statements},
                                     {"code", sizes.code},
                                     {"data", sizes.data},
                                     {"space", sizes.space}});
        }
    }
    for (const Block& block : analysis.blocks) {
        json["blocks"].push_back({{"from", block.address},
                                  {"to", block.address + block.count - 1},
                                  {"bytes", block.count}});
    }
    for (const Routine& routine : summary.largest) {
        json["largest"].push_back({{"name", routine.label->text}, {"bytes", routine.count}});
    }
    for (const Routine& routine : summary.routines) {
        json["routines"].push_back({{"name", routine.label->text},
                                    {"address", routine.address},
                                    {"bytes", routine.count},
                                    {"best", routine.least},
                                    {"worst", routine.most}});
    }
    // A file name need not be UTF-8.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace korv
