/// The words of the command line, and the string of letters that passes the switches to a run.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace korv {

/// The contents of the command line.
struct CommandLine {
    /// One character for each switch that can be on or off: a blank if the switch is not given, its
    /// upper-case letter if it is on, its lower-case letter if it is off.
    char flagString[10] = "         ";
    std::string_view sourceArgument;      ///< the first word that is not a switch; null for none
    std::string_view targetArgument;      ///< the second one; null for none
    std::int32_t fileBufferRequest = -1;  ///< bytes; used if above 0
    std::int32_t lineBufferRequest = -1;  ///< bytes; used if above 0
    bool helpWanted = false;
    bool waitWanted = false;
};

/// Reads the words after the program's name. Reports an invalid word on standard output and goes on
/// with the next one.
[[nodiscard]] CommandLine ParseCommandLine(int argumentCount, char** arguments);

/// Prints all switches.
void PrintHelp();

/// Returns the flags word (RF_*): the default flags of a run, changed by the letters of
/// `flagString` from left to right. `console` receives a message for any character that is neither
/// the letter of a switch nor a blank.
[[nodiscard]] std::uint32_t FlagsFrom(std::string_view flagString, std::FILE* console);

}  // namespace korv
