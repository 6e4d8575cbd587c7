/// The options of korv-as, a row each. The parser and --help read the table; tests check the man
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
    char letter;                ///< of the short form; 0: there is none
    std::string_view name;      ///< of the long form, without its dashes; empty: there is none
    std::string_view argument;  ///< FILE, DIR, NAME, N, or the words to choose from ("com|bin");
                                ///< empty: it takes none; "[=a|b]": only after "=", and optional
    std::string_view help;
    /// Stores `word`, the argument. Result: what is wrong with it, or empty.
    std::string (*take)(const OptionRow& row, std::string_view word, Options* options);
    std::uint64_t least = 0;  ///< of a number
    std::uint64_t most = 0;

    [[nodiscard]] bool NeedsArgument() const {
        return !argument.empty() && !argument.starts_with('[');
    }
    /// The words to choose from, an empty one among them where the argument is optional; a single
    /// one: there is no choice.
    [[nodiscard]] std::vector<std::string_view> Choices() const;
};

/// In the order of --help.
extern const std::span<const OptionRow> optionTable;

}  // namespace korv
