#include "codegen/operand_forms.h"

#include "driver/assembler.h"

namespace korv {
namespace {

constexpr std::uint32_t displacementKind = PF_SIGNED | PF_8BIT;

// The bit of `allowed` that belongs to a register code; 0 for the codes without one.
constexpr std::uint32_t AllowedBit(std::int32_t reg) {
    switch (reg) {
        case REG_A:
            return ALLOW_A;
        case REG_AF:
            return ALLOW_AF;
        case REG_BC:
            return ALLOW_BC;
        case REG_DE:
            return ALLOW_DE;
        case REG_HL:
            return ALLOW_HL;
        case REG_IX:
            return ALLOW_IX;
        case REG_IY:
            return ALLOW_IY;
        case REG_SP:
            return ALLOW_SP;
        default:
            return IsFieldRegister(reg) ? 2U << reg : 0;
    }
}
static_assert(AllowedBit(REG_HL_INDIRECT) == ALLOW_HL_INDIRECT && AllowedBit(0) == 0x0002);

// The form bit of an operand that holds an expression in parentheses.
constexpr std::uint32_t FormBit(std::int32_t reg) {
    switch (reg) {
        case REG_IX_INDEXED:
            return FORM_IX;
        case REG_IY_INDEXED:
            return FORM_IY;
        case REG_DIRECT:
            return FORM_DIRECT;
        default:
            return 0;
    }
}

std::int32_t RefuseOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg) {
    assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.Text());
    return 0;
}

std::int32_t EncodeImmediate(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                             const OperandForm& form) {
    if ((form.forms & FORM_PREFIX) != 0) {
        assembler->EmitByte(form.prefix);
    }
    if (arg.IsIndirect()) {
        return RefuseOperand(assembler, statement, arg);
    }
    if ((form.forms & FORM_IMM8) == 0) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    assembler->EmitByte(form.immediateOpcode);
    if (!arg.IsValue()) {  // a condition
        return RefuseOperand(assembler, statement, arg);
    }
    if (arg.status == MSG_UNRESOLVED) {
        FilePatch(assembler, statement, arg, assembler->binary.Position(), PF_8BIT);
    } else if (arg.status != 0) {
        ReportFailedOperand(assembler, statement, arg);
        return 0;
    }
    WarnIfOutside(assembler, statement, arg, byteRange);
    assembler->EmitByte(arg.value);
    return 0;
}

std::int32_t EncodeMemory(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                          const OperandForm& form) {
    constexpr std::uint8_t loadDirect = 0x3A;
    const bool isIndexed = arg.IsIndexed();
    if (isIndexed) {
        assembler->EmitByte(IndexPrefix(arg.reg));
        assembler->EmitByte(REG_HL_INDIRECT << form.shift | form.opcode);
    } else {
        assembler->EmitByte(loadDirect);
    }
    if (arg.status == MSG_UNRESOLVED) {
        FileExpressionPatch(assembler, statement, arg, assembler->binary.Position(),
                            isIndexed ? displacementKind : PF_16BIT);
    }
    WarnIfOutside(assembler, statement, arg, isIndexed ? signedByteRange : wordRange);
    if (isIndexed) {
        assembler->EmitByte(arg.value);
    } else {
        assembler->EmitWord(arg.value);
    }
    return arg.status == 0 || arg.status == MSG_UNRESOLVED ? 0 : MSG_BAD_EXPRESSION;
}

}  // namespace

std::int32_t EncodeOperand(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                           const OperandForm& form) {
    if (arg.reg == REG_NONE) {
        return EncodeImmediate(assembler, statement, arg, form);
    }
    if ((form.forms & FormBit(arg.reg)) != 0) {
        return EncodeMemory(assembler, statement, arg, form);
    }
    if ((form.allowed & AllowedBit(arg.reg)) == 0) {
        return RefuseOperand(assembler, statement, arg);
    }
    if ((form.forms & FORM_PREFIX) != 0) {
        assembler->EmitByte(form.prefix);
    }
    assembler->EmitByte((arg.reg & 0xFF) << form.shift | form.opcode);
    return 0;
}

