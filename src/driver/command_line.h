/// The words of the command line.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace korv {

/// One slot per switch: a blank (not given), the upper-case letter (on) or the lower-case letter
/// (off).
class FlagSlots {
  public:
    static constexpr std::string_view letters = "DSLPTMWBI";

    FlagSlots() { slots.fill(' '); }
    /// `letter` in either case goes to its slot.
    void Put(char letter);
    [[nodiscard]] std::string_view View() const { return {slots.data(), slots.size()}; }

  private:
    std::array<char, letters.size()> slots;
};

/// What the command line asks for.
struct CommandLine {
    FlagSlots flagString;
    const char* sourceArgument = nullptr;  ///< the first word that is no switch, or null; not owned
    const char* targetArgument = nullptr;  ///< the second one, or null; not owned
    std::int32_t fileBufferRequest = -1;   ///< bytes; counts when above 0
    std::int32_t lineBufferRequest = -1;   ///< bytes; counts when above 0
    bool helpWanted = false;
    bool waitWanted = false;
};

/// Reads the words behind the program's name. What is wrong with a word is said on standard output,
/// with its place in the argument vector, and the next word follows.
[[nodiscard]] CommandLine ParseCommandLine(int argumentCount, char** arguments);

/// All switches, printed with `/?`.
extern const char helpText[];

}  // namespace korv
