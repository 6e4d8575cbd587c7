/// The words of the command line, and the letters that pass them to a run.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace korv {

/// The contents of the command line.
struct CommandLine {
    /// One character for each switch that is on or off: a blank (not given), its upper-case letter
    /// (on) or its lower-case letter (off).
    char flagString[10] = "         ";
    std::string_view sourceArgument;      ///< the first word that is not a switch; null for none
    std::string_view targetArgument;      ///< the second one; null for none
    std::int32_t fileBufferRequest = -1;  ///< bytes; used if above 0
    std::int32_t lineBufferRequest = -1;  ///< bytes; used if above 0
    bool helpWanted = false;
    bool waitWanted = false;
};

/// Reads the words after the program's name. A wrong word is reported on standard output, with its
/// index in the argument vector, and skipped.
[[nodiscard]] CommandLine ParseCommandLine(int argumentCount, char** arguments);

/// Prints all switches.
void PrintHelp();

/// The flags word (RF_*): the default of a run, changed by the letters of `flagString` from left to
/// right. `console` receives a message for any character that is neither the letter of a switch nor
/// a blank.
[[nodiscard]] std::uint32_t FlagsFrom(std::string_view flagString, std::FILE* console);

}  // namespace korv
