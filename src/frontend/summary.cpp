#include "frontend/summary.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include "diagnostics/report_writer.h"
#include "frontend/routines.h"
#include "frontend/terminal_text.h"

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

// '#' if most bytes are code, '+' if most are data, '.' if there are none.
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
    // Routines of equal size stay in the order of the source.
    const auto isLarger = [](const Routine& a, const Routine& b) {
        return a.count != b.count ? a.count > b.count : a.address < b.address;
    };
    std::ranges::partial_sort_copy(summary.routines, summary.largest, isLarger);
    return summary;
}

std::string Hex(std::uint32_t address) {
    char digits[16];
    return {digits, PutHex(digits, address, 4)};
}

using Row = std::vector<std::string>;

// Columns are as wide as their widest cell. The first one is aligned left and all others right. A
// table without a row below its heading is left out.
void PutTable(std::string* text, const std::vector<Row>& rows) {
    if (rows.size() < 2) {
        return;
    }
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], EndColumn(row[i], 0, false));
        }
    }
    *text += "\n";
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - EndColumn(row[i], 0, false), ' ');
            *text += i == 0 ? row[i] + padding : "  " + padding + row[i];
        }
        *text += "\n";
    }
}

}  // namespace

std::string SummaryText(const Analysis& analysis) {
    const Summary summary = Summarise(analysis);
    const auto number = [](auto value) { return std::to_string(value); };
    std::string text = "Image: " + number(analysis.image.size()) +
                       " bytes. Room to FFFFH: " + number(summary.room) + " bytes.\n\n" + "0000 " +
                       summary.map + " FFFF\n" + "A character is 1 KiB: # code, + data, . free.\n";

    std::vector<Row> files = {{"File", "Statements", "Code", "Data", "DS"}};
    for (std::size_t i = 0; i < analysis.files.size(); ++i) {
        const Sizes& sizes = summary.files[i];
        if (!analysis.files[i].isBinary) {
            files.push_back({analysis.files[i].name, number(sizes.statements), number(sizes.code),
                             number(sizes.data), number(sizes.space)});
        }
    }
    PutTable(&text, files);

    std::vector<Row> blocks = {{"From", "To", "Bytes"}};
    for (const Block& block : analysis.blocks) {
        blocks.push_back(
            {Hex(block.address), Hex(block.address + block.count - 1), number(block.count)});
    }
    PutTable(&text, blocks);

    std::vector<Row> largest = {{"Largest routines", "Bytes"}};
    for (const Routine& routine : summary.largest) {
        largest.push_back({routine.label->text, number(routine.count)});
    }
    PutTable(&text, largest);

    std::vector<Row> times = {{"T-states", "Address", "Best", "Worst"}};
    for (const Routine& routine : summary.routines) {
        if (routine.most != 0) {
            times.push_back({routine.label->text, Hex(routine.address), number(routine.least),
                             number(routine.most)});
        }
    }
    PutTable(&text, times);
    return text;
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
