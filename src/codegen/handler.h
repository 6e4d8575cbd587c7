/// The frame that all handlers of instructions and directives share: the steps before the handler
/// itself, as selected by the keyword's row.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "diagnostics/message_numbers.h"

namespace korv {

class CAssembler;
struct CStatement;
struct lsArg;

/// Assembles one statement; its frame has already run. Result: 0; a message number, which the
/// statement loop reports as an error without a text; or `generalFailure`. After a failure, the
/// bytes already emitted stay in the image. Handlers are compared by address.
using HandlerFunction = Status(CAssembler* assembler, CStatement* statement);
using InstructionHandler = HandlerFunction*;

/// Adapts a handler shared by several instructions. `facts` distinguish them: opcodes, fields,
/// operand numbers.
template <auto handler, auto... facts>
Status With(CAssembler* assembler, CStatement* statement) {
    return handler(assembler, statement, facts...);
}

/// Records that `arg` is the reason for the nonzero `status`, so that the report is about that
/// operand. Result: `status`.
[[gnu::cold]] Status Refuse(CStatement* statement, const lsArg& arg, Status status);

/// Defines the label of the line with `value` and the IDF_* bits `flags`, and marks the label as
/// defined. The line must have a label.
void DefineLabel(CAssembler* assembler, CStatement* statement, std::int32_t value,
                 std::uint32_t flags);
/// Defines the label of the line, if there is one, as the address of the statement.
void DefineLineLabel(CAssembler* assembler, CStatement* statement);

/// The number of operands that a mnemonic takes, and the message if there are more.
struct OperandCount {
    std::int32_t fewest;
    std::int32_t most;
    Status tooMany = MSG_TOO_MANY_ARGUMENTS;
};
inline constexpr OperandCount noOperand{0, 0};
inline constexpr OperandCount noneOrOneOperand{0, 1};
inline constexpr OperandCount oneOperand{1, 1};
inline constexpr OperandCount oneOrTwoOperands{1, 2};
inline constexpr OperandCount twoOperands{2, 2};
inline constexpr OperandCount anyOperands{1, std::numeric_limits<std::int32_t>::max()};

/// The steps before a handler, in order. The number of operands is checked last: even if it is
/// wrong, the label is defined and the operands are read.
enum class Frame {
    labelFirst,     ///< label, operands: a label can be an operand of its own line
    operandsFirst,  ///< operands, label
    operandsOnly,   ///< operands; the handler or the loop defines the label
    noLabel,        ///< operands; a label is an error, but the handler runs
    // the following frames do not read the rest of the line
    labelOnly,  ///< label
    nothing,    ///< the label is left to the loop
};

/// The kind of bytes that a statement adds to the image.
enum class KeywordGroup : std::uint8_t {
    instruction,  ///< the bytes of an instruction of the processor
    data,         ///< bytes given in the source, or in a file that it names
    space,        ///< bytes of 0
    directive,    ///< nothing
};

/// A row of the keyword table.
struct Keyword {
    std::string_view word;
    InstructionHandler handler;
    OperandCount operands;            ///< ignored if the frame reads no operands
    Frame frame = Frame::labelFirst;  ///< instructions with operands, data directives
    KeywordGroup group = KeywordGroup::instruction;
};

/// Runs the frame of `keyword`, the row of the statement's mnemonic. Result: 0, or the message if
/// the number of operands is wrong.
[[nodiscard]] Status BeginStatement(CAssembler* assembler, CStatement* statement,
                                    const Keyword& keyword);

}  // namespace korv
