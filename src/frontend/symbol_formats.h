/// The forms of a symbol file: names and values for debuggers and emulators.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "frontend/analysis.h"

namespace korv {

enum class SymbolFormat : std::uint8_t { equ, sym, noi, cspect };

struct SymbolFormatRow {
    SymbolFormat format;
    std::string_view name;       ///< as the command line takes it
    std::string_view extension;  ///< that its readers expect, without the dot
    std::string_view readers;    ///< programs, separated by commas
    std::string_view header;     ///< lines before the first symbol
    bool hasAllValues;           ///< false: only those from 0 to FFFFH
    bool (*allows)(std::string_view name);
    void (*put)(std::string* text, const Name& name);  ///< its line
};

/// One row for each value of `SymbolFormat`, in its order.
[[nodiscard]] std::span<const SymbolFormatRow> SymbolFormats();
[[nodiscard]] const SymbolFormatRow& RowOf(SymbolFormat format);

/// The names of the source and of -D that have a value and fit the format, by value, then by name.
/// Needs `Wanted::names`, as does the next.
[[nodiscard]] std::string SymbolText(const Analysis& analysis, SymbolFormat format);

/// How many symbols do not fit the format and are left out, as "2 values, 1 name"; empty for none.
[[nodiscard]] std::string DroppedSymbols(const Analysis& analysis, SymbolFormat format);

}  // namespace korv
