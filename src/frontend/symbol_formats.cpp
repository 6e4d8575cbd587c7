#include "frontend/symbol_formats.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "diagnostics/report_writer.h"
#include "frontend/program_checks.h"
#include "frontend/text_buffer.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::int32_t lastAddress = 0xFFFF;

// The room in characters that a line needs besides the name.
constexpr std::size_t longestRest = 64;

char* PutAddress(char* to, std::int32_t value) {
    return PutHex(to, static_cast<std::uint32_t>(value), 4);
}

// Writes a value as an expression in the source language, in which no number may exceed 65535.
char* PutExpression(char* to, std::int32_t value) {
    if (value < 0 && value >= -lastAddress) {
        return PutNumber(to, value);
    }
    *to++ = '$';
    if (value < 0 || value > lastAddress) {
        to = PutAddress(to, static_cast<std::int32_t>(static_cast<std::uint32_t>(value) >> 16));
        to = PutText(to, " SHL 16 OR $");
    }
    return PutAddress(to, value & lastAddress);
}

char* PutEqu(char* start, const Name& name) {
    constexpr std::ptrdiff_t longestReadable = 255;  // a longer line could not be read back
    constexpr std::size_t valueColumn = 24;
    constexpr std::string_view refusal = "; too long: ";
    std::fill_n(start, valueColumn, ' ');
    char* to = PutText(PutText(start, name.text), ":");
    to = PutText(std::max(to, start + valueColumn), " EQU ");
    to = PutExpression(to, name.value);
    if (to - start > longestReadable) {
        to = start + longestReadable;
        std::copy_backward(start, to - refusal.size(), to);
        PutText(start, refusal);
    }
    return to;
}

char* PutSym(char* to, const Name& name) {
    to = PutAddress(PutText(to, "00:"), name.value);
    return PutText(PutText(to, " "), name.text);
}

char* PutNoi(char* to, const Name& name) {
    to = PutText(PutText(to, "DEF "), name.text);
    return PutAddress(PutText(to, " 0x"), name.value);
}

// The logical address, the linear address, and the type, which is 00 for a label.
char* PutCspect(char* to, const Name& name) {
    to = PutText(PutAddress(to, name.value), " ");
    to = PutText(PutAddress(to, name.value), " 00 ");
    return PutText(to, name.text);
}

bool AllowsAll(std::string_view) {
    return true;
}

// The readers of "sym" accept names of letters, digits and "_@#$." that begin with a letter or "_".
bool AllowsPlain(std::string_view name) {
    const auto isPlain = [](char c) {
        return HasClass(c, CC_LETTER | CC_DIGIT) ||
               std::string_view("_@#$.").find(c) != std::string_view::npos;
    };
    return (HasClass(name.front(), CC_LETTER) || name.front() == '_') &&
           std::ranges::all_of(name, isPlain);
}

// openMSX recognises this format only by the beginning of the first line; readers for the Game Boy
// look for "[labels]".
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
    std::vector<std::pair<std::int32_t, const Name*>> names;  // pointers are in text order
    names.reserve(analysis.names.size());
    for (const Name& name : analysis.names) {
        if (name.hasValue && name.kind != NameKind::internal) {
            names.emplace_back(name.value, &name);
        }
    }
    std::ranges::sort(names);
    SymbolFile file;
    constexpr std::size_t usualLine = 48;
    TextBuffer text(row.header.size() + names.size() * usualLine);
    text.Put(row.header);
    for (const auto& [value, name] : names) {
        if (!row.allows(name->text)) {
            ++file.droppedNames;
        } else if (!row.hasAllValues && (value < 0 || value > lastAddress)) {
            ++file.droppedValues;
        } else {
            char* const line = text.Room(name->text.size() + longestRest);
            text.Advance(PutText(row.put(line, *name), "\n"));
        }
    }
    file.text = text.Take();
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
    if (options.symbols.empty()) {
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
