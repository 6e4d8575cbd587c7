/// The named warnings: those that the core reports by number, and those that only this front end
/// issues.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string_view>

namespace korv {

enum class Warning : std::uint8_t {
    lateLocation,
    truncated,
    continuedComment,
    orgGap,
    numberLabel,
    registerLabel,
    registerValue,
    escape,
    nestedIf,
    condition,
    earlyEnd,
    negativeSize,
    keywordLabel,
    hiddenInstruction,
    nullByte,
    carriageReturn,
    endMark,
    overlap,
    range,
    openString,
    emptyOperand,
    skippedLine,
    labelWithoutColon,
    org,
    unusedLabel,
    symbolRange,
};

struct WarningRow {
    std::string_view name;
    bool isOn;  ///< by default
    std::string_view meaning;
};

// clang-format off
/// In the order of `Warning`.
inline constexpr std::array warningTable = {
    WarningRow{"late-location", true, "$ in a forward reference is the address where the name is defined"},
    WarningRow{"truncated", true, "a value is truncated to 16 bits"},
    WarningRow{"continued-comment", true, "a comment that ends with a backslash continues on the next line"},
    WarningRow{"org-gap", true, "ORG after code leaves no gap in the image"},
    WarningRow{"number-label", true, "a label reads as a number where it is used"},
    WarningRow{"register-label", true, "a label has the name of a register or condition"},
    WarningRow{"register-value", true, "a register is used as a value"},
    WarningRow{"escape", true, "a backslash in a string is an ordinary character"},
    WarningRow{"nested-if", true, "a block nested in a skipped one is assembled"},
    WarningRow{"condition", true, "a condition may not mean what it seems to"},
    WarningRow{"early-end", true, "END in an included file ends the whole source"},
    WarningRow{"negative-size", true, "DS with a negative size reserves nothing"},
    WarningRow{"keyword-label", true, "an instruction in column 1 is a label"},
    WarningRow{"hidden-instruction", true, "a semicolon right after a label hides an instruction"},
    WarningRow{"null-byte", true, "a byte 0 hides the rest of its line"},
    WarningRow{"carriage-return", true, "a lone carriage return does not end a line"},
    WarningRow{"end-mark", true, "a byte 1AH does not end the file and is dropped"},
    WarningRow{"overlap", true, "two blocks of the image have the same addresses"},
    WarningRow{"range", true, "a value is truncated to fit"},
    WarningRow{"open-string", true, "a string is not closed"},
    WarningRow{"empty-operand", true, "an operand between commas is missing"},
    WarningRow{"skipped-line", true, "the first line begins with * and is skipped"},
    WarningRow{"label-without-colon", false, "a label has no colon"},
    WarningRow{"org", false, "ORG is used"},
    WarningRow{"unused-label", false, "a label or EQU is never used"},
    WarningRow{"symbol-range", true, "the symbol format cannot hold some symbols"},
};
// clang-format on
static_assert(warningTable.size() == static_cast<std::size_t>(Warning::symbolRange) + 1);

[[nodiscard]] constexpr const WarningRow& RowOf(Warning warning) {
    return warningTable[static_cast<std::size_t>(warning)];
}

/// The named warning for the core's warning `number`; none for the warning about an IF whose
/// condition has no value. The condition decides what is assembled, so this warning is an error.
[[nodiscard]] std::optional<Warning> WarningOf(std::int32_t number);

/// Which warnings are turned on, and which of them are errors.
class WarningChoice {
  public:
    WarningChoice();

    /// Applies the argument of -W: [no-]NAME, [no-]error or [no-]error=NAME. Result: false if there
    /// is no such warning.
    [[nodiscard]] bool Take(std::string_view word);
    /// Turns all warnings off, for -w.
    void TakeNone();

    [[nodiscard]] bool IsOn(Warning warning) const { return on[Index(warning)]; }
    [[nodiscard]] bool IsError(Warning warning) const { return errors[Index(warning)]; }

  private:
    using Set = std::bitset<warningTable.size()>;
    static std::size_t Index(Warning warning) { return static_cast<std::size_t>(warning); }

    Set on;
    Set errors;
};

}  // namespace korv
