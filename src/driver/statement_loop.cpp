// The loop over the statements of one file, the heart of the assembler. A logical line is cut in
// place into label, mnemonic and operand text, the mnemonic's handler runs, and what the handler
// left open is done here: the label, the message for a bad result, the debug record. On its normal
// path the loop allocates nothing.

#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/recogniser.h"
#include "driver/assembler.h"
#include "source/char_class.h"
#include "source/source_file.h"

namespace korv {
namespace {

// Takes the characters from `start` to `end` as the word read last, cut to what a word may have.
void TakeWord(CStatement* statement, const char* start, const char* end) {
    statement->token = {start, std::min(static_cast<std::size_t>(end - start), maxWord)};
    statement->terminator = *end;
    statement->position = static_cast<std::uint32_t>(end + 1 - statement->text);
}

// The label begins with the line.
void CutLabel(CAssembler* assembler, CStatement* statement) {
    const char* const start = statement->text;
    const char* end = start + 1;
    while (HasClass(*end, CC_NAME)) {
        ++end;
    }
    TakeWord(statement, start, end);
    statement->label = statement->token;
    if (*end != ':') {
        assembler->ReportWarning(statement, MSG_LABEL_WITHOUT_COLON, noText);
    }
    if (const std::string_view word(start, static_cast<std::size_t>(end - start));
        word.size() > maxWord) {
        assembler->ReportError(statement, MSG_LABEL_TOO_LONG, word);
    }
}

// While a condition skips statements, these alone run.
bool RunsWhileSkipping(InstructionHandler handler) {
    return handler == HandleIf || handler == HandleElse || handler == HandleEndif;
}

// Cuts the mnemonic and runs its handler. Result: the handler's, 0 if there is nothing to run.
std::int32_t RunHandler(CAssembler* assembler, CStatement* statement) {
    const char* const start = SkipBlanks(statement->text + statement->position);
    const Recognised keyword = RecogniseInstruction(start);
    if (keyword.handler == nullptr) {
        const char* end = start;
        while (*end != '\0' && !HasClass(*end, CC_BLANK)) {
            ++end;
        }
        TakeWord(statement, start, end);
        if (!statement->token.empty()) {
            assembler->ReportError(statement, MSG_UNKNOWN_INSTRUCTION, statement->token);
        }
        return 0;
    }
    TakeWord(statement, start, start + keyword.length);
    if (assembler->assembling == 0) [[unlikely]] {
        return RunsWhileSkipping(keyword.handler) ? keyword.handler(assembler, statement) : 0;
    }
    return keyword.handler(assembler, statement);
}

// One statement, from its cleaned line, which is not empty.
void Assemble(CAssembler* assembler, CStatement* statement) {
    statement->address = assembler->statementAddress = assembler->location;
    char& first = statement->text[0];
    if (first == '*') {
        first = ' ';
        if (statement->lineNumber == 1) {
            assembler->ReportWarning(statement, MSG_COMMAND_LINE_SKIPPED, statement->text);
            return;
        }
    }
    if (HasClass(first, CC_NAME_START)) {
        CutLabel(assembler, statement);
    }
    std::int32_t status = statement->terminator == '\0' ? 0 : RunHandler(assembler, statement);
    if ((statement->flags & SF_LABEL_DEFINED) == 0 && assembler->assembling != 0) {
        DefineLineLabel(assembler, statement);
    }
    if (status != 0) {
        status = status == -1 ? MSG_GENERAL_FAILURE : status;
        assembler->ReportError(statement, status, noText);
    }
}

void ResetStatement(CStatement* statement, std::int32_t lineNumber) {
    statement->position = 0;
    statement->token = {};
    statement->terminator = '\xFF';
    statement->label = {};
    statement->flags = 0;
    statement->lineNumber = lineNumber;
    statement->args.Clear();
}

}  // namespace

CAssembler::FileOutcome CAssembler::RunStatements(CSourceFile* file, CStatement* statement) {
    constexpr std::uint32_t stops = RF_ABORT | RF_END;
    // Whatever needs more than the statement itself: one test on the normal path.
    constexpr std::uint32_t extras = stops | RF_DEBUG | RF_NO_DEBUG_RECORD | RF_PROGRESS;
    FileOutcome outcome;
    if (flags.Has(stops)) {
        return outcome;
    }
    for (;;) {
        outcome.bytesOfLine = 0;
        std::uint32_t linesOfLine = 0;
        binarySizeAtLineStart = binary.Position();
        ResetStatement(statement, outcome.lineCounter);
        const std::int32_t readResult =
            file->ReadLine(statement->text, static_cast<std::uint32_t>(lineBufferSize),
                           &outcome.bytesOfLine, &linesOfLine);
        if (readResult != 0) {
            if (readResult > 0) {
                ReportError(statement, readResult, noText);
            }
            return outcome;
        }
        if (statement->text[0] != '\0') {
            Assemble(this, statement);
        }
        bytesRead += outcome.bytesOfLine;
        outcome.lineCounter += static_cast<std::int32_t>(linesOfLine);
        const std::uint32_t bits = flags.Load();
        if ((bits & extras) == 0) [[likely]] {
            continue;
        }
        if ((bits & RF_NO_DEBUG_RECORD) != 0) {
            flags.Clear(RF_NO_DEBUG_RECORD);
        } else if ((bits & RF_DEBUG) != 0) {
            debugStream.AddRecord(binary.Position() - binarySizeAtLineStart, statement->text);
        }
        constexpr std::int32_t progressInterval = 128;  // lines
        if ((bits & RF_PROGRESS) != 0 && statement->lineNumber % progressInterval == 0) {
            Progress();
        }
        if ((bits & stops) != 0) {
            return outcome;
        }
    }
}

}  // namespace korv
