// ORG and EQU. Neither emits a byte. ORG moves the location counter, but leaves no gap in the
// image. The first ORG may set the start address.

#include <cstdio>

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleOrg(CAssembler* assembler, CStatement* statement) {
    const lsArg& arg = statement->args.First();
    if (arg.status != 0) {
        return Refuse(statement, arg, MSG_NOT_IMMEDIATE);
    }
    assembler->location = static_cast<std::uint32_t>(arg.value);
    char text[16];
    std::snprintf(text, sizeof text, "%XH", assembler->location);
    if (!assembler->flags.Has(RF_BINARY)) {
        assembler->ReportWarning(statement, MSG_ORG_USED, text, arg.text);
    } else if (assembler->startAddress != noStartAddress) {
        assembler->ReportWarning(statement, MSG_ORG_IN_CODE, text, arg.text);
    } else if (assembler->binary.Position() == 0) {
        assembler->startAddress = arg.value;
    } else {
        assembler->ReportWarning(statement, MSG_ORG_AFTER_CODE, text, arg.text);
        assembler->startAddress = static_cast<std::int32_t>(binaryStart);
    }
    return 0;  // the label gets the address of the statement, which is the old location
}

Status AssembleEqu(CAssembler* assembler, CStatement* statement) {
    if (!statement->HasLabel()) {
        return MSG_NO_LABEL;
    }
    const lsArg& arg = statement->args.First();
    const bool isWaiting = arg.status == MSG_UNRESOLVED;
    if (isWaiting) {
        // The patch is filed first, so an EQU that uses its own name waits for itself.
        FilePatch(assembler, statement, arg, PatchText::operand, noPosition, PF_EQU | PF_16BIT);
    }
    DefineLabel(assembler, statement, isWaiting ? -1 : arg.value,
                isWaiting ? IDS_EQU_WAITING : IDS_EQU);
    return isWaiting || arg.status == 0 ? 0 : Refuse(statement, arg, arg.status);
}

}  // namespace korv
