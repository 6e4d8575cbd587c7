// Advice on operands with the wrong separator, and on a second instruction on the line.

#include <algorithm>
#include <span>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "source/char_class.h"

namespace korv {

// A semicolon that begins a comment by mistake, as in "LD A;5" and "LD ;A,5"; "EX DE HL"; "(IX,5)"
// and "(IX),5".
bool AdviseOnComma(OperandCase* it) {
    const StatementView& statement = it->statement;
    const std::string_view typed = statement.typed;
    const std::size_t end = statement.line.size();
    const bool isShort =
        it->fault.number == MSG_ARGUMENT_EXPECTED || it->fault.number == MSG_ILLEGAL_ARGUMENT;
    if (isShort && end + 1 < typed.size() && typed[end] == ';' &&
        !HasClass(typed[end + 1], CC_BLANK) && !statement.rest.empty() &&
        !statement.rest.ends_with('\'')) {  // "DB ';'"
        std::string changed(typed);
        changed[end] = ',';
        const std::string line = Raised(changed.substr(0, changed.find(';')));
        const StatementView view = CutStatement(line, changed);
        if (HasForm(view)) {
            it->advice.place = LinePart{static_cast<std::uint32_t>(end), 1};
            it->advice.edits = {{*it->advice.place, ","}};
            it->advice.note = "write a comma: a semicolon begins a comment";
            return true;
        }
    }
    const std::size_t after = typed.find_first_not_of(" \t;", end);
    const std::size_t start = typed.find(';');
    if (statement.rest.empty() && start < after && after < typed.size()) {  // "LD ;A,5"
        const std::vector<TextEdit> edits = {
            {{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(after - start)}, " "}};
        if (IsSound(it->adviser.Facts(), statement, edits)) {
            it->advice.edits = edits;
            it->advice.note = "remove the semicolon: it begins a comment";
            return true;
        }
    }
    const std::size_t blank = statement.rest.find_first_of(" \t");
    if (statement.mnemonic == "EX" && blank < statement.rest.size()) {  // "EX DE HL"
        const std::vector<TextEdit> edits = {
            {statement.PartOf(statement.rest.substr(blank, 1)), ","}};
        if (HasFormWith(statement, edits)) {
            return it->Propose(statement.rest.substr(blank + 1), edits, "add the comma: ");
        }
    }
    for (std::size_t i = 0; i + 1 < statement.operands.size(); ++i) {
        const std::string_view text = statement.operands[i].text;
        const std::string_view next = statement.operands[i + 1].text;
        if (HoldsWord("(IX) (IY)", text)) {  // "LD A,(IX),5"
            const std::string_view gap = statement.Span(text, next);
            const std::vector<TextEdit> edits = {
                {statement.PartOf(gap.substr(3, gap.size() - 3 - next.size())), "+"},
                {statement.PartOf(next.substr(next.size())), ")"}};
            if (HasFormWith(statement, edits)) {
                return it->Propose(next, edits);
            }
        }
        if (HoldsWord("(IX (IY", text)) {
            const std::size_t comma = statement.PartOf(text).offset + text.size();
            const std::vector<TextEdit> edits = {
                {{static_cast<std::uint32_t>(comma),
                  static_cast<std::uint32_t>(statement.PartOf(next).offset - comma)},
                 "+"}};
            if (HasFormWith(statement, edits)) {
                return it->Propose(text, edits);
            }
        }
    }
    return false;
}

bool AdviseOnSeparated(OperandCase* it, std::string_view part,
                       const std::vector<TextEdit>& commas) {
    const std::string typed =
        Applied(it->statement.typed.substr(0, it->statement.line.size()), commas);
    const std::string line = Raised(typed);
    const StatementView changed = CutStatement(line, typed);
    auto row = OperandAdvice(changed, FormMessage(changed));
    if (!row) {
        return false;
    }
    it->PointAt(part);
    it->advice.note = std::move(row->note);
    if (!row->edits.empty()) {  // it replaces the whole statement
        it->advice.edits = {NewStatement(it->statement, row->edits[0].text)};
    }
    return true;
}

// A wrong separator, as in "LD A:5".
bool AdviseOnSeparator(OperandCase* it) {
    const auto& operands = it->statement.operands;
    const bool isData = HoldsWord(dataDirectives, it->statement.mnemonic);
    if (operands.size() != 1 && (!isData || it->operand == nullptr)) {
        return false;
    }
    const std::string_view text = operands.size() == 1 ? operands[0].text : it->operand->text;
    const bool isSum = HoldsWord("ADD ADC SBC", it->statement.mnemonic);  // "ADD HL+DE"
    const std::size_t start = text.starts_with('"') ? text.find('"', 1) : 0;
    const std::size_t at = text.find_first_of(isSum ? ":.=<>-;/&+" : ":.=<>-;/&", start);
    const std::string_view sign = text.substr(std::min(at, text.size()), 2);
    const bool isNegative = at + 2 < text.size() && HasClass(text[at + 2], CC_DIGIT);  // "A<-5"
    const std::size_t size = sign == "->" || (sign == "<-" && !isNegative) ? 2 : 1;
    const bool isAfterString = at != std::string_view::npos && at > 1 &&
                               (sign[0] == ':' || sign[0] == '.') && sign != ".." &&
                               text.find('"', 1) == at - 1;
    const bool isList = isData && at != std::string_view::npos && sign[0] == ':' &&  // "DW A:B"
                        (it->IsDefined(text.substr(0, at)) || HasClass(text[0], CC_DIGIT));
    const bool isMemory =  // "RLC IX-2"
        HoldsWord("IX IY", text.substr(0, at)) && it->statement.keyword->operands.most == 1;
    const bool isMissing = isAfterString || isList || it->fault.number == MSG_ARGUMENT_EXPECTED;
    if (at == std::string_view::npos || at == 0 || isMemory ||
        text.find_first_not_of("+-", at + size) == std::string_view::npos ||  // "DEC HL--"
        (!isMissing && ClassOf(text.substr(0, at)).kind == KIND_VALUE)) {
        return false;
    }
    std::vector<TextEdit> edits = {{it->statement.PartOf(text.substr(at, size)), ","}};
    if (sign == "->") {  // "LD B->A", which loads A
        const std::string first(it->statement.Typed(text.substr(0, at)));
        const std::string second(it->statement.Typed(text.substr(at + size)));
        edits = {{it->statement.PartOf(text), second + "," + first}};
    }
    const std::string_view before = text.substr(0, text.find_last_not_of(" \t", at - 1) + 1);
    if (size == 1 && sign[0] == '-' && HasClass(sign[1], CC_DIGIT) &&
        ClassOf(before).kind != KIND_VALUE &&
        HasFormWith(it->statement, edits)) {  // "LD DE-10", "LD DE -10"
        if (before.size() < at) {
            edits[0].text = ",-";
            return it->Propose(text.substr(at, 1), edits, "add the comma: ");
        }
        it->PointAt(text.substr(at, 1));
        it->advice.note = "separate the operands with a comma";
        return true;
    }
    if (HasFormWith(it->statement, edits)) {
        return it->Propose(text.substr(at, size), edits);
    }
    const std::string_view next = text.substr(at + size);
    return ClassOf(text.substr(0, at)).kind != KIND_VALUE &&
           FindKeyword(FirstWord(next)) == nullptr &&
           AdviseOnSeparated(it, text.substr(at, size), edits);
}

// "DB (1,2,3)": brackets around a list of values.
bool AdviseOnListBrackets(OperandCase* it) {
    const std::string_view rest = it->statement.rest;
    if (rest.find_first_of("([{") != 0 || !HoldsWord(dataDirectives, it->statement.mnemonic)) {
        return false;
    }
    const char close = ")]}"[std::string_view("([{").find(rest.front())];
    const std::string_view first = it->statement.operands.front().text;
    const std::string_view last = it->statement.operands.back().text;
    if (!last.ends_with(close) || first.find(close) != std::string_view::npos ||
        last.find(first.front()) != std::string_view::npos) {
        return false;
    }
    it->PointAt(first.substr(0, 1));
    it->Replace(first.substr(0, 1), "");
    it->Replace(last.substr(last.size() - 1), "");
    it->advice.note = WriteNote(it->statement, it->advice.edits);
    return true;
}

// A punctuation mark after a register or number, as in "PUSH HL." and "LD A,5.".
bool AdviseOnLastSign(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const std::string_view text = operand.text;
        const bool isString = text.starts_with('"') && text.ends_with("\"'");
        const std::size_t size = isString ? text.size() - 1 : text.find_last_not_of(".:;!") + 1;
        const std::vector<Token> tokens = CutTokens(text.substr(0, size));
        const bool isValue = isString || (tokens.size() == 1 ? tokens[0].kind == TokenKind::number
                                                             : text.substr(0, size).ends_with(')'));
        if (size == 0 || size == text.size() ||
            (!isValue && ClassOf(text.substr(0, size)).kind == KIND_VALUE)) {
            continue;
        }
        const std::vector<TextEdit> edits = {{it->statement.PartOf(text.substr(size)), ""}};
        if (HasFormWith(it->statement, edits)) {
            return it->Propose(text, edits);
        }
    }
    return false;
}

