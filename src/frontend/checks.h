/// Warnings that only the front end gives: where a statement assembles to something other than it
/// appears to say, and the core has no report for it. Functions over one statement or one file; the
/// analyser gives their findings a place.
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
    std::string_view part;  ///< of the cleaned line; without data: its mnemonic
    std::string detail;     ///< shown after the meaning of the warning; may be empty
    std::string_view note;  ///< what to do about it, a constant; may be empty
};
using Findings = std::vector<Finding>;

/// Whether `arg` waits for more than a name alone.
[[nodiscard]] inline bool IsLateExpression(const lsArg& arg) {
    return arg.status == MSG_UNRESOLVED && arg.expression.size() != arg.fault.size();
}

/// Whether `arg`, of a statement with the bytes `bytes`, may call for a warning. Asked of every
/// statement, so it is quick.
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

/// Whether `label` may be something else where it is used. Asked of every label, so it is quick.
[[nodiscard]] inline bool MayBeMisread(std::string_view label) {
    const char last = label.back();
    return label.size() <= 2 || last == 'H' || last == 'B' || last == 'O' ||
           (HasClass(last, CC_DIGIT) && HasClass(label.front(), CC_DIGIT));
}
/// Looks at such a label.
void CheckLabel(std::string_view label, Findings* findings);

/// Looks at the operands of a statement that has been assembled without an error.
void CheckOperands(CStatement* statement, std::span<const std::uint8_t> bytes, Findings* findings);

/// A finding about the bytes of a file, at a physical place.
struct ByteFinding {
    Warning warning;
    std::int32_t line;     ///< from 1
    std::uint32_t column;  ///< in bytes, from 0
};

/// Bytes that the reader skips or treats as the end of a line's text, so that an editor shows the
/// file differently from how it is read. Only the first of each kind is reported.
[[nodiscard]] std::vector<ByteFinding> CheckBytes(const StoredText& text);

/// Comments of `line` that end with a backslash and so take away a line that holds something else.
[[nodiscard]] std::vector<ByteFinding> CheckComments(const StoredText& text,
                                                     const LogicalLine& line);

}  // namespace korv
