// Conditional assembly: one flag, and a stack of one byte per open IF. IF sets the flag from its
// own condition alone and saves the previous state for ENDIF. So the block of a true IF is
// assembled even within a skipped block. The stack belongs to the run, not to a file: a level may
// be opened in one file and closed in another.

#include "codegen/handlers.h"
#include "driver/assembler.h"

namespace korv {
namespace {

// Bits of a level's state byte.
constexpr std::uint8_t wasAssembling = 0x02;  // before its IF
constexpr std::uint8_t isTrue = 0x04;         // its condition
constexpr std::uint8_t hasElse = 0x08;        // its ELSE has been seen

std::uint8_t& TopLevel(CAssembler* assembler) {
    return assembler->conditionStack[static_cast<std::size_t>(assembler->conditionDepth - 1)];
}

}  // namespace

Status AssembleIf(CAssembler* assembler, CStatement* statement) {
    if (assembler->conditionDepth == maxConditions) {
        return MSG_CONDITIONS_TOO_DEEP;
    }
    const lsArg& arg = statement->args.First();
    if (!arg.IsValue()) {
        return Refuse(statement, arg, MSG_ILLEGAL_ARGUMENT);
    }
    if (arg.status != 0) {  // a condition cannot wait for a value, so it is false
        assembler->ReportWarning(statement, arg.status, arg.text);
    }
    const bool holds = arg.value != 0;
    ++assembler->conditionDepth;
    TopLevel(assembler) = static_cast<std::uint8_t>(
        (assembler->assembling != 0 ? wasAssembling : 0) | (holds ? isTrue : 0));
    assembler->assembling = holds ? 1 : 0;
    return 0;
}

Status AssembleElse(CAssembler* assembler, CStatement*) {
    if (assembler->conditionDepth == 0) {
        return MSG_NOT_IN_CONDITION;
    }
    std::uint8_t& level = TopLevel(assembler);
    if ((level & hasElse) != 0) {
        return MSG_ILLEGAL_ELSE;
    }
    assembler->assembling = (level & isTrue) != 0 ? 0 : 1;
    level |= hasElse;
    return 0;
}

Status AssembleEndif(CAssembler* assembler, CStatement*) {
    if (assembler->conditionDepth == 0) {
        return MSG_NOT_IN_CONDITION;
    }
    assembler->assembling = (TopLevel(assembler) & wasAssembling) != 0 ? 1 : 0;
    --assembler->conditionDepth;
    return 0;
}

Status AssembleEnd(CAssembler* assembler, CStatement*) {
    assembler->flags.Set(RF_END);
    return 0;
}

}  // namespace korv
