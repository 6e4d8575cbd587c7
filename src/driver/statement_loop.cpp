// The loop over the statements of one file, the heart of the assembler. A logical line is cut in
// place into label, mnemonic and operand text, the mnemonic's handler runs, and what the handler
// left open is done here: the label, the message for a bad result, the debug record. On its normal
// path the loop allocates nothing.

#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/recogniser.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "source/char_class.h"
#include "source/source_file.h"

namespace korv {
namespace {

// A word, cut to what a word may have.
std::string_view Word(const char* start, const char* end) {
    return {start, std::min(static_cast<std::size_t>(end - start), maxWord)};
}

// The label begins with the line. Result: what ended it.
const char* CutLabel(CAssembler* assembler, CStatement* statement) {
    const char* const start = statement->text;
    const char* end = start + 1;
    while (HasClass(*end, CC_NAME)) {
        ++end;
    }
    statement->label = Word(start, end);
    if (*end != ':') [[unlikely]] {
        assembler->ReportWarning(statement, MSG_LABEL_WITHOUT_COLON, noText, statement->label);
    }
    if (const auto size = static_cast<std::size_t>(end - start); size > maxWord) [[unlikely]] {
        assembler->ReportError(statement, MSG_LABEL_TOO_LONG, {start, size});
    }
    return end;
}

void ReportUnknown(CAssembler* assembler, const CStatement* statement, const char* start) {
    const char* end = start;
    while (*end != '\0' && !HasClass(*end, CC_BLANK)) {
        ++end;
    }
    assembler->ReportError(statement, MSG_UNKNOWN_INSTRUCTION, Word(start, end));
}

// The part of the line that the result of a handler is about: the operand whose expression has
// failed so, if there is one.
std::string_view PartOf(CStatement* statement, Status status) {
    for (const lsArg& arg : statement->args) {
        if (arg.status == status) {
            return arg.text;
        }
    }
    return noText;
}

// While a condition skips statements, these alone run. Kept out of the road of the others.
[[gnu::noinline]] bool RunsWhileSkipping(InstructionHandler handler) {
    return handler == AssembleIf || handler == AssembleElse || handler == AssembleEndif;
}

// Runs the handler of the mnemonic at `start` in its frame. Result: the handler's, 0 if there is
// nothing to run.
Status RunHandler(CAssembler* assembler, CStatement* statement, const char* start) {
    const Keyword* const keyword = RecogniseInstruction(start);
    if (keyword == nullptr) [[unlikely]] {
        ReportUnknown(assembler, statement, start);
        return 0;
    }
    if (assembler->assembling == 0 && !RunsWhileSkipping(keyword->handler)) [[unlikely]] {
        return 0;
    }
    const Status result =
        BeginStatement(assembler, statement, *keyword, start + keyword->word.size());
    return result != 0 ? result : keyword->handler(assembler, statement);
}

// One statement, from its cleaned line, which is not empty.
void Assemble(CAssembler* assembler, CStatement* statement) {
    statement->address = assembler->statementAddress = assembler->location;
    const char* next = statement->text;
    if (HasClass(*next, CC_NAME_START)) {
        next = CutLabel(assembler, statement);
        next += *next != '\0' ? 1 : 0;
    } else if (*next == '*') [[unlikely]] {
        statement->text[0] = ' ';
        if (statement->lineNumber == 1) {
            assembler->ReportWarning(statement, MSG_COMMAND_LINE_SKIPPED, statement->text);
            return;
        }
    }
    next = SkipBlanks(next);
    const Status status = *next != '\0' ? RunHandler(assembler, statement, next) : 0;
    if (statement->HasLabel() && (statement->flags & SF_LABEL_DEFINED) == 0 &&
        assembler->assembling != 0) {
        DefineLineLabel(assembler, statement);
    }
    if (status != 0) [[unlikely]] {
        assembler->ReportError(statement, status == -1 ? MSG_GENERAL_FAILURE : status, noText,
                               PartOf(statement, status));
    }
}

}  // namespace

std::int32_t CAssembler::RunStatements(CSourceFile* file, CStatement* statement) {
    constexpr std::uint32_t stops = RF_ABORT | RF_END;
    // Whatever needs more than the statement itself: one test on the normal path.
    constexpr std::uint32_t extras =
        stops | RF_DEBUG | RF_NO_DEBUG_RECORD | RF_PROGRESS | RF_OBSERVED;
    std::int32_t lineCounter = 1;
    if (flags.Has(stops)) {
        return lineCounter;
    }
    for (;;) {
        std::uint32_t bytesOfLine = 0;
        std::uint32_t linesOfLine = 0;
        statement->label = {};
        statement->flags = 0;
        statement->lineNumber = lineCounter;
        statement->args.Clear();
        const std::int32_t readResult =
            file->ReadLine(statement->text, static_cast<std::uint32_t>(lineBufferSize),
                           &bytesOfLine, &linesOfLine);
        if (readResult != 0) {
            if (readResult > 0) {
                ReportError(statement, readResult, noText);
            }
            return lineCounter;
        }
        if (statement->text[0] != '\0') {
            Assemble(this, statement);
        }
        bytesRead += bytesOfLine;
        lineCounter += static_cast<std::int32_t>(linesOfLine);
        const std::uint32_t bits = flags.Load();
        if ((bits & extras) == 0) [[likely]] {
            continue;
        }
        if ((bits & RF_OBSERVED) != 0) {
            observer->OnStatement(*statement, linesOfLine);
        }
        if ((bits & RF_NO_DEBUG_RECORD) != 0) {
            flags.Clear(RF_NO_DEBUG_RECORD);
        } else if ((bits & RF_DEBUG) != 0) {
            debugStream.AddRecord(binary.Position() - binarySizeAtLineStart, statement->text);
        }
        binarySizeAtLineStart = binary.Position();
        constexpr std::int32_t progressInterval = 128;  // lines
        if ((bits & RF_PROGRESS) != 0 && statement->lineNumber % progressInterval == 0) {
            Progress();
        }
        if ((bits & stops) != 0) {
            bytesRead += bytesOfLine;  // the meter has the line that stops the reading twice
            return lineCounter;
        }
    }
}

}  // namespace korv