// "(IX+1,2)": a comma within brackets.
bool AdviseOnSplitBrackets(OperandCase* it) {
    const auto& operands = it->statement.operands;
    const auto count = [](const OperandView& operand, std::int32_t code) {
        return std::ranges::count(operand.tokens, code, &Token::code);
    };
    for (std::size_t i = 0; i + 1 < operands.size(); ++i) {
        const std::string_view first = operands[i].text;
        const std::string_view next = operands[i + 1].text;
        if (first.starts_with('(') && count(operands[i], OP_CLOSE) == 0 && next.ends_with(')') &&
            count(operands[i + 1], OP_OPEN) == 0) {
            it->PointAt(it->statement.Span(first, next));
            it->advice.note = "write one value between the brackets";
            return true;
        }
    }
    return false;
}

namespace {

// True if the text from the mnemonic at token `i` to the next mnemonic or separator is a valid
// statement rather than part of a comment.
bool IsWholeInstruction(const StatementView& statement, const OperandView& operand, std::size_t i) {
    constexpr std::size_t longest = 80;  // a bound for the work on one message
    const std::size_t start = statement.PartOf(operand.tokens[i].text).offset;
    std::size_t end = statement.line.size();
    for (const Token& token : std::span(operand.tokens).subspan(i + 1)) {
        if (FindKeyword(token.text) != nullptr || HoldsWord("| : \\ !", token.text)) {
            end = statement.PartOf(token.text).offset;
            break;
        }
    }
    if (end - start > longest) {
        return false;
    }
    const std::string text = " " + std::string(statement.line.substr(start, end - start));
    return HasForm(CutStatement(text));
}

// Proposes a line break before each instruction within `operand`.
void AddInstructionBreaks(OperandCase* it, const OperandView& operand) {
    const Keyword* const keyword = it->statement.keyword;
    const bool isAlone = keyword != nullptr && keyword->operands.most == 0 &&  // "EXX RET"
                         keyword->group == KeywordGroup::instruction;
    for (std::size_t i = isAlone ? 0 : 1; i < operand.tokens.size(); ++i) {
        const Token& token = operand.tokens[i];
        const Token& before = operand.tokens[i == 0 ? 0 : i - 1];
        const bool isSign = HoldsWord("| : \\ !", before.text) && i > 1;
        if (token.kind == TokenKind::name && FindKeyword(token.text) != nullptr &&
            IsWholeInstruction(it->statement, operand, i) && !HoldsWord("IF COND", token.text) &&
            (isSign || (before.IsValue() && !before.text.ends_with(':')))) {
            it->Replace(isSign ? it->statement.Span(before.text, token.text) : token.text,
                        "\n\t" + std::string(it->statement.Typed(token.text)));
        }
    }
}

}  // namespace

