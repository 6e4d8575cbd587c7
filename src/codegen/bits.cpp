// Single bits, rotates and shifts: the group with the prefix CB, told apart by a number in bits 5
// to 3.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {

std::int32_t AssembleBit(CAssembler* assembler, CStatement* statement, char kind) {
    if (const std::int32_t result = BeginStatement(assembler, statement, twoOperands);
        result != 0) {
        return result;
    }
    const lsArg& bit = *statement->args.Arg(1);
    if (bit.status != 0) {  // the number lies in the opcode: it cannot be patched
        return MSG_NOT_IMMEDIATE;
    }
    if (!bit.IsPlainValue() || bit.value < 0 || bit.value > 7) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    return ProcessBSR_Ex(assembler, statement, kind, bit.value);
}

std::int32_t AssembleShift(CAssembler* assembler, CStatement* statement, std::int32_t field) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    return ProcessBSR_Ex(assembler, statement, 'X', field);
}

}  // namespace korv
