/// Emits the values of operands, known or not. For a value not known yet, a placeholder is emitted
/// and a patch is filed. The kind of a value determines how it is checked and written, whether at
/// once or by the patch.
#pragma once

#include <cstdint>

#include "diagnostics/message_numbers.h"
#include "symbols/patch.h"

namespace korv {

class CAssembler;
struct CStatement;
struct lsArg;

/// Kinds of values in the image, as the PF_* bits of their patches.
inline constexpr std::uint32_t byteKind = PF_8BIT;
inline constexpr std::uint32_t wordKind = PF_16BIT;
inline constexpr std::uint32_t displacementKind = PF_SIGNED | PF_8BIT;
inline constexpr std::uint32_t relativeKind = PF_RELATIVE | PF_8BIT;

/// The text that a patch evaluates again and that its messages show.
enum class PatchText {
    operand,     ///< the whole operand, with its parentheses
    expression,  ///< the part that is evaluated
};

/// Emits the value of `arg` in the width of `kind`, and files a patch if the value is not known
/// yet. Result: 0, or the status of the expression if it failed. After a failure, a zero has been
/// emitted.
template <std::uint32_t kind>
Status EmitValue(CAssembler* assembler, CStatement* statement, const lsArg& arg, PatchText text);

/// Like `EmitValue`, but first warns about a value outside the range of `kind`. The warning shows
/// the text of `arg`.
template <std::uint32_t kind>
[[nodiscard]] Status EmitChecked(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                 PatchText text);

/// Emits the offset of a relative jump to the address `arg` as a byte. Result: 0; `tooFar` if the
/// offset is known and does not fit; or the status of the expression if it failed. In the last two
/// cases, nothing has been emitted.
[[nodiscard]] Status EmitRelative(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                  Status tooFar);

/// Files a patch of `kind` at `position` in the image. The part `text` of `arg` is evaluated again
/// once the name that `arg` waits for has a value. With PF_EQU, the result becomes the value of the
/// label.
void FilePatch(CAssembler* assembler, const CStatement* statement, const lsArg& arg, PatchText text,
               std::uint32_t position, std::uint32_t kind);

}  // namespace korv
