// Data: DB for bytes and strings, DW for words, DM for one text, DS for a block of zero bytes. A
// string's text is the operand's own text with its quotes; there is no escape character.

#include <limits>

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {
namespace {

constexpr OperandCount anyNumber{1, std::numeric_limits<std::int32_t>::max()};

enum class StringEnd { closed, textBehind, open };

// Emits the bytes of a string, whose text begins with its quote, up to the quote that closes it.
StringEnd EmitString(CAssembler* assembler, std::string_view text) {
    const std::string_view inner = text.substr(1);
    const std::size_t end = inner.find('"');
    for (const char c : inner.substr(0, end)) {
        assembler->EmitByte(c);
    }
    if (end == std::string_view::npos) {
        return StringEnd::open;
    }
    return end + 1 == inner.size() ? StringEnd::closed : StringEnd::textBehind;
}

void DefineByte(CAssembler* assembler, CStatement* statement, const lsArg& arg,
                std::uint32_t* last) {
    std::int32_t status = arg.status;
    if (status == 0 || status == MSG_UNRESOLVED) {
        if (!arg.IsValue()) {
            assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.Text());
        } else {
            if (!dataByteRange.Holds(arg.value)) {
                assembler->ReportError(statement, dataByteRange.message, arg.Text());
            }
            *last = assembler->EmitByte(arg.value);
        }
    } else if (arg.Text().front() == '"') {
        const StringEnd end = EmitString(assembler, arg.Text());
        status = end == StringEnd::closed ? 0 : -1;
    }
    if (status == MSG_UNRESOLVED) {
        FilePatch(assembler, statement, arg, *last, PF_8BIT);
    } else if (status != 0) {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.Text());
    }
}

// Result: what is left of the operand's status.
std::int32_t DefineWord(CAssembler* assembler, CStatement* statement, const lsArg& arg) {
    if (!arg.IsValue()) {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.Text());
        return arg.status;
    }
    WarnIfOutside(assembler, statement, arg, wordRange);
    const std::uint32_t position = assembler->EmitWord(arg.value);
    if (arg.status == MSG_UNRESOLVED) {
        FilePatch(assembler, statement, arg, position, PF_16BIT);
        return 0;
    }
    if (arg.status != 0) {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.Text());
    }
    return arg.status;
}

}  // namespace

std::int32_t HandleDb(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, anyNumber); result != 0) {
        return result;
    }
    std::uint32_t last = noPosition;  // where the latest byte of a value went
    KO_Args& args = statement->args;
    for (const lsArg* arg = args.First(); arg != nullptr; arg = args.Behind(arg)) {
        DefineByte(assembler, statement, *arg, &last);
    }
    return 0;
}

std::int32_t HandleDw(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, anyNumber); result != 0) {
        return result;
    }
    std::int32_t status = 0;
    KO_Args& args = statement->args;
    for (const lsArg* arg = args.First(); arg != nullptr; arg = args.Behind(arg)) {
        status = DefineWord(assembler, statement, *arg);
    }
    return status;
}

std::int32_t HandleDm(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const std::string_view text = statement->args.Arg(1)->Text();
    if (text.front() != '"') {
        return MSG_ILLEGAL_ARGUMENT;
    }
    switch (EmitString(assembler, text)) {
        case StringEnd::closed:
            break;
        case StringEnd::textBehind:
            assembler->ReportError(statement, MSG_TEXT_BEHIND_STRING, text);
            break;
        case StringEnd::open:
            assembler->ReportWarning(statement, MSG_NO_CLOSING_QUOTE, text);
            break;
    }
    return 0;
}

std::int32_t HandleDs(CAssembler* assembler, CStatement* statement) {
    if (const std::int32_t result = BeginStatement(assembler, statement, oneOperand); result != 0) {
        return result;
    }
    const lsArg& size = *statement->args.Arg(1);
    if (size.status != 0) {  // what follows would move: the size cannot be patched
        return size.status == MSG_UNRESOLVED ? MSG_NOT_IMMEDIATE : MSG_ILLEGAL_ARGUMENT;
    }
    if (!size.IsValue()) {
        return MSG_ILLEGAL_ARGUMENT;
    }
    if (size.value > 0) {
        const auto count = static_cast<std::uint32_t>(size.value);
        assembler->binary.PutZeros(count);
        assembler->location += count;
    }
    return 0;
}

}  // namespace korv
