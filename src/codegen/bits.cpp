// Single bits, rotates and shifts: the group with the prefix CB, told apart by a number in bits 5
// to 3.

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

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

}  // namespace

std::int32_t HandleBit(CAssembler* assembler, CStatement* statement) {
    return AssembleBit(assembler, statement, 'B');
}

std::int32_t HandleRes(CAssembler* assembler, CStatement* statement) {
    return AssembleBit(assembler, statement, 'R');
}

std::int32_t HandleSet(CAssembler* assembler, CStatement* statement) {
    return AssembleBit(assembler, statement, 'S');
}

std::int32_t HandleRlc(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 0);
}

std::int32_t HandleRrc(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 1);
}

std::int32_t HandleRl(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 2);
}

std::int32_t HandleRr(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 3);
}

std::int32_t HandleSla(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 4);
}

std::int32_t HandleSra(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 5);
}

std::int32_t HandleSrl(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, 7);
}

}  // namespace korv
