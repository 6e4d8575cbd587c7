#include "codegen/handler.h"

#include <array>

#include "driver/assembler.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Characters at which the scan of an operand has to look up.
constexpr auto stopsOperand = [] {
    std::array<bool, 256> table{};
    for (const char c : {'\0', '"', ',', ';'}) {
        table[static_cast<std::uint8_t>(c)] = true;
    }
    return table;
}();

// The end of the operand that begins at `start`: its comma, a semicolon or the end of the line,
// outside of quotes. A quote left open protects all that follows.
const char* FindOperandEnd(const char* start) {
    const char* end = start;
    for (;;) {
        while (!stopsOperand[static_cast<std::uint8_t>(*end)]) {
            ++end;
        }
        if (*end != '"') {
            return end;
        }
        do {
            ++end;
        } while (*end != '"' && *end != '\0');
        if (*end == '"') {
            ++end;
        }
    }
}

}  // namespace

void DefineLineLabel(CAssembler* assembler, CStatement* statement) {
    if (!statement->HasLabel()) {
        return;
    }
    statement->flags |= SF_LABEL_DEFINED;
    const std::int32_t result =
        assembler->identifiers.AddID({statement->label, statement->lineNumber, statement->fileName,
                                      static_cast<std::int32_t>(statement->address), IDS_LABEL});
    if (result != 0) {
        assembler->ReportError(statement, result, noText);
    }
}

void SplitOperands(CAssembler* assembler, CStatement* statement) {
    // The character that ended the mnemonic: a blank, or the end of the line.
    const char* start = statement->text + statement->position - 1;
    if (*start == '\0') {
        return;
    }
    for (bool sawComma = false;; sawComma = true) {
        while (HasClass(*start, CC_BLANK)) {
            ++start;
        }
        const char* const end = FindOperandEnd(start);
        const char* last = end;
        while (last != start && HasClass(last[-1], CC_BLANK)) {
            --last;
        }
        const bool isLast = *end != ',';
        if (last != start) {
            const std::string_view text(start, static_cast<std::size_t>(last - start));
            const std::int32_t result = statement->args.Add(text);
            if (result != 0 && isLast) {
                assembler->ReportError(statement, result, noText);
            } else if (result != 0) {
                assembler->ReportError(statement, MSG_SYSTEM_ERROR, "KO_Args.Add() failed!");
            }
        } else if (sawComma || !isLast) {
            // An operand that is missing before a comma is told like one behind the last.
            assembler->ReportWarning(statement, MSG_EXPECTED_ARGUMENT, noText);
        }
        if (isLast) {
            return;
        }
        start = end + 1;
    }
}

std::int32_t CheckCount(const KO_Args& args, OperandCount wanted) {
    if (args.Count() > wanted.most) {
        return MSG_TOO_MANY_ARGUMENTS;
    }
    return args.Count() < wanted.fewest ? MSG_ARGUMENT_EXPECTED : 0;
}

std::int32_t BeginStatement(CAssembler* assembler, CStatement* statement, OperandCount wanted) {
    DefineLineLabel(assembler, statement);
    SplitOperands(assembler, statement);
    return CheckCount(statement->args, wanted);
}

}  // namespace korv
