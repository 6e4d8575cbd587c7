// The loop over the statements of one file, the heart of the assembler. A logical line is split in
// place into label, mnemonic and operand text, and the handler of the mnemonic is called. The loop
// does the rest: it defines the label if the handler has not, reports a bad result, and adds the
// debug record. On its normal path, the loop allocates nothing.

#include "codegen/handlers.h"
#include "codegen/recogniser.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "source/char_class.h"
#include "source/source_file.h"

namespace korv {
namespace {

// `token`, truncated to the maximum length of a word.
std::string_view Word(std::string_view token) {
    return token.substr(0, maxWord);
}

// Splits off the label at the start of the line. Result: the text after it.
const char* CutLabel(CAssembler* assembler, CStatement* statement) {
    const char* const start = statement->text;
    const char* end = start + 1;
    while (HasClass(*end, CC_NAME)) {
        ++end;
    }
    statement->token = {start, end};
    statement->label = Word(statement->token);
    if (statement->Terminator() != ':') [[unlikely]] {
        assembler->ReportWarning(statement, MSG_LABEL_WITHOUT_COLON, noText, statement->label);
    }
    if (statement->token.size() > maxWord) [[unlikely]] {
        assembler->ReportError(statement, MSG_LABEL_TOO_LONG, statement->token);
    }
    return *end != '\0' ? end + 1 : end;
}

[[gnu::cold]] void ReportUnknown(CAssembler* assembler, CStatement* statement, const char* start) {
    const char* end = start;
    while (*end != '\0' && !HasClass(*end, CC_BLANK)) {
        ++end;
    }
    statement->token = {start, end};
    assembler->ReportError(statement, MSG_UNKNOWN_INSTRUCTION, Word(statement->token));
}

// Only these handlers run while a condition skips statements.
bool RunsWhileSkipping(InstructionHandler handler) {
    return handler == AssembleIf || handler == AssembleElse || handler == AssembleEndif;
}

// Runs the frame of the mnemonic at `start`, then its handler. Result: the status of the frame if
// the frame fails, otherwise the status of the handler; 0 if there is nothing to run.
Status RunHandler(CAssembler* assembler, CStatement* statement, const char* start) {
    const Keyword* const keyword = RecogniseInstruction(start);
    if (keyword == nullptr) [[unlikely]] {
        ReportUnknown(assembler, statement, start);
        return 0;
    }
    if (assembler->assembling == 0 && !RunsWhileSkipping(keyword->handler)) [[unlikely]] {
        return 0;
    }
    statement->token = {start, keyword->word.size()};
    const Status result = BeginStatement(assembler, statement, *keyword);
    return result != 0 ? result : keyword->handler(assembler, statement);
}

// Assembles one statement from its cleaned line, which is not empty.
void Assemble(CAssembler* assembler, CStatement* statement) {
    statement->address = assembler->statementAddress = assembler->location;
    const char* next = statement->text;
    if (HasClass(*next, CC_NAME_START)) {
        next = CutLabel(assembler, statement);
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
        assembler->ReportError(
            statement, status == generalFailure ? MSG_GENERAL_FAILURE : status, noText,
            statement->refused != nullptr ? statement->refused->text : statement->token);
    }
}

constexpr std::uint32_t stops = RF_ABORT | RF_END;
// All flags that require work after a statement, combined so that the normal path has only one
// test.
constexpr std::uint32_t extras = stops | RF_DEBUG | RF_NO_DEBUG_RECORD | RF_PROGRESS | RF_OBSERVED;

// Called after a statement of `lineCount` physical lines and `byteCount` bytes if any of `extras`
// is set in `bits`. Does the work for those flags. Result: false if the run must stop.
bool FinishStatement(CAssembler* assembler, CStatement* statement, std::uint32_t bits,
                     std::uint32_t lineCount, std::uint32_t byteCount) {
    if ((bits & RF_OBSERVED) != 0) {
        assembler->observer->OnStatement(*statement, lineCount);
    }
    if ((bits & RF_NO_DEBUG_RECORD) != 0) {
        assembler->flags.Clear(RF_NO_DEBUG_RECORD);
        assembler->debugStream.PassOver(assembler->binary.Position());
    } else if ((bits & RF_DEBUG) != 0) {
        assembler->debugStream.AddRecord(assembler->binary.Position(), statement->text);
    }
    constexpr std::int32_t progressInterval = 128;  // lines
    if ((bits & RF_PROGRESS) != 0 && statement->lineNumber % progressInterval == 0) {
        assembler->Progress();
    }
    const bool isStopped = (bits & stops) != 0;
    assembler->meter.bytesRead += isStopped ? byteCount : 0;  // the last line counts twice
    return !isStopped;
}

}  // namespace

std::int32_t CAssembler::RunStatements(CSourceFile* file, CStatement* statement) {
    std::int32_t lineCounter = 1;
    if (flags.Has(stops)) {
        return lineCounter;
    }
    std::uint32_t bytesOfLine = 0;
    std::uint32_t linesOfLine = 0;
    for (;;) {
        statement->label = {};
        statement->refused = nullptr;
        statement->flags = 0;
        statement->lineNumber = lineCounter;
        statement->args.Clear();
        const Status readResult =
            file->ReadLine(statement->text, static_cast<std::uint32_t>(lineBufferSize),
                           &bytesOfLine, &linesOfLine);
        if (readResult != 0) {
            if (readResult != endOfFile) {
                ReportError(statement, readResult, noText);
            }
            return lineCounter;
        }
        if (statement->text[0] != '\0') {
            Assemble(this, statement);
        }
        meter.bytesRead += bytesOfLine;
        lineCounter += static_cast<std::int32_t>(linesOfLine);
        const std::uint32_t bits = flags.Load();
        if ((bits & extras) != 0 &&
            !FinishStatement(this, statement, bits, linesOfLine, bytesOfLine)) [[unlikely]] {
            return lineCounter;
        }
    }
}

}  // namespace korv
