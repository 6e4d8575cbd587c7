// What a statement is looked at for once it has been assembled: where its bytes are not what its
// line says, and the core has no report for it.

#include <algorithm>
#include <initializer_list>
#include <span>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "codegen/operand_forms.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"
#include "expr/number.h"
#include "expr/token.h"
#include "frontend/run_watch.h"
#include "source/char_class.h"

namespace korv {
namespace {

InstructionHandler HandlerOf(const CStatement& statement) {
    const Keyword* const keyword = FindKeyword(SplitLine(statement.text).word);
    return keyword == nullptr ? nullptr : keyword->handler;
}

// Whether the label would be a number in an expression. Only a number ends in a digit and begins
// with one, or ends in the letter of its radix.
bool ReadsAsNumber(std::string_view label) {
    const char last = label.back();
    const bool mayBe = HasClass(last, CC_DIGIT) ? HasClass(label.front(), CC_DIGIT)
                                                : last == 'H' || last == 'B' || last == 'O';
    std::int32_t value = 0;
    return mayBe && label.size() > 1 && ReadNumber(label, &value) != notANumber;
}

// Whether "$" alone stands in the expression of `arg`, which waits for a name.
bool HoldsLocation(const lsArg& arg) {
    for (TokenReader reader(arg.expression); !reader.isAtEnd;) {
        reader.Next();
        if (reader.Token() == "$") {
            return true;
        }
    }
    return false;
}

// Whether `arg` waits for more than a name alone.
bool IsLateExpression(const lsArg& arg) {
    return arg.status == MSG_UNRESOLVED && arg.expression.size() != arg.fault.size();
}

// Whether `arg`, of a statement with the bytes `bytes`, calls for a closer look.
bool IsOdd(const lsArg& arg, std::span<const std::uint8_t> bytes) {
    if (!arg.IsValue()) {
        return bytes.empty();
    }
    return IsLateExpression(arg) || !wordRange.Holds(arg.value) ||
           (arg.value < 0 && bytes.empty()) ||
           (arg.text.front() == '"' && arg.text.back() != '"') ||
           (arg.IsIndexed() && (bytes.empty() || (bytes[0] != PREFIX_IX && bytes[0] != PREFIX_IY)));
}

// Whether a string that is a value lacks its second quote.
bool IsOpenString(const lsArg& arg) {
    return arg.status == 0 && arg.IsValue() && std::ranges::count(arg.text, '"') % 2 != 0;
}

// What makes the condition `text` mean something else than it does in other languages; empty:
// nothing.
std::string_view SurpriseIn(std::string_view text) {
    bool isCompared = false;
    for (TokenReader reader(text); !reader.isAtEnd;) {
        reader.Next();
        const Operator word = FindWord(reader.Token());
        for (const Operator& op : {word, reader.op}) {
            if (op.code == OP_NOT) {
                return "! turns every bit, and !1 is true: write X=0";
            }
            if (isCompared && (op.code == OP_AND || op.code == OP_OR || op.code == OP_XOR)) {
                return "comparisons bind less than AND and OR: give each a name by EQU";
            }
            isCompared = isCompared || (op.code != 0 && op.priority <= 2);
        }
    }
    return "";
}

}  // namespace

// Every statement comes here, so what is rare stands elsewhere.
void RunWatch::OnStatement(CStatement& statement, std::uint32_t lineCount) {
    const std::uint32_t count = assembler->binary.Position() - imageSize;
    if (settings.keepsRecords) {
        Record(statement, lineCount, count);
    }
    imageSize += count;
    if (lineCount > 1) {
        CheckComment(statement);
    }
    if (statement.text[0] != '\0') {
        if (assembler->assembling != wasAssembling || assembler->conditionDepth != levelCount) {
            CheckConditions(statement);
        }
        if (statement.HasLabel()) {
            CheckLabel(statement);
        }
        if (assembler->location != statement.address + count) {
            CheckOrg(statement);
        }
        KO_Args& args = statement.args;
        const std::int32_t operands = args.Count();
        const auto bytes = assembler->binary.Bytes().last(count);
        if (operands > 0 && (operands > 2 || IsOdd(args.First(), bytes) ||
                             (operands > 1 && IsOdd(args.Second(), bytes)))) {
            CheckOperands(&statement, bytes);
        }
    }
    isFaulty = false;
    if (imageSize > settings.maxImage && !isStopped) {
        StopAtSize(statement);
    }
}

[[gnu::noinline]] void RunWatch::CheckLabel(const CStatement& statement) {
    if (ReadsAsNumber(statement.label) && assembler->assembling != 0) {
        WarnAbout(Warning::numberLabel, statement, statement.label, std::string(statement.label),
                  "");
    }
}

[[gnu::noinline]] void RunWatch::CheckOperands(CStatement* statement,
                                               std::span<const std::uint8_t> bytes) {
    if (isFaulty) {  // it is known not to be what it says
        return;
    }
    for (const lsArg& arg : statement->args) {
        if (!IsLateExpression(arg)) {
            if (IsOdd(arg, bytes)) {
                CheckOperand(*statement, arg);
            }
        } else if (HoldsLocation(arg)) {
            WarnAbout(Warning::lateLocation, *statement, arg.text, std::string(arg.text),
                      "put a label in front of this line and write it for the $");
        }
    }
}

// `arg` waits for nothing. What is a value reads 0 for a register, and no word for a register that
// has a displacement.
void RunWatch::CheckOperand(const CStatement& statement, const lsArg& arg) {
    const InstructionHandler handler = HandlerOf(statement);
    const auto isOneOf = [handler](std::initializer_list<InstructionHandler> handlers) {
        return std::ranges::find(handlers, handler) != handlers.end();
    };
    const std::string text(arg.text);
    if (IsOpenString(arg) && handler != AssembleDm) {  // which has said so
        WarnAbout(Warning::openString, statement, arg.text, text, "");
    }
    const bool isRegister =
        arg.IsIndexed()
            ? isOneOf({AssembleDb, AssembleDw, AssembleDs, AssembleEqu, AssembleOrg, AssembleIf})
            : isOneOf({AssembleEqu, AssembleOrg}) && !arg.IsValue();
    if (isRegister) {
        WarnAbout(Warning::registerValue, statement, arg.text, text, "");
    } else if (isOneOf({AssembleLd, AssembleCall, AssembleOrg}) && !wordRange.Holds(arg.value)) {
        WarnAbout(Warning::truncated, statement, arg.text,
                  text + " is " + std::to_string(arg.value), "");
    } else if (handler == AssembleDs && arg.value < 0) {
        WarnAbout(Warning::negativeSize, statement, arg.text, text, "");
    }
}

// A comment that goes on over nothing, or over another comment, takes nothing away.
[[gnu::noinline]] void RunWatch::CheckComment(const CStatement& statement) {
    const SourceText& text = messages->texts.Of(statement.fileName);
    for (const LogicalLine::Place& place : text.Logical(statement.lineNumber).continuedComments) {
        const std::string_view taken = text.Line(place.line + 1);
        const auto start = std::ranges::find_if_not(
            taken, [](char c) { return HasClass(c, CC_BLANK) || c == '\\'; });
        if (start != taken.end() && *start != ';') {
            MessagePlace at{statement.fileName, statement.lineNumber};
            at.exact = place;
            Warn(Warning::continuedComment, at, "", "end the comment with another character");
        }
    }
}

// Bytes that the reader passes over or takes for the end of a text. They make a file that no
// editor shows as it is read: the first of each kind is told.
void RunWatch::CheckBytes(std::int32_t file) {
    if (!messages->texts.MayHideText(file)) {
        return;
    }
    const std::string text = messages->texts.Contents(file);
    const auto warn = [&](Warning warning, std::size_t at) {
        const auto line =
            1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
        const std::size_t start = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
        MessagePlace place{file, static_cast<std::int32_t>(line)};
        place.exact = LogicalLine::Place{place.line, at - start};
        Warn(warning, place, "", "");
    };
    if (const std::size_t at = text.find('\0'); at != std::string::npos) {
        warn(Warning::nullByte, at);
    }
    for (std::size_t at = 0; (at = text.find('\r', at)) != std::string::npos; ++at) {
        const std::size_t next = text.find_first_not_of('\r', at);
        if (next != std::string::npos && text[next] != '\n') {
            warn(Warning::carriageReturn, at);
            break;
        }
    }
    const std::size_t mark = text.find('\x1A');
    if (mark != std::string::npos &&
        text.find_first_not_of("\x1A \t\r\n", mark) != std::string::npos) {
        warn(Warning::endMark, mark);
    }
}

[[gnu::noinline]] void RunWatch::CheckOrg(const CStatement& statement) {
    if (imageSize != 0 && !settings.followsOrg && !isFaulty &&
        HandlerOf(statement) == AssembleOrg) {
        const std::string_view address = SplitLine(statement.text).rest;
        WarnAbout(Warning::orgGap, statement, address, std::string(address),
                  "fill the gap by DS, or choose Intel HEX, which has addresses");
    }
}

// The run ends with `statement`, of an included file, or with a file that it includes.
void RunWatch::CheckEnd(const CStatement& statement) {
    if (HandlerOf(statement) == AssembleEnd) {
        WarnAbout(Warning::earlyEnd, statement, "", "", "END is for the main file");
    }
}

// An IF, ELSE or ENDIF has moved the state. What follows an IF depends on that one alone.
[[gnu::noinline]] void RunWatch::CheckConditions(const CStatement& statement) {
    const auto depth = static_cast<std::size_t>(assembler->conditionDepth);
    const bool isOn = assembler->assembling != 0;
    wasAssembling = assembler->assembling;
    levelCount = assembler->conditionDepth;
    if (depth < levels.size()) {
        levels.pop_back();
        return;
    }
    if (depth > levels.size()) {
        const bool isLiveOutside = levels.empty() || levels.back().isLive;
        const LineParts parts = SplitLine(statement.text);
        levels.push_back({PlaceIn(statement, parts.word), false, isLiveOutside});
        const std::string_view surprise = isFaulty ? "" : SurpriseIn(parts.rest);
        if (!surprise.empty()) {
            WarnAbout(Warning::condition, statement, parts.rest, std::string(parts.rest), surprise);
        }
    }
    Level& level = levels.back();
    level.isLive = level.isLiveOutside && isOn;
    if (isOn && !level.isLiveOutside) {
        WarnAbout(Warning::nestedIf, statement, "", "", "combine the conditions by AND");
    }
}

}  // namespace korv
