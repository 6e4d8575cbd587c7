/// The words of the command line, and the letters that they become for a run.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace korv {

/// What the command line asks for.
struct CommandLine {
    /// A place for each switch that a run can have on or off: a blank (not given), its upper-case
    /// letter (on) or its lower-case letter (off).
    char flagString[10] = "         ";
    std::string_view sourceArgument;      ///< the first word that is no switch; null for none
    std::string_view targetArgument;      ///< the second one; null for none
    std::int32_t fileBufferRequest = -1;  ///< bytes; counts when above 0
    std::int32_t lineBufferRequest = -1;  ///< bytes; counts when above 0
    bool helpWanted = false;
    bool waitWanted = false;
};

/// Reads the words after the program's name. What is wrong with a word is said on standard output,
/// with its place in the argument vector, and the next word follows.
[[nodiscard]] CommandLine ParseCommandLine(int argumentCount, char** arguments);

/// Prints all switches.
void PrintHelp();

/// The flags word (RF_*) that the letters of `flagString` make, from left to right, of the one that
/// a run has by default. `console` receives a message for any character that is neither a switch
/// letter nor a blank.
[[nodiscard]] std::uint32_t FlagsFrom(std::string_view flagString, std::FILE* console);

}  // namespace korv
