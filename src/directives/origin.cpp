// ORG and EQU. Neither emits a byte. ORG moves the location counter and nothing else: the bytes of
// the image follow each other without a hole, whatever it says.

#include <cstdio>

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

// Splits and counts operands where the label is not defined first.
std::int32_t BeginWithoutLabel(CAssembler* assembler, CStatement* statement) {
    SplitOperands(assembler, statement);
    return CheckCount(statement->args, oneOperand);
}

}  // namespace

std::int32_t HandleOrg(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginWithoutLabel(assembler, statement); result != 0) {
        return result;
    }
    const lsArg& arg = *statement->args.Arg(1);
    if (arg.status != 0) {
        return MSG_NOT_IMMEDIATE;
    }
    assembler->location = static_cast<std::uint32_t>(arg.value);
    char text[16];
    std::snprintf(text, sizeof text, "%XH", assembler->location);
    if (!assembler->flags.Has(RF_BINARY)) {
        assembler->ReportWarning(statement, MSG_ORG_USED, text);
    } else if (assembler->startAddress != -1) {
        assembler->ReportWarning(statement, MSG_ORG_IN_CODE, text);
    } else if (assembler->binary.Position() == 0) {
        assembler->startAddress = arg.value;
    } else {
        assembler->ReportWarning(statement, MSG_ORG_AFTER_CODE, text);
        assembler->startAddress = static_cast<std::int32_t>(binaryStart);
    }
    // The label gets the address of the statement, that is the location from before.
    DefineLineLabel(assembler, statement);
    return 0;
}

std::int32_t HandleEqu(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginWithoutLabel(assembler, statement); result != 0) {
        return result;
    }
    if (!statement->HasLabel()) {
        return MSG_NO_LABEL;
    }
    statement->flags |= SF_LABEL_DEFINED;
    const lsArg& arg = *statement->args.Arg(1);
    const bool isWaiting = arg.status == MSG_UNRESOLVED;
    if (isWaiting) {
        // The patch goes first: an EQU on its own name thus waits for itself.
        assembler->identifiers.AddPatch(
            arg.Unresolved(),
            CPatchInfoMemBlock::AllocPatchInfo(noPosition, arg.textString, PF_EQU | PF_16BIT,
                                               OriginOf(*statement), CtmpString(statement->label)));
    }
    const std::int32_t result = assembler->identifiers.AddID(
        {statement->label, statement->lineNumber, statement->fileName, isWaiting ? -1 : arg.value,
         isWaiting ? IDS_EQU_WAITING : IDS_EQU});
    if (result != 0) {
        assembler->ReportError(statement, result, noText);
    }
    return isWaiting ? 0 : arg.status;
}

}  // namespace korv
