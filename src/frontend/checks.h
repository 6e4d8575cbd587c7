/// Warnings that only the front end issues, about statements that assemble to something other than
/// they appear to say. Each function looks at one statement or one file; the caller determines the
/// place in the file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/operand_forms.h"
#include "codegen/value_range.h"
#include "expr/operands.h"
#include "frontend/analysis.h"
#include "frontend/logical_line.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {

struct CStatement;

/// What a check has found.
struct Finding {
    Warning warning;
    std::string_view part;  ///< of the cleaned line; null data: the mnemonic
    std::string detail;     ///< shown after the text of the warning; may be empty
    std::string_view note;  ///< what to do about it (a constant); may be empty
};
using Findings = std::vector<Finding>;

/// True if `arg` is an unresolved expression, not just an unresolved name.
[[nodiscard]] inline bool IsLateExpression(const lsArg& arg) {
    return arg.status == MSG_UNRESOLVED && arg.expression.size() != arg.fault.size();
}

/// True if `arg`, an operand of a statement that emitted `bytes`, may need a warning. Called for
/// every statement, so it must be fast.
[[nodiscard]] inline bool IsOdd(const lsArg& arg, std::span<const std::uint8_t> bytes) {
    if (!arg.IsValue()) {
        return bytes.empty();
    }
    const bool isUnsigned = arg.value >= 0 && arg.value <= wordRange.high;
    return IsLateExpression(arg) ||
           (!isUnsigned && (!wordRange.Holds(arg.value) || bytes.empty())) ||
           arg.text.front() == '"' ||
           (arg.reg != REG_NONE && arg.IsIndexed() &&
            (bytes.empty() || (bytes[0] != PREFIX_IX && bytes[0] != PREFIX_IY)));
}

/// True if a use of `label` may be read as a register or a number. Called for every label, so it
/// must be fast.
[[nodiscard]] inline bool MayBeMisread(std::string_view label) {
    const char last = label.back();
    return label.size() <= 2 || last == 'H' || last == 'B' || last == 'O' ||
           (HasClass(last, CC_DIGIT) && HasClass(label.front(), CC_DIGIT));
}
/// Checks a label, which may be empty.
void CheckLabel(std::string_view label, Findings* findings);

/// True if a semicolon in place of the colon of `label` hides an instruction, as in "LOOP; INC A".
/// `line` is the line as typed.
[[nodiscard]] bool HidesInstruction(std::string_view line, std::string_view label);

/// Checks the operands of a statement that has been assembled without an error.
void CheckOperands(CStatement* statement, std::span<const std::uint8_t> bytes, Findings* findings);

/// A finding about the bytes of a file, at a physical place.
struct ByteFinding {
    Warning warning;
    std::int32_t line;     ///< from 1
    std::uint32_t column;  ///< in bytes, from 0
};

/// Finds bytes that the reader skips or treats as the end of a line's text. Such a file is not read
/// the way an editor shows it. Only the first byte of each kind is reported.
[[nodiscard]] std::vector<ByteFinding> CheckBytes(const StoredText& text);

/// Finds each backslash that ends a comment in `line` and swallows the next line, unless that line
/// is blank or a comment.
[[nodiscard]] std::vector<ByteFinding> CheckComments(const StoredText& text,
                                                     const LogicalLine& line);

}  // namespace korv
