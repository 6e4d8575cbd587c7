/// The options of korv-as, one per row. The parser and --help use the table; tests check the man
/// page, the manual and the completion files against it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/options.h"

namespace korv {

struct OptionRow {
    char letter;                ///< the short form; 0: there is none
    std::string_view name;      ///< the long form, without its dashes; empty: there is none
    std::string_view argument;  ///< FILE, DIR, NAME, N, or the words to choose from ("com|bin");
                                ///< empty: no argument; "[=a|b]": optional, and only after "="
    std::string_view help;
    /// Stores the argument `word`. Result: empty, or an error message.
    std::string (*take)(const OptionRow& row, std::string_view word, Options* options);
    std::uint64_t least = 0;  ///< smallest number allowed
    std::uint64_t most = 0;

    [[nodiscard]] bool NeedsArgument() const {
        return !argument.empty() && !argument.starts_with('[');
    }
    /// The words to choose from. A single word means that there is no choice.
    [[nodiscard]] std::vector<std::string_view> Choices() const;
};

/// In the order of the --help text.
extern const std::span<const OptionRow> optionTable;

}  // namespace korv
