// Dependencies, listing and symbols.

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>

#include "diagnostics/report_writer.h"
#include "frontend/outputs.h"
#include "platform/platform.h"
#include "symbols/identifier_manager.h"

namespace korv {
namespace {

// A name as make and ninja read it; the colon of a drive they know.
std::string Escaped(const std::string& name) {
    const std::size_t drive = platform::DriveLength(name);
    std::string text = name.substr(0, drive);
    for (const char c : name.substr(drive)) {
        text += c == '$' ? "$" : c == ' ' || c == '#' || c == ':' ? "\\" : "";
        text += c;
    }
    return text;
}

std::string Hex(std::uint32_t value, std::size_t minDigits) {
    char digits[16];
    return {digits, PutHex(digits, value, minDigits)};
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// A value as an expression that the source language takes: numbers above 65535 it does not.
std::string Expression(std::int32_t value) {
    if (value >= 0 && value <= 0xFFFF) {
        return "$" + Hex(static_cast<std::uint32_t>(value), 4);
    }
    if (value < 0 && value >= -0xFFFF) {
        return "-" + std::to_string(-value);
    }
    const auto bits = static_cast<std::uint32_t>(value);
    return "$" + Hex(bits >> 16, 4) + " SHL 16 OR $" + Hex(bits & 0xFFFF, 4);
}

}  // namespace

std::string DependencyText(const std::string& target, const std::vector<std::string>& files) {
    // The target as the rule has it that gave its name, the others as rules on every system do.
    std::string text = Escaped(target) + ":", rules;
    for (const std::string& file : files) {
        const std::u8string name =
            std::filesystem::path(std::u8string(file.begin(), file.end())).generic_u8string();
        const std::string escaped = Escaped({name.begin(), name.end()});
        text += " \\\n  " + escaped;
        rules += "\n" + escaped + ":\n";
    }
    text += "\n" + rules;
    return text;
}

std::string ListingText(const std::string& image, const std::vector<StatementRecord>& records,
                        Messages* messages) {
    constexpr std::uint32_t bytesPerRow = 8;
    constexpr std::size_t sourceColumn = 14 + 2 * bytesPerRow;
    std::string text = "Addr Offset  Bytes             File:Line  Source\n";
    for (const StatementRecord& record : records) {
        const SourceText& source = messages->texts.Of(record.file);
        const std::uint32_t rows =
            std::max(record.lineCount, (record.count + bytesPerRow - 1) / bytesPerRow);
        for (std::uint32_t row = 0; row < std::max(rows, 1U); ++row) {
            std::string line;
            const std::uint32_t done = row * bytesPerRow;
            if (row == 0 || done < record.count) {
                line = Hex(record.address + done, 4) + " " + Hex(record.offset + done, 6) + "  ";
            }
            for (std::uint32_t i = done; i < std::min(record.count, done + bytesPerRow); ++i) {
                line += Hex(static_cast<std::uint8_t>(image[record.offset + i]), 2);
            }
            if (row < std::max(record.lineCount, 1U)) {
                const std::int32_t number = record.line + static_cast<std::int32_t>(row);
                line = Padded(std::move(line), sourceColumn) + " " + messages->NameOf(record.file) +
                       ":" + std::to_string(number) + "  " + std::string(source.Line(number));
            }
            text += line + "\n";
        }
    }
    return text;
}

std::string SymbolText(const CIdentifierManager& names, SymbolFormat format) {
    constexpr std::size_t longestName = 230;  // the line must not be too long
    std::vector<const CIdentifier*> records;
    for (std::int32_t i = 0; i < names.RecordCount(); ++i) {
        const CIdentifier& record = names.Record(i);
        if ((record.flags & IDF_RESOLVED) != 0 && (record.flags & IDF_INTERNAL) == 0) {
            records.push_back(&record);
        }
    }
    std::ranges::sort(records, {}, [](const CIdentifier* record) {
        return std::tuple(record->value, record->Name());
    });
    std::string text;
    for (const CIdentifier* record : records) {
        const std::string name(record->Name());
        if (format == SymbolFormat::equ) {
            text += name.size() > longestName ? "; too long: " : "";
            text += Padded(name + ":", 24) + " EQU " + Expression(record->value) + "\n";
        } else if (record->value >= 0 && record->value <= 0xFFFF) {
            text += "00:" + Hex(static_cast<std::uint32_t>(record->value), 4) + " " + name + "\n";
        }
    }
    return text;
}

}  // namespace korv
