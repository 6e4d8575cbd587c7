#include "frontend/checks.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "codegen/operand_forms.h"
#include "driver/statement.h"
#include "expr/number.h"
#include "expr/token.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/statement_rules.h"
#include "frontend/terminal_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// True if the unresolved expression of `arg` contains the location counter, "$".
bool HoldsLocation(const lsArg& arg) {
    if (arg.text.find('$') == std::string_view::npos) {  // most have none
        return false;
    }
    for (TokenReader reader(arg.expression); !reader.isAtEnd;) {
        reader.Next();
        if (reader.Token() == "$") {
            return true;
        }
    }
    return false;
}

bool HasOpenQuote(std::string_view text) {
    return std::ranges::count(text, '"') % 2 != 0;
}

// Adds the findings about `arg`, a resolved operand of `statement`. A register that is used as a
// value counts as 0, and so does the register of an operand with a displacement.
void CheckOperand(const lsArg& arg, const CStatement& statement, Findings* findings) {
    const auto isOneOf = [&statement](std::initializer_list<InstructionHandler> handlers) {
        const Keyword* const keyword = FindKeyword(statement.token);
        return keyword != nullptr &&
               std::ranges::find(handlers, keyword->handler) != handlers.end();
    };
    if (HasOpenQuote(arg.text) && !isOneOf({AssembleDm})) {  // DM reports it itself
        findings->push_back({Warning::openString, arg.text, Quoted(arg.text), ""});
    }
    if (arg.IsIndexed() || !arg.IsValue()) {
        findings->push_back({Warning::registerValue, arg.text, Quoted(arg.text), ""});
    } else if (!wordRange.Holds(arg.value) && isOneOf({AssembleLd, AssembleCall, AssembleOrg})) {
        char value[16];
        std::snprintf(value, sizeof value, "%04XH", static_cast<unsigned>(arg.value) & 0xFFFF);
        findings->push_back(
            {Warning::truncated, arg.text, Quoted(arg.text) + " becomes " + value, ""});
    } else if (arg.value < 0 && isOneOf({AssembleDs})) {
        findings->push_back({Warning::negativeSize, arg.text, Quoted(arg.text), ""});
    }
}

}  // namespace

void CheckLabel(std::string_view label, Findings* findings) {
    if (ReadsAsRegister(label)) {
        findings->push_back({Warning::registerLabel, label, Quoted(label), "give it another name"});
    } else if (ReadsAsNumber(label)) {
        findings->push_back({Warning::numberLabel, label, Quoted(label), "give it another name"});
    }
}

bool HidesInstruction(std::string_view line, std::string_view label) {
    const std::string_view after = line.substr(std::min(label.size(), line.size()));
    if (!after.starts_with(';')) {
        return false;
    }
    const std::string hidden = " " + Raised(after.substr(1, CommentStart(after.substr(1))));
    const StatementView view = CutStatement(hidden);
    return HasForm(view) && std::ranges::all_of(view.operands, [](const OperandView& operand) {
               return operand.what.kind != KIND_VALUE || operand.tokens.size() == 1 ||
                      FindExpressionFault(operand).fault == ExpressionFault::none;
           });
}

void CheckOperands(CStatement* statement, std::span<const std::uint8_t> bytes, Findings* findings) {
    if (std::strchr(statement->text, '\\') != nullptr) {
        const StatementView view = CutStatement(statement->text);
        if (const std::optional<LinePart> escape = FindEscape(view)) {
            const std::string_view part = view.line.substr(escape->offset, escape->length);
            findings->push_back({Warning::escape, part, Quoted(part),
                                 "write the character as a number, as in DB \"one\",10"});
        }
    }
    for (const lsArg& arg : statement->args) {
        if (!IsLateExpression(arg)) {
            if (IsOdd(arg, bytes)) {
                CheckOperand(arg, *statement, findings);
            }
        } else if (HoldsLocation(arg)) {
            findings->push_back({Warning::lateLocation, arg.text, Quoted(arg.text),
                                 arg.text.starts_with("$-")
                                     ? "move the line below the data: $ is the address here"
                                     : "put a label in front of this line and use it instead of "
                                       "the $"});
        }
    }
}

std::vector<ByteFinding> CheckComments(const StoredText& text, const LogicalLine& line) {
    std::vector<ByteFinding> found;
    for (const LogicalLine::Position& at : line.continuedComments) {
        const std::string_view taken = text.Line(at.line + 1);
        const auto start = std::ranges::find_if_not(
            taken, [](char c) { return HasClass(c, CC_BLANK) || c == '\\'; });
        if (start != taken.end() && *start != ';') {  // else nothing is lost
            found.push_back({Warning::continuedComment, at.line, at.column});
        }
    }
    return found;
}

std::vector<ByteFinding> CheckBytes(const StoredText& text) {
    std::vector<ByteFinding> found;
    if (!text.HasOddBytes()) {
        return found;
    }
    const std::string_view bytes = text.Bytes();
    const auto add = [&](Warning warning, std::size_t at) {
        const auto before = bytes.substr(0, at);
        const auto line = 1 + std::ranges::count(before, '\n');
        const std::size_t start = before.rfind('\n') + 1;  // 0 on the first line
        found.push_back(
            {warning, static_cast<std::int32_t>(line), static_cast<std::uint32_t>(at - start)});
    };
    if (const std::size_t at = bytes.find('\0'); at != std::string_view::npos) {
        add(Warning::nullByte, at);
    }
    for (std::size_t at = 0; (at = bytes.find('\r', at)) != std::string_view::npos;) {
        const std::size_t next = bytes.find_first_not_of('\r', at);
        if (next != std::string_view::npos && bytes[next] != '\n') {
            add(Warning::carriageReturn, at);
            break;
        }
        at = next;
    }
    const std::size_t mark = bytes.find('\x1A');
    if (mark != std::string_view::npos &&
        bytes.find_first_not_of("\x1A \t\r\n", mark) != std::string_view::npos) {
        add(Warning::endMark, mark);
    }
    return found;
}

}  // namespace korv
