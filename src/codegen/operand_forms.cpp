#include "codegen/operand_forms.h"

#include "codegen/handler.h"
#include "codegen/late_value.h"
#include "driver/assembler.h"

namespace korv {
namespace {

// The FORM_* bit of an operand with an expression in parentheses; 0 for other operands.
constexpr std::uint32_t FormBit(std::int32_t reg) {
    return reg == REG_IX_INDEXED   ? FORM_IX
           : reg == REG_IY_INDEXED ? FORM_IY
           : reg == REG_DIRECT     ? FORM_DIRECT
                                   : 0;
}

Status RefuseOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg) {
    assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.text);
    return 0;
}

Status EncodeImmediate(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                       const OperandForm& form) {
    if ((form.forms & FORM_PREFIX) != 0) {
        assembler->EmitByte(form.prefix);
    }
    if (arg.IsIndirect()) {
        return RefuseOperand(assembler, statement, arg);
    }
    if ((form.forms & FORM_IMM8) == 0) {
        return Refuse(statement, arg, MSG_ILLEGAL_ARGUMENT);
    }
    assembler->EmitByte(form.immediateOpcode);
    if (!arg.IsValue()) {  // a condition
        return RefuseOperand(assembler, statement, arg);
    }
    if (arg.status != 0 && arg.status != MSG_UNRESOLVED) {
        ReportFailedOperand(assembler, statement, arg);
        return 0;
    }
    return EmitChecked<byteKind>(assembler, statement, arg, PatchText::operand);
}

Status EncodeMemory(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                    const OperandForm& form) {
    constexpr std::uint8_t loadDirect = 0x3A;
    Status result = 0;
    if (arg.IsIndexed()) {
        assembler->EmitOpcode(IndexPrefix(arg.reg), REG_HL_INDIRECT << form.shift | form.opcode);
        result = EmitChecked<displacementKind>(assembler, statement, arg, PatchText::expression);
    } else {
        assembler->EmitByte(loadDirect);
        result = EmitChecked<wordKind>(assembler, statement, arg, PatchText::expression);
    }
    return result == 0 ? 0 : MSG_BAD_EXPRESSION;
}

}  // namespace

Status EncodeOperand(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                     const OperandForm& form) {
    if ((form.allowed & AllowedBit(arg.reg)) != 0) [[likely]] {
        if ((form.forms & FORM_PREFIX) != 0) {
            assembler->EmitByte(form.prefix);
        }
        assembler->EmitByte((arg.reg & 0xFF) << form.shift | form.opcode);
        return 0;
    }
    if (arg.reg == REG_NONE) {
        return EncodeImmediate(assembler, statement, arg, form);
    }
    if ((form.forms & FormBit(arg.reg)) != 0) {
        return EncodeMemory(assembler, statement, arg, form);
    }
    return RefuseOperand(assembler, statement, arg);
}

Status EncodeAccumulatorOp(CAssembler* assembler, CStatement* statement, std::int32_t group) {
    const lsArg& arg = statement->args.First();
    const std::int32_t registerOpcode = 0x80 + 8 * group;
    const std::int32_t immediateOpcode = 0xC6 + 8 * group;
    if (IsFieldRegister(arg.reg)) {
        assembler->EmitByte(registerOpcode + arg.reg);
        return 0;
    }
    if (arg.IsIndexed()) {
        assembler->EmitOpcode(IndexPrefix(arg.reg), registerOpcode + REG_HL_INDIRECT);
        return EmitChecked<displacementKind>(assembler, statement, arg, PatchText::expression);
    }
    if (arg.IsIndirect() || !arg.IsValue()) {
        return RefuseOperand(assembler, statement, arg);
    }
    assembler->EmitByte(immediateOpcode);
    return EmitChecked<byteKind>(assembler, statement, arg, PatchText::expression);
}

Status ProcessBSR_Ex(CAssembler* assembler, CStatement* statement, char kind, std::int32_t field) {
    const std::int32_t base = kind == 'X' ? 0x00 : kind == 'B' ? 0x40 : kind == 'R' ? 0x80 : 0xC0;
    std::int32_t opcode = base + 8 * field;
    const lsArg& arg = kind == 'X' ? statement->args.First() : statement->args.Second();
    if (IsFieldRegister(arg.reg)) {
        return assembler->EmitOpcode(PREFIX_CB, opcode + arg.reg);
    }
    if (arg.IsIndexed()) {
        opcode += REG_HL_INDIRECT;
        assembler->EmitOpcode(IndexPrefix(arg.reg), PREFIX_CB);
        // The displacement comes before the last opcode byte.
        if (const Status result =
                EmitChecked<displacementKind>(assembler, statement, arg, PatchText::expression);
            result != 0) {
            return result;
        }
    } else {
        RefuseOperand(assembler, statement, arg);
    }
    assembler->EmitByte(opcode);
    return 0;
}

void ReportFailedOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg) {
    const bool isGeneral = arg.status == MSG_GENERAL_FAILURE;
    assembler->ReportError(statement, isGeneral ? MSG_ILLEGAL_ARGUMENT : arg.status, arg.text);
}

}  // namespace korv