std::int32_t EncodeAccumulatorOp(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                                 std::int32_t group) {
    const std::int32_t registerOpcode = 0x80 + 8 * group;
    const std::int32_t immediateOpcode = 0xC6 + 8 * group;
    if (IsFieldRegister(arg.reg)) {
        assembler->EmitByte(registerOpcode + arg.reg);
        return 0;
    }
    const bool isIndexed = arg.IsIndexed();
    if (isIndexed) {
        assembler->EmitByte(IndexPrefix(arg.reg));
        assembler->EmitByte(registerOpcode + REG_HL_INDIRECT);
    } else if (arg.IsIndirect() || !arg.IsValue()) {
        return RefuseOperand(assembler, statement, arg);
    } else {
        assembler->EmitByte(immediateOpcode);
    }
    WarnIfOutside(assembler, statement, arg, isIndexed ? signedByteRange : byteRange);
    const std::uint32_t position = assembler->EmitByte(arg.value);
    if (arg.status != MSG_UNRESOLVED) {
        return arg.status;
    }
    FileExpressionPatch(assembler, statement, arg, position,
                        isIndexed ? displacementKind : PF_8BIT);
    return 0;
}

std::int32_t ProcessBSR_Ex(CAssembler* assembler, CStatement* statement, char kind,
                           std::int32_t field) {
    std::int32_t op = 8 * field;
    switch (kind) {
        case 'B':
            op += 0x40;
            break;
        case 'R':
            op += 0x80;
            break;
        case 'S':
            op += 0xC0;
            break;
        case 'X':
            break;
        default:
            assembler->ReportError(statement, MSG_GENERAL_FAILURE,
                                   "ProcessBSR_Ex -> Not BSRX in switch!");
            return 0;
    }
    const lsArg& arg = *statement->args.Arg(kind == 'X' ? 1 : 2);
    if (IsFieldRegister(arg.reg)) {
        op += arg.reg;
        assembler->EmitByte(PREFIX_CB);
    } else if (arg.IsIndexed()) {
        op += REG_HL_INDIRECT;
        assembler->EmitByte(IndexPrefix(arg.reg));
        assembler->EmitByte(PREFIX_CB);
        WarnIfOutside(assembler, statement, arg, signedByteRange);
        // The displacement stands before the last opcode byte.
        const std::uint32_t position = assembler->EmitByte(arg.value);
        if (arg.status == MSG_UNRESOLVED) {
            FileExpressionPatch(assembler, statement, arg, position, displacementKind);
        } else if (arg.status != 0) {
            return arg.status;
        }
    } else {
        RefuseOperand(assembler, statement, arg);
    }
    assembler->EmitByte(op);
    return 0;
}

void WarnIfOutside(CAssembler* assembler, const CStatement* statement, const lsArg& arg,
                   const ValueRange& range) {
    if (!range.Holds(arg.value)) {
        assembler->ReportWarning(statement, range.message, arg.Text());
    }
}

PatchOrigin OriginOf(const CStatement& statement) {
    return {static_cast<std::int32_t>(statement.address), statement.fileName, statement.lineNumber};
}

std::int32_t FilePatch(CAssembler* assembler, const CStatement* statement, const lsArg& arg,
                       std::uint32_t position, std::uint32_t kind) {
    return assembler->identifiers.AddPatch(
        arg.Unresolved(), CPatchInfoMemBlock::AllocPatchInfo(position, arg.textString, kind,
                                                             OriginOf(*statement), CtmpString()));
}

std::int32_t FileExpressionPatch(CAssembler* assembler, const CStatement* statement,
                                 const lsArg& arg, std::uint32_t position, std::uint32_t kind) {
    return FileCopiedPatch(assembler, statement, arg.Expression(), arg.Unresolved(), position,
                           kind);
}

std::int32_t FileCopiedPatch(CAssembler* assembler, const CStatement* statement,
                             std::string_view expression, std::string_view unresolved,
                             std::uint32_t position, std::uint32_t kind) {
    return assembler->identifiers.AddPatch(
        unresolved, CPatchInfoMemBlock::AllocPatchInfo(position, CtmpString(expression), kind,
                                                       OriginOf(*statement), CtmpString()));
}

std::int32_t FinishOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg,
                           std::uint32_t position, std::uint32_t kind) {
    if (arg.status != MSG_UNRESOLVED) {
        return arg.status;
    }
    FilePatch(assembler, statement, arg, position, kind);
    return 0;
}

void ReportFailedOperand(CAssembler* assembler, const CStatement* statement, const lsArg& arg) {
    const bool isGeneral = arg.status == MSG_GENERAL_FAILURE;
    assembler->ReportError(statement, isGeneral ? MSG_ILLEGAL_ARGUMENT : arg.status, arg.Text());
}

}  // namespace korv
