// What a statement is looked at for once it has been assembled: where its bytes are not what its
// line says, and the core has no report for it. All of it is rare; the questions that every
// statement is asked are in `CheckStatement`.

#include "codegen/handlers.h"
#include "codegen/recogniser.h"
#include "codegen/value_range.h"
#include "driver/assembler.h"
#include "expr/number.h"
#include "expr/token.h"
#include "frontend/run_watch.h"
#include "source/char_class.h"

namespace korv {
namespace {

InstructionHandler HandlerOf(const CStatement& statement) {
    const std::string_view word = SplitLine(statement.text).word;
    const Keyword* const keyword = word.empty() ? nullptr : RecogniseInstruction(word.data());
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

bool HoldsLocation(std::string_view expression) {
    if (expression.find('$') == std::string_view::npos) {
        return false;
    }
    for (TokenReader reader(expression); !reader.isAtEnd;) {
        reader.Next();
        if (reader.Token() == "$") {
            return true;
        }
    }
    return false;
}

}  // namespace

void RunWatch::CheckStatement(CStatement* statement, std::uint32_t lineCount, std::uint32_t count) {
    if (lineCount > 1) {
        CheckComment(*statement);
    }
    if (statement->text[0] == '\0') {
        return;
    }
    if (assembler->assembling != wasAssembling ||
        static_cast<std::size_t>(assembler->conditionDepth) != levels.size()) {
        CheckConditions(*statement);
    }
    if (statement->HasLabel() && assembler->assembling != 0 && ReadsAsNumber(statement->label)) {
        WarnAbout(Warning::numberLabel, *statement, statement->label, std::string(statement->label),
                  "");
    }
    if (assembler->location != statement->address + count && !settings.followsOrg) {
        CheckOrg(*statement);
    }
    std::int32_t number = 0;
    for (const lsArg* arg = statement->args.First(); arg != nullptr;
         arg = statement->args.After(arg)) {
        if (arg->status == MSG_UNRESOLVED && !isFaulty && HoldsLocation(arg->expression)) {
            WarnAbout(Warning::lateLocation, *statement, arg->text, std::string(arg->text),
                      "put a label in front of this line and write it for the $");
        }
        if (++number > 2) {
            continue;
        }
        if (arg->IsValue() ? !wordRange.Holds(arg->value) : count == 0) {
            CheckOperand(*statement, *arg);
        }
    }
}

// `arg` has a value that no word holds, or is a register of a statement without bytes.
void RunWatch::CheckOperand(const CStatement& statement, const lsArg& arg) {
    const InstructionHandler handler = HandlerOf(statement);
    if (isFaulty) {
        return;
    }
    if (arg.IsValue() && (handler == AssembleLd || handler == AssembleCall)) {
        WarnAbout(Warning::truncated, statement, arg.text,
                  std::string(arg.text) + " is " + std::to_string(arg.value), "");
    }
    if (!arg.IsValue() && (handler == AssembleEqu || handler == AssembleOrg)) {
        WarnAbout(Warning::registerValue, statement, arg.text, std::string(arg.text), "");
    }
}

// A comment that goes on over nothing, or over another comment, takes nothing away.
void RunWatch::CheckComment(const CStatement& statement) {
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

void RunWatch::CheckOrg(const CStatement& statement) {
    if (imageSize != 0 && !isFaulty && HandlerOf(statement) == AssembleOrg) {
        const std::string_view address = SplitLine(statement.text).rest;
        WarnAbout(Warning::orgGap, statement, address, std::string(address),
                  "fill the gap by DS, or choose Intel HEX, which has addresses");
    }
}

// An IF, ELSE or ENDIF has moved the state. What follows an IF depends on that one alone.
void RunWatch::CheckConditions(const CStatement& statement) {
    const auto depth = static_cast<std::size_t>(assembler->conditionDepth);
    const bool isOn = assembler->assembling != 0;
    wasAssembling = assembler->assembling;
    if (depth < levels.size()) {
        levels.pop_back();
        return;
    }
    if (depth > levels.size()) {
        const bool isLiveOutside = levels.empty() || levels.back().isLive;
        levels.push_back(
            {PlaceIn(statement, SplitLine(statement.text).word), false, isLiveOutside});
    }
    Level& level = levels.back();
    level.isLive = level.isLiveOutside && isOn;
    if (isOn && !level.isLiveOutside) {
        WarnAbout(Warning::nestedIf, statement, "", "", "combine the conditions by AND");
    }
}

}  // namespace korv
