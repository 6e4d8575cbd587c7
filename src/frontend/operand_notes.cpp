// Operands that do not fit the mnemonic or have no value. First the operand at fault is found, by
// the place that the core reported or by the forms; then the first explanation that fits counts.

#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "source/char_class.h"

namespace korv {
namespace {

bool Take(OperandCase* it, std::optional<RowAdvice> row) {
    if (!row || (row->note.empty() && row->edits.empty())) {
        return false;
    }
    it->advice.note = std::move(row->note);
    it->advice.edits = std::move(row->edits);
    if (row->part.data() != nullptr) {
        it->PointAt(row->part);
    }
    return true;
}

// "X SET 5" and "EQU X,5".
bool AdviseOnSet(OperandCase* it) {
    const StatementView& statement = it->statement;
    Advice advice;
    if (statement.mnemonic == "SET" && statement.operands.size() == 1 && !statement.label.empty()) {
        advice = AdviseOnDefinition(statement);
    } else if (statement.mnemonic == "EQU" && statement.label.empty()) {
        advice = AdviseOnNameSecond(statement);
    }
    if (!advice.place) {
        return false;
    }
    it->advice = std::move(advice);
    return true;
}

// A half of an index register.
bool AdviseOnIndexHalf(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const Token* const token = operand.OnlyToken();
        const bool isHalf =
            token != nullptr &&
            HoldsWord("IXH IXL IYH IYL HX LX HY LY XH XL YH YL IXU IYU", token->text);
        if (token != nullptr && token->text == "PC" && !it->IsDefined("PC")) {
            it->PointAt(token->text);
            it->advice.note = "use JP, CALL or $: the program counter is no operand";
            return true;
        }
        if (isHalf && !it->IsDefined(token->text)) {
            it->PointAt(token->text);
            it->advice.note =
                "use another register: the halves of IX and IY are not in the published "
                "instruction set";
            return true;
        }
    }
    return false;
}

// A label with the name of a register or condition, where an address belongs.
bool AdviseOnLabelName(OperandCase* it) {
    const Token* const token = it->operand == nullptr ? nullptr : it->operand->OnlyToken();
    const bool isName = token != nullptr && it->fault.number == MSG_ILLEGAL_ARGUMENT &&
                        ClassOf(token->text).kind != KIND_VALUE && it->IsDefined(token->text);
    if (!isName) {
        return false;
    }
    const std::string name(it->statement.Typed(token->text));
    const std::string kind = token->kind == TokenKind::condition ? "condition" : "register";
    const std::vector<TextEdit> edits = {{it->statement.PartOf(token->text), name + "+0"}};
    const bool isNumber = token->text == "B" || token->text == "H";
    if (!HasFormWith(it->statement, edits)) {
        return false;
    }
    it->PointAt(token->text);
    if (isNumber) {
        it->advice.note = "choose another name: " + name + " alone is a register, and " + name +
                          "+0 a number without digits";
        return true;
    }
    it->advice.edits = edits;
    it->advice.note = WriteNote(it->statement, edits) + ": " + name + " alone is a " + kind;
    return true;
}

// A register or condition where a value belongs, in data and the like.
bool AdviseOnRegister(OperandCase* it) {
    const OperandView* const operand = it->operand;
    if (operand == nullptr || operand->what.kind == KIND_VALUE || operand->tokens.empty() ||
        !HoldsWord("DB DEFB DW DEFW DS DEFS IF COND EQU ORG RST IM", it->statement.mnemonic)) {
        return false;
    }
    const Token* const token = operand->OnlyToken();
    if (token == nullptr) {
        return false;
    }
    const std::string name(token->text);
    it->PointAt(operand->text);
    if (name == "B" || name == "H") {
        it->advice.note = "choose another name: " + name + " is a register, and " + name +
                          "+0 a number without digits";
    } else if (it->IsDefined(name)) {
        it->Replace(operand->text, name + "+0");
        it->advice.note = "write " + name + "+0: " + name + " alone is a register or condition";
    } else {
        it->advice.note =
            "use a number, a string or a name: " + name + " is a register or condition";
    }
    return true;
}

// Whether the proposed change holds one of the tokens of an expression that `isIt`.
template <typename IsIt>
bool ProposesToken(const OperandCase& it, IsIt isIt) {
    const auto isProposed = [&](const Token& token) {
        return isIt(token) && std::ranges::any_of(it.advice.edits, [&token](const TextEdit& edit) {
                   const std::string text = Raised(edit.text);
                   const std::size_t at = text.find(token.text);
                   return at != std::string::npos && at > 0 && !HasClass(text[at - 1], CC_NAME);
               });
    };
    return std::ranges::any_of(it.statement.operands, [&isProposed](const OperandView& operand) {
        return operand.what.kind == KIND_VALUE && !operand.IsIndexed() &&
               std::ranges::any_of(operand.tokens, isProposed);
    });
}

// A name that nothing defines.
bool ProposesUnknown(const OperandCase& it) {
    return ProposesToken(it, [&it](const Token& token) {
        return token.kind == TokenKind::name && !it.adviser.Facts().FindName(token.text);
    });
}

// A register in a sum.
bool ProposesRegister(const OperandCase& it) {
    return ProposesToken(it, [&it](const Token& token) {
        return token.kind == TokenKind::registerName && !it.IsDefined(token.text);
    });
}

// A proposed "M+0" where there is no name M leads to the next error.
bool ProposesUnknownName(const OperandCase& it) {
    for (const TextEdit& edit : it.advice.edits) {
        const std::size_t at = edit.text.find("+0");
        if (at == std::string::npos || at == 0 || edit.text.find("(IX+0)") != std::string::npos) {
            continue;
        }
        std::size_t start = at;
        while (start > 0 && HasClass(edit.text[start - 1], CC_NAME)) {
            --start;
        }
        const std::string_view name = std::string_view(edit.text).substr(start, at - start);
        const bool isNumber = name == "B" || name == "H";
        if (isNumber || (ClassOf(name).kind != KIND_VALUE && !it.IsDefined(name))) {
            return true;
        }
    }
    return false;
}

// M, which is the memory at HL on the 8080.
bool AdviseOnM(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const std::vector<TextEdit> edits = {{it->statement.PartOf(operand.text), "(HL)"}};
        if (operand.text == "M" && HasFormWith(it->statement, edits)) {
            it->PointAt(operand.text);
            it->advice.edits = edits;
            it->advice.note = WriteNote(it->statement, edits) + ": M is a condition";
            return true;
        }
    }
    return false;
}

