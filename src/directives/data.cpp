// Data: DB for bytes and strings, DW for words, DM for one text, DS for a block of zero bytes,
// BINCLUDE for the bytes of a file. A string is passed as the text of its operand, including the
// quotes. There is no escape character.

#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/late_value.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "source/source_store.h"

namespace korv {
namespace {

enum class StringEnd { closed, textAfter, open };

// Emits the bytes of a string up to its closing quote. `text` begins with the opening quote.
StringEnd EmitString(CAssembler* assembler, std::string_view text) {
    const std::string_view inner = text.substr(1);
    const std::size_t end = inner.find('"');
    for (const char c : inner.substr(0, end)) {
        assembler->EmitByte(c);
    }
    if (end == std::string_view::npos) {
        return StringEnd::open;
    }
    return end + 1 == inner.size() ? StringEnd::closed : StringEnd::textAfter;
}

// Emits one operand of DB, a value or a string.
void DefineByte(CAssembler* assembler, CStatement* statement, const lsArg& arg) {
    if (arg.status == 0 || arg.status == MSG_UNRESOLVED) {
        if (!arg.IsValue()) {
            assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.text);
            return;
        }
        if (!dataByteRange.Holds(arg.value)) {
            assembler->ReportError(statement, dataByteRange.message, arg.text);
        }
        EmitValue<byteKind>(assembler, statement, arg, PatchText::operand);
    } else if (arg.text.front() != '"' || EmitString(assembler, arg.text) != StringEnd::closed) {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.text);
    }
}

// Emits one operand of DW. Result: the status of its expression; a nonzero status has already been
// reported.
Status DefineWord(CAssembler* assembler, CStatement* statement, const lsArg& arg) {
    const Status status =
        arg.IsValue() ? EmitChecked<wordKind>(assembler, statement, arg, PatchText::operand) : 0;
    if (status != 0 || !arg.IsValue()) {
        assembler->ReportError(statement, MSG_ILLEGAL_ARGUMENT, arg.text);
    }
    return status;
}

}  // namespace

Status AssembleDb(CAssembler* assembler, CStatement* statement) {
    for (const lsArg& arg : statement->args) {
        DefineByte(assembler, statement, arg);
    }
    return 0;
}

Status AssembleDw(CAssembler* assembler, CStatement* statement) {
    Status status = 0;
    for (const lsArg& arg : statement->args) {
        status = DefineWord(assembler, statement, arg);
    }
    return status;
}

Status AssembleDm(CAssembler* assembler, CStatement* statement) {
    const lsArg& arg = statement->args.First();
    const std::string_view text = arg.text;
    if (text.front() != '"') {
        return Refuse(statement, arg, MSG_ILLEGAL_ARGUMENT);
    }
    const StringEnd end = EmitString(assembler, text);
    if (end == StringEnd::textAfter) {
        assembler->ReportError(statement, MSG_TEXT_AFTER_STRING, text);
    } else if (end == StringEnd::open) {
        assembler->ReportWarning(statement, MSG_NO_CLOSING_QUOTE, text);
    }
    return 0;
}

Status AssembleDs(CAssembler* assembler, CStatement* statement) {
    const lsArg& size = statement->args.First();
    if (size.status != 0 || !size.IsValue()) {  // a later patch would move the bytes that follow
        return Refuse(statement, size,
                      size.status == MSG_UNRESOLVED ? MSG_NOT_IMMEDIATE : MSG_ILLEGAL_ARGUMENT);
    }
    constexpr std::int32_t blockSize = 0x8000000;  // RF_ABORT is tested between blocks
    for (std::int32_t left = size.value; left > 0 && !assembler->flags.Has(RF_ABORT);) {
        const std::int32_t count = std::min(left, blockSize);
        assembler->EmitZeros(static_cast<std::uint32_t>(count));
        left -= count;
    }
    return 0;
}

// Emits the bytes of a file unchanged. The file is found like a source, but does not count as one:
// it gets no number, adds nothing to the file depth, and is ignored by the progress meter. The
// whole file is read before anything is emitted.
Status AssembleBinclude(CAssembler* assembler, CStatement* statement) {
    const lsArg& arg = statement->args.First();
    std::string_view name = arg.text;
    if (arg.IsQuoted() && name.size() > 1) {
        name = name.substr(1, name.size() - 2);
    }
    FileBytes file;
    if (const Status status = assembler->sources->Read(name, &file); status != 0) {
        assembler->ReportError(statement, status, arg.text);
    } else if (!assembler->flags.Has(RF_ABORT)) {  // an abort ends the reading early
        if (assembler->observer != nullptr) {
            assembler->observer->OnIncludedBytes(file.found.path);
        }
        assembler->EmitBytes(
            {reinterpret_cast<const std::uint8_t*>(file.bytes.data()), file.bytes.size()});
    }
    return 0;
}

}  // namespace korv
