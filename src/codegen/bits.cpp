// Bit instructions. Like rotates and shifts, they have the prefix CB. Bits 5 to 3 of the opcode
// hold the bit number.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleBit(CAssembler* assembler, CStatement* statement, char kind) {
    const lsArg& bit = statement->args.First();
    if (bit.status != 0) {  // the number is part of the opcode and cannot be patched
        return Refuse(statement, bit, MSG_NOT_IMMEDIATE);
    }
    if (!bit.IsPlainValue() || bit.value < 0 || bit.value > 7) {
        return Refuse(statement, bit, MSG_ILLEGAL_ARGUMENT);
    }
    return ProcessBSR_Ex(assembler, statement, kind, bit.value);
}

}  // namespace korv
