/// The one maker of a value in the image: known or late, a handler emits it here. A value that is
/// not known yet leaves a placeholder and a patch; what a patch then writes, and how it is checked,
/// is decided by the same kinds.
#pragma once

#include <cstdint>

#include "diagnostics/message_numbers.h"
#include "symbols/patch.h"

namespace korv {

class CAssembler;
struct CStatement;
struct lsArg;

/// Kinds of values in the image, by what a patch of the kind is.
inline constexpr std::uint32_t byteKind = PF_8BIT;
inline constexpr std::uint32_t wordKind = PF_16BIT;
inline constexpr std::uint32_t displacementKind = PF_SIGNED | PF_8BIT;
inline constexpr std::uint32_t relativeKind = PF_RELATIVE | PF_8BIT;

/// The text that a patch evaluates again and that its messages show.
enum class PatchText {
    operand,     ///< the whole operand, with its parentheses
    expression,  ///< what is evaluated of it
};

/// Emits the value of `arg` in the width of `kind`, and files a patch if it is not known yet.
/// Result: 0, or why its expression failed; then 0 has been emitted.
template <std::uint32_t kind>
Status EmitValue(CAssembler* assembler, CStatement* statement, const lsArg& arg, PatchText text);

/// The same, and warns first, with the text of `arg`, of a value outside the range of `kind`.
template <std::uint32_t kind>
[[nodiscard]] Status EmitChecked(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                 PatchText text);

/// Emits the distance from the statement to the address `arg` as a byte. Result: 0; `tooFar` for a
/// known one that does not fit, or why the expression failed: nothing has been emitted then.
[[nodiscard]] Status EmitRelative(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                  Status tooFar);

/// Files a patch of `kind` at `position` of the image: `text` of `arg` is evaluated again when the
/// name that `arg` waits for has got its value. With PF_EQU that gives the label its value.
void FilePatch(CAssembler* assembler, const CStatement* statement, const lsArg& arg, PatchText text,
               std::uint32_t position, std::uint32_t kind);

}  // namespace korv
