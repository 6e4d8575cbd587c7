/// The formats of a symbol file: names and values for debuggers and emulators.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "frontend/analysis.h"
#include "frontend/options.h"

namespace korv {

struct SymbolFormatRow {
    SymbolFormat format;
    std::string_view name;       ///< as on the command line
    std::string_view extension;  ///< the one that the readers expect, without the dot
    std::string_view readers;    ///< programs, separated by commas
    std::string_view header;     ///< lines before the first symbol
    bool hasAllValues;           ///< false: only values from 0 to FFFFH
    bool (*allows)(std::string_view name);
    char* (*put)(char* to, const Name& name);  ///< writes the line of `name`; returns the end
};

/// One row for each value of `SymbolFormat`, in its order.
[[nodiscard]] std::span<const SymbolFormatRow> SymbolFormats();
[[nodiscard]] const SymbolFormatRow& RowOf(SymbolFormat format);

struct SymbolFile {
    std::string text;
    std::size_t droppedNames = 0;   ///< names that the format does not allow
    std::size_t droppedValues = 0;  ///< allowed names whose values the format cannot hold

    /// What is missing, as "2 values, 1 name" for a warning; empty if nothing is.
    [[nodiscard]] std::string Dropped() const;
};

/// The names from the source and from -D that have a value, sorted by value and then by name. Needs
/// `Wanted::names`.
[[nodiscard]] SymbolFile SymbolText(const Analysis& analysis, SymbolFormat format);

/// The contents of the symbol file that `options` ask for; empty if they ask for none. If names or
/// values are missing from it, adds a warning to `analysis`.
std::string SymbolFileText(const Options& options, Analysis* analysis);

}  // namespace korv