// A second instruction on the line, with or without a separator before it.
bool AdviseOnSecondInstruction(OperandCase* it) {
    const auto& operands = it->statement.operands;
    const std::string_view mnemonic = it->statement.mnemonic;
    if (const std::string_view rest = it->statement.rest;
        rest.starts_with(mnemonic) && rest.size() > mnemonic.size() &&
        HasClass(rest[mnemonic.size()], CC_BLANK)) {
        const std::vector<TextEdit> edits = {
            {it->statement.PartOf(it->statement.Span(mnemonic, rest.substr(0, mnemonic.size()))),
             std::string(it->statement.Typed(mnemonic))}};  // "LD LD A,5"
        if (HasFormWith(it->statement, edits)) {
            return it->Propose(rest.substr(0, mnemonic.size()), edits);
        }
    }
    for (std::size_t i = 1; i < operands.size(); ++i) {  // "PUSH HL, POP DE"
        const std::string_view before = operands[i - 1].text;
        if (FindExpressionFault(operands[i - 1]).fault != ExpressionFault::none) {
            break;  // "LD B,5 five, or so"
        }
        const std::vector<Token>& tokens = operands[i].tokens;
        const Keyword* const keyword = tokens.empty() ? nullptr : FindKeyword(tokens[0].text);
        const bool isKeyword =
            keyword != nullptr &&
            (tokens.size() > 1
                 ? tokens[1].IsValue()
                 : keyword->operands.fewest == 0 && keyword->group == KeywordGroup::instruction);
        const std::size_t end = it->statement.PartOf(before).offset + before.size();
        if (isKeyword) {
            const std::string_view word = operands[i].tokens[0].text;
            it->PointAt(word);
            const auto start = static_cast<std::uint32_t>(end);
            it->advice.edits = {{{start, it->statement.PartOf(word).offset - start}, "\n\t"}};
            it->advice.note = oneInstructionNote;
            return true;
        }
    }
    for (const OperandView& operand : operands) {
        AddInstructionBreaks(it, operand);
    }
    if (it->advice.edits.empty()) {
        return false;
    }
    it->advice.place = it->advice.edits[0].part;
    it->advice.note = oneInstructionNote;
    if (it->statement.typed.data() == it->statement.line.data()) {  // two lines, joined
        it->advice.note = "check for a backslash at the end of the line: it joins the next line";
    }
    return true;
}

bool AdviseOnEmptyOperand(OperandCase* it) {
    const auto empty =
        std::ranges::find(it->statement.operands, std::string_view(), &OperandView::text);
    if (empty == it->statement.operands.end()) {
        return false;
    }
    const std::size_t at = it->statement.PartOf(empty->text).offset;
    const std::string_view line = it->statement.line;
    const std::string_view comma = line.substr(std::min(line.rfind(',', at), at), 1);
    const bool isComment =  // "RET , text"
        HasForm(CutStatement(line.substr(0, at))) &&
        !HasFormWith(it->statement, {{it->statement.PartOf(comma), ""}});
    it->PointAt(comma);
    if (isComment) {
        it->Replace(comma, ";");
        it->advice.note = "begin the comment with a semicolon";
        return true;
    }
    it->advice.note = "add the operand, or remove the comma";
    return true;
}

}  // namespace korv
