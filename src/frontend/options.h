/// The command line of korv-as.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frontend/warnings.h"

namespace korv {

enum class ImageFormat : std::uint8_t { com, bin, hex };
enum class SymbolFormat : std::uint8_t { equ, sym };
enum class ColorChoice : std::uint8_t { automatic, always, never };

/// The exit statuses.
inline constexpr int statusDone = 0;
inline constexpr int statusErrors = 1;   ///< in the source
inline constexpr int statusFailure = 2;  ///< wrong use, or a file that cannot be read or written

/// Standard input as the source, standard output as an output.
inline constexpr const char* standardStream = "-";

struct Options {
    std::string source;
    std::string output;  ///< the image; never empty
    ImageFormat format = ImageFormat::com;
    std::vector<std::string> defines;
    std::vector<std::string> includes;
    std::string depfile;  ///< this one and the next two: empty for none
    std::string listing;
    std::string symbols;
    SymbolFormat symbolFormat = SymbolFormat::equ;
    WarningChoice warnings;
    std::uint64_t maxErrors = 100;  ///< 0 for all
    std::uint64_t maxImage = 65536;
    ColorChoice color = ColorChoice::automatic;
};

/// Reads the command line. Result: nothing, and `options` is complete; or the exit status of a run
/// that has done what it was asked (help, version) or has said what is wrong.
[[nodiscard]] std::optional<int> ReadOptions(int argumentCount, char** arguments, Options* options);

}  // namespace korv