// "DM HELLO": the quotes are missing.
bool AdviseOnBareText(OperandCase* it) {
    const bool isText = HoldsWord("DM DEFM", it->statement.mnemonic) && it->operand != nullptr;
    const Token* const token = isText ? it->operand->OnlyToken() : nullptr;
    if (token == nullptr || token->kind != TokenKind::name || it->IsDefined(token->text)) {
        return false;
    }
    const std::string fix = "\"" + std::string(it->statement.Typed(token->text)) + "\"";
    it->Replace(it->operand->text, fix);
    it->advice.note = "put the text in double quotes: " + fix;
    return true;
}

bool AdviseOnShape(OperandCase* it) {
    if (AdviseOnBareText(it) || AdviseOnLabelName(it)) {
        return true;
    }
    const auto& operands = it->statement.operands;
    const bool isCondition =
        it->fault.number == MSG_ILLEGAL_ARGUMENT && operands.size() == 2 &&
        HoldsWord("CALL JR", it->statement.mnemonic) && operands[0].tokens.size() == 1 &&
        operands[0].tokens[0].kind == TokenKind::name && operands[1].what.kind == KIND_VALUE;
    if (isCondition && !it->IsDefined(operands[0].text)) {
        it->PointAt(operands[0].text);
        it->advice.note = it->statement.mnemonic == "JR"
                              ? "use NZ, Z, NC or C as the condition"
                              : "use NZ, Z, NC, C, PO, PE, P or M as the condition";
        return true;
    }
    if (!Take(it, OperandAdvice(it->statement, it->fault.number))) {
        return AdviseOnM(it);
    }
    if (ProposesRegister(*it)) {
        it->advice.edits.clear();
        it->advice.note.clear();
        return false;
    }
    if (ProposesUnknown(*it)) {
        it->advice.edits.clear();
    }
    if (ProposesUnknownName(*it)) {
        it->advice.edits.clear();
        it->advice.note.clear();
        return AdviseOnM(it);
    }
    return true;
}

// The forms that agree with the operands before the fault.
void AdviseOnForms(OperandCase* it) {
    const std::size_t faulty = FindFaultyOperand(it->statement);
    if (faulty == noFault) {
        return;
    }
    const std::vector<std::string> choices = ChoicesAt(it->statement, faulty);
    const Keyword* const keyword = it->statement.keyword;
    const std::int32_t most = keyword == nullptr ? 0 : keyword->operands.most;
    if (choices.empty() && keyword != nullptr && faulty < it->statement.operands.size() &&
        std::cmp_greater(it->statement.operands.size(), most)) {
        const std::string text(it->statement.operands[faulty].text);
        it->advice.note = "remove " + text + ": " + std::string(it->statement.mnemonic) +
                          " takes " +
                          (most == 0   ? "no operand"
                           : most == 1 ? "one operand"
                                       : "two operands");
        return;
    }
    std::string& note = it->advice.note;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        note += (i == 0 ? "" : i + 1 == choices.size() ? " or " : ", ") + choices[i];
    }
    if (note.empty()) {
        return;
    }
    std::string head(it->statement.mnemonic);
    for (std::size_t i = 0; i < faulty; ++i) {
        head += (i == 0 ? " " : ",") + std::string(it->statement.operands[i].text);
    }
    note = "use " + note + (faulty == 0 ? " with " : " after ") + head;
}

