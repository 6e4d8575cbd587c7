#include "codegen/late_value.h"

#include "codegen/handler.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Whether two views of a line cover the same part of it.
bool IsSamePart(std::string_view a, std::string_view b) {
    return a.data() == b.data() && a.size() == b.size();
}

}  // namespace

void FilePatch(CAssembler* assembler, const CStatement* statement, const lsArg& arg, PatchText text,
               std::uint32_t position, std::uint32_t kind) {
    const std::string_view expression = text == PatchText::operand ? arg.text : arg.expression;
    const bool isName = IsSamePart(expression, arg.fault);
    if (isName || IsSamePart(WithoutParentheses(expression), arg.fault)) {
        kind |= PF_NAME;
    }
    CPatchInfo* const patch = CPatchInfoMemBlock::AllocPatchInfo(position, kind, statement->address,
                                                                 statement->PlaceIn(expression));
    if (!isName) {  // otherwise, the text is the name of the identifier
        patch->expression.Assign(expression);
    }
    if ((kind & PF_EQU) != 0) {
        patch->name.Assign(statement->label);
    }
    assembler->identifiers.AddPatch(arg.fault, patch);
}

template <std::uint32_t kind>
Status EmitValue(CAssembler* assembler, CStatement* statement, const lsArg& arg, PatchText text) {
    const std::uint32_t position =
        (kind & PF_16BIT) != 0 ? assembler->EmitWord(arg.value) : assembler->EmitByte(arg.value);
    if (arg.status == 0) [[likely]] {
        return 0;
    }
    if (arg.status != MSG_UNRESOLVED) {
        return Refuse(statement, arg, arg.status);
    }
    FilePatch(assembler, statement, arg, text, position, kind);
    return 0;
}

template <std::uint32_t kind>
Status EmitChecked(CAssembler* assembler, CStatement* statement, const lsArg& arg, PatchText text) {
    constexpr ValueRange range = RangeOf(kind);
    if (!range.Holds(arg.value)) [[unlikely]] {
        assembler->ReportWarning(statement, range.message, arg.text);
    }
    return EmitValue<kind>(assembler, statement, arg, text);
}

template Status EmitValue<byteKind>(CAssembler*, CStatement*, const lsArg&, PatchText);
template Status EmitValue<wordKind>(CAssembler*, CStatement*, const lsArg&, PatchText);
template Status EmitChecked<byteKind>(CAssembler*, CStatement*, const lsArg&, PatchText);
template Status EmitChecked<wordKind>(CAssembler*, CStatement*, const lsArg&, PatchText);
template Status EmitChecked<displacementKind>(CAssembler*, CStatement*, const lsArg&, PatchText);

Status EmitRelative(CAssembler* assembler, CStatement* statement, const lsArg& arg, Status tooFar) {
    if (arg.status == MSG_UNRESOLVED) {
        return EmitValue<relativeKind>(assembler, statement, arg, PatchText::operand);
    }
    if (arg.status != 0) {
        return Refuse(statement, arg, arg.status);
    }
    const std::int32_t offset = RelativeOffset(arg.value, statement->address);
    if (!relativeRange.Holds(offset)) {
        return Refuse(statement, arg, tooFar);
    }
    assembler->EmitByte(offset);
    return 0;
}

}  // namespace korv
