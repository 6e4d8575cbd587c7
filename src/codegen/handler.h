/// The frame that all handlers of instructions and directives share.
#pragma once

#include <cstdint>

#include "expr/operands.h"

namespace korv {

class CAssembler;
struct CStatement;

/// Assembles one statement. Result: 0; a message number, which the statement loop reports as an
/// error without a text; or -1, "General failure!". What the statement has emitted by then stays.
/// Handlers are compared by identity.
using InstructionHandler = std::int32_t (*)(CAssembler* assembler, CStatement* statement);

/// Defines the label of the line, if there is one, as the address of the statement, and marks it as
/// defined.
void DefineLineLabel(CAssembler* assembler, CStatement* statement);

/// Cuts the text behind the mnemonic at its commas and adds each operand to the list of the
/// statement, evaluated. Reports operands that are empty or refused.
void SplitOperands(CAssembler* assembler, CStatement* statement);

/// How many operands a mnemonic takes.
struct OperandCount {
    std::int32_t fewest;
    std::int32_t most;
};
inline constexpr OperandCount oneOperand{1, 1};
inline constexpr OperandCount twoOperands{2, 2};
inline constexpr OperandCount oneOrTwoOperands{1, 2};

/// 0, 13 or 14 for the operands of `args`.
[[nodiscard]] std::int32_t CheckCount(const KO_Args& args, OperandCount wanted);

/// The start of a handler with operands: the label, so that it can be an operand of its own line,
/// the operands, and their count. Result: 0, 13 or 14.
[[nodiscard]] std::int32_t BeginStatement(CAssembler* assembler, CStatement* statement,
                                          OperandCount wanted);

}  // namespace korv