constexpr std::size_t npos = std::string::npos;

std::string Sentence(const Token& token, std::string_view end) {
    return std::string(token.text) + std::string(end);
}

}  // namespace

void AdviseOnOperandCase(OperandCase* it) {
    const FaultView& fault = it->fault;
    const bool isCount =
        fault.number == MSG_TOO_MANY_ARGUMENTS || fault.number == MSG_ARGUMENT_EXPECTED;
    const std::size_t faulty = FindFaultyOperand(fault.statement);
    for (const OperandView& operand : fault.statement.operands) {
        const ExpressionFault kind = FindExpressionFault(operand).fault;
        if (kind == ExpressionFault::openBracket || kind == ExpressionFault::closeBracket) {
            it->operand = &operand;
        }
    }
    if (it->operand != nullptr) {
        it->PointAt(it->operand->text);
    } else if (isCount && faulty == fault.statement.operands.size()) {
        it->PointAt(fault.statement.mnemonic);
    }
    if (HoldsWord("INCLUDE BINCLUDE", fault.statement.mnemonic)) {
        if (!AdviseOnShape(it)) {
            AdviseOnForms(it);
        }
        return;
    }
    if (AdviseOnSet(it) || AdviseOnComma(it) || AdviseOnSecondInstruction(it) ||
        AdviseOnLastSign(it) || AdviseOnListBrackets(it) || AdviseOnSplitBrackets(it) ||
        AdviseOnSeparator(it) || AdviseOnIndexHalf(it) || AdviseOnSpelling(it) ||
        AdviseOnUnopenedString(it) || AdviseOnRegister(it) ||
        (fault.number == MSG_TOO_MANY_ARGUMENTS && AdviseOnProse(it))) {
        return;
    }
    const Keyword* const keyword = fault.statement.keyword;
    if (isCount && keyword != nullptr && keyword->operands.most == 0) {
        it->PointAt(fault.statement.rest);
        if (AdviseOnShape(it)) {
            return;
        }
    }
    const bool isValue = it->operand != nullptr && it->operand->what.kind == KIND_VALUE;
    const ExpressionFault kind =
        isValue ? FindExpressionFault(*it->operand).fault : ExpressionFault::none;
    const bool isBroken = kind == ExpressionFault::twoValues ||
                          kind == ExpressionFault::openBracket ||
                          kind == ExpressionFault::closeBracket;
    const bool isData = HoldsWord("DB DEFB DW DEFW DS DEFS", fault.statement.mnemonic);
    if (isValue && (isCount || isData || isBroken || fault.number != MSG_ILLEGAL_ARGUMENT) &&
        AdviseOnExpression(it)) {
        return;
    }
    if (fault.number == MSG_UNRESOLVED || fault.number == MSG_NOT_IMMEDIATE) {
        AdviseOnUnknownName(it);
        return;
    }
    if (fault.number == MSG_BAD_EXPRESSION) {
        it->advice.note = "check for a division by 0 and for names that are not values";
        return;
    }
    if (AdviseOnEmptyOperand(it) || AdviseOnShape(it) || (isValue && AdviseOnExpression(it))) {
        return;
    }
    AdviseOnForms(it);
}

Advice AdviseOnOperands(Adviser& adviser, const FaultView& fault) {
    OperandCase it{adviser, fault, fault.statement, FocusOf(fault)};
    AdviseOnOperandCase(&it);
    const std::string note = Raised(it.advice.note);  // which has the names as they were typed
    for (const OperandView& operand : fault.statement.operands) {
        const Token* const token = operand.OnlyToken();
        const bool isCause =
            token != nullptr && (note.find(Sentence(*token, " ALONE")) != npos ||
                                 note.find("ANOTHER NAME: " + Sentence(*token, "")) != npos);
        if (isCause) {
            it.advice.explains.emplace_back(token->text);
        }
    }
    const Keyword* const keyword = fault.statement.keyword;
    const bool isExcess = fault.number == MSG_ARGUMENT_EXPECTED && keyword != nullptr &&
                          std::cmp_greater(fault.statement.operands.size(), keyword->operands.most);
    if (isExcess) {  // ADD answers to three operands as to too few
        it.advice.text = "too many operands";
    }
    return it.advice;
}

}  // namespace korv
