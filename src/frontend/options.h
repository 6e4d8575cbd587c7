/// The command line of korv-as.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frontend/warnings.h"

namespace korv {

enum class ImageFormat : std::uint8_t { com, bin, hex };
enum class SymbolFormat : std::uint8_t { equ, sym, noi, cspect };
enum class SummaryFormat : std::uint8_t { text, json };
enum class ColorChoice : std::uint8_t { automatic, always, never };

/// What the program is asked to do.
enum class Request : std::uint8_t { assemble, printHelp, printVersion };

/// The exit statuses.
inline constexpr int statusDone = 0;
inline constexpr int statusErrors = 1;  ///< errors in the source
inline constexpr int statusFailure =
    2;  ///< wrong command line, or a file cannot be read or written

/// Standard input as the source, standard output as an output.
inline constexpr const char* standardStream = "-";

/// The largest value of --line-length, in bytes.
inline constexpr std::uint32_t longestLine = 0x10000;

struct Options {
    Request request = Request::assemble;  ///< unless `assemble`, all other options are ignored
    std::string source;
    std::string output;                       ///< the image; never empty
    std::optional<ImageFormat> wantedFormat;  ///< none: determined by the extension of `output`
    ImageFormat format = ImageFormat::com;    ///< the format of the image
    std::vector<std::string> defines;         ///< NAME or NAME=EXPRESSION
    std::vector<std::string> includes;        ///< directories
    std::string depfile;                      ///< empty: none; the same for the next three
    std::string listing;
    std::string symbols;
    std::string debug;
    SymbolFormat symbolFormat = SymbolFormat::equ;
    std::optional<SummaryFormat> summary;  ///< on standard output; none: no summary
    WarningChoice warnings;
    bool isQuiet = false;            ///< no warnings at all
    std::uint64_t lineLength = 256;  ///< longest line in bytes, including comment and line end
    bool hasFreeNames = false;       ///< reserved words may be labels
    std::uint64_t maxErrors = 100;   ///< 0: all
    std::uint64_t maxImage = 65536;  ///< bytes
    ColorChoice color = ColorChoice::automatic;
};

/// Reads the words of a command line. They must not contain the program name or an @FILE. Result:
/// empty, or an error message, in which case `options` is incomplete.
[[nodiscard]] std::string TakeWords(const std::vector<std::string>& words, Options* options);

/// The same for the arguments of `main`. First replaces each @FILE with the words in that file.
[[nodiscard]] std::string ReadOptions(int argumentCount, char** arguments, Options* options);

/// The texts of --help and --version.
[[nodiscard]] std::string HelpText();
[[nodiscard]] std::string VersionText();

}  // namespace korv
