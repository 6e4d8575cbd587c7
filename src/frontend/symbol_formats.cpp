#include "frontend/symbol_formats.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "diagnostics/report_writer.h"
#include "frontend/program_checks.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::int32_t lastAddress = 0xFFFF;

std::string Hex(std::int32_t value) {
    char digits[16];
    return {digits, PutHex(digits, static_cast<std::uint32_t>(value), 4)};
}

// A value as an expression that the source language accepts: its numbers end at 65535.
std::string Expression(std::int32_t value) {
    if (value >= 0 && value <= lastAddress) {
        return "$" + Hex(value);
    }
    if (value < 0 && value >= -lastAddress) {
        return "-" + std::to_string(-value);
    }
    return "$" + Hex(static_cast<std::int32_t>(static_cast<std::uint32_t>(value) >> 16)) +
           " SHL 16 OR $" + Hex(value & lastAddress);
}

void PutEqu(std::string* text, const Name& name) {
    constexpr std::size_t longestLine = 255;  // a longer one could not be read back
    constexpr std::size_t valueColumn = 24;
    std::string line = name.text + ":";
    line.resize(std::max(line.size(), valueColumn), ' ');
    line += " EQU " + Expression(name.value);
    if (line.size() > longestLine) {
        line = ("; too long: " + line).substr(0, longestLine);
    }
    *text += line + "\n";
}

void PutSym(std::string* text, const Name& name) {
    *text += "00:" + Hex(name.value) + " " + name.text + "\n";
}

void PutNoi(std::string* text, const Name& name) {
    *text += "DEF " + name.text + " 0x" + Hex(name.value) + "\n";
}

// The address as the processor sees it, the linear one and the type, 00 for a label.
void PutCspect(std::string* text, const Name& name) {
    *text += Hex(name.value) + " " + Hex(name.value) + " 00 " + name.text + "\n";
}

bool AllowsAll(std::string_view) {
    return true;
}

// The readers of "sym" take names of letters, digits and "_@#$.", not beginning with a digit.
bool AllowsPlain(std::string_view name) {
    const auto isPlain = [](char c) {
        return HasClass(c, CC_LETTER | CC_DIGIT) ||
               std::string_view("_@#$.").find(c) != std::string_view::npos;
    };
    return (HasClass(name.front(), CC_LETTER) || name.front() == '_') &&
           std::ranges::all_of(name, isPlain);
}

// openMSX takes a .sym for this form only by the beginning of the first line; the readers of the
// Game Boy's tools look for the section.
constexpr std::string_view symHeader =
    "; this file was created with wlalink's format, by korv-as\n[labels]\n";

constexpr SymbolFormatRow rows[] = {
    {SymbolFormat::equ, "equ", "sym", "korv-as (INCLUDE), openMSX, Gearsystem", "", true, AllowsAll,
     PutEqu},
    {SymbolFormat::sym, "sym", "sym", "openMSX, Gearsystem, Emulicious, BGB", symHeader, false,
     AllowsPlain, PutSym},
    {SymbolFormat::noi, "noi", "noi", "NoICE, openMSX, Gearsystem, Gearcoleco", "", false,
     AllowsAll, PutNoi},
    {SymbolFormat::cspect, "cspect", "map", "CSpect", "", false, AllowsAll, PutCspect},
};
static_assert(std::ranges::is_sorted(rows, {}, &SymbolFormatRow::format) &&
              std::size(rows) == static_cast<std::size_t>(SymbolFormat::cspect) + 1);

}  // namespace

std::span<const SymbolFormatRow> SymbolFormats() {
    return rows;
}

const SymbolFormatRow& RowOf(SymbolFormat format) {
    return rows[static_cast<std::size_t>(format)];
}

SymbolFile SymbolText(const Analysis& analysis, SymbolFormat format) {
    const SymbolFormatRow& row = RowOf(format);
    std::vector<const Name*> names;
    for (const Name& name : analysis.names) {
        if (name.hasValue && name.kind != NameKind::internal) {
            names.push_back(&name);
        }
    }
    std::ranges::sort(names, {}, [](const Name* name) {
        return std::tuple(name->value, std::string_view(name->text));
    });
    SymbolFile file{.text = std::string(row.header)};
    constexpr std::size_t usualLine = 48;
    file.text.reserve(names.size() * usualLine);
    for (const Name* name : names) {
        if (!row.allows(name->text)) {
            ++file.droppedNames;
        } else if (!row.hasAllValues && (name->value < 0 || name->value > lastAddress)) {
            ++file.droppedValues;
        } else {
            row.put(&file.text, *name);
        }
    }
    return file;
}

std::string SymbolFile::Dropped() const {
    const auto counted = [](std::size_t count, const char* word) {
        return count == 0 ? "" : std::to_string(count) + word + (count == 1 ? "" : "s");
    };
    const std::string values = counted(droppedValues, " value");
    const std::string names = counted(droppedNames, " name");
    return values + (values.empty() || names.empty() ? "" : ", ") + names;
}

std::string SymbolFileText(const Options& options, Analysis* analysis) {
    if (options.symbols.empty() || !analysis->failure.empty() || analysis->errorCount != 0) {
        return "";
    }
    SymbolFile file = SymbolText(*analysis, options.symbolFormat);
    if (std::string dropped = file.Dropped(); !dropped.empty()) {
        Message message;
        message.warning = Warning::symbolRange;
        message.detail = std::move(dropped);
        AddWarning(options.warnings, std::move(message), analysis);
    }
    return std::move(file.text);
}

}  // namespace korv
