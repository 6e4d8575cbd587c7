// Advice on operands that do not fit the mnemonic or have no value. First finds the operand at
// fault, from the place that the core reported or from the forms of the mnemonic; then uses the
// first explanation that fits.

#include <algorithm>
#include <cassert>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "source/char_class.h"

namespace korv {
namespace {

bool Take(OperandCase* it, std::optional<RowAdvice> row) {
    if (!row) {
        return false;
    }
    it->advice.note = std::move(row->note);
    it->advice.edits = std::move(row->edits);
    return true;
}

// "X SET 5", "SET X,5" and "EQU X,5".
bool AdviseOnSet(OperandCase* it) {
    const StatementView& statement = it->statement;
    Advice advice;
    if (statement.mnemonic == "SET" && statement.operands.size() == 1 && !statement.label.empty()) {
        advice = AdviseOnDefinition(statement);
    } else if (statement.label.empty()) {
        advice = AdviseOnNameSecond(statement);
    }
    if (!advice.place) {
        return false;
    }
    it->advice = std::move(advice);
    return true;
}

// "INCLUDE defs,kor" and "INC defs.kor".
bool AdviseOnFileName(OperandCase* it) {
    const StatementView& statement = it->statement;
    std::string name(statement.Typed(statement.rest));
    if (statement.mnemonic == "INC" && it->adviser.Facts().HasFile(name)) {
        return it->Propose(statement.mnemonic, {{statement.PartOf(statement.mnemonic), "INCLUDE"}});
    }
    std::ranges::replace(name, ',', '.');
    return statement.operands.size() == 2 && HoldsWord("INCLUDE BINCLUDE", statement.mnemonic) &&
           it->adviser.Facts().HasFile(name) &&
           it->Propose(statement.rest, {{statement.PartOf(statement.rest), name}});
}

// A half of an index register, the program counter, or a register of another processor.
bool AdviseOnIndexHalf(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const Token* const token = operand.OnlyToken();
        if (token == nullptr || it->IsDefined(token->text)) {
            continue;
        }
        if (HoldsWord(foreignRegisters, token->text) &&
            !HoldsWord("JP JR CALL DJNZ", it->statement.mnemonic)) {
            it->advice.note = "use the registers of the Z80: " + std::string(token->text) +
                              " is of another processor";
        } else if (token->text == "PC" && it->statement.mnemonic == "POP") {
            return it->Propose(
                token->text,
                {{it->statement.PartOf(it->statement.Span(it->statement.mnemonic, token->text)),
                  "RET"}});
        } else if (token->text == "PC") {
            it->advice.note = "use JP, CALL or $: the program counter is no operand";
        } else if (HoldsWord("IXH IXL IYH IYL HX LX HY LY XH XL YH YL IXU IYU", token->text)) {
            it->advice.note =
                "use another register: the halves of IX and IY are not in the published "
                "instruction set";
        } else {
            continue;
        }
        it->PointAt(token->text);
        return true;
    }
    return false;
}

// A label with the name of a register or condition, where a value or an address is expected.
bool AdviseOnLabelName(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const Token* const token = operand.OnlyToken();
        if (token == nullptr || ClassOf(token->text).kind == KIND_VALUE ||
            !it->IsDefined(token->text)) {
            continue;
        }
        if (HasFormWith(it->statement, {{it->statement.PartOf(token->text), "0"}})) {
            it->PointAt(token->text);
            it->advice.note =
                "choose another name: " + std::string(it->statement.Typed(token->text)) +
                " alone is a " + (token->kind == TokenKind::condition ? "condition" : "register");
            return true;
        }
    }
    return false;
}

// A register or condition where a value is expected, as in data.
bool AdviseOnRegister(OperandCase* it) {
    const OperandView* const operand = it->operand;
    const Token* const token = operand == nullptr ? nullptr : operand->OnlyToken();
    if (token == nullptr || operand->what.kind == KIND_VALUE ||
        !HoldsWord("DB DEFB DW DEFW DS DEFS IF COND EQU ORG RST IM", it->statement.mnemonic)) {
        return false;
    }
    const std::string name(token->text);
    it->advice.note =
        it->IsDefined(name)
            ? "choose another name: " + name + " alone is a register or condition"
            : "use a number, a string or a name: " + name + " is a register or condition";
    return true;
}

// M, which is the memory at HL on the 8080.
bool AdviseOnM(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        if (operand.text == "M") {
            return it->Propose(operand.text, {{it->statement.PartOf(operand.text), "(HL)"}},
                               "write ", ": M is a condition");
        }
    }
    return false;
}

// "DM HELLO", "DB HELLO WORLD,0": the quotes are missing.
bool AdviseOnBareText(OperandCase* it) {
    const bool isText = HoldsWord("DM DEFM", it->statement.mnemonic);
    const bool isData = isText || HoldsWord("DB DEFB", it->statement.mnemonic);
    if (!isData || it->operand == nullptr || it->operand->tokens.size() < (isText ? 1 : 2) ||
        (isText && it->statement.operands.size() > 1) ||
        std::ranges::any_of(it->operand->tokens, [it](const Token& token) {
            const bool isWord =
                token.kind == TokenKind::name ||
                (ClassOf(token.text).kind != KIND_VALUE && &token != it->operand->tokens.data());
            return !isWord || it->IsDefined(token.text);
        })) {
        return false;
    }
    const std::string fix = "\"" + std::string(it->statement.Typed(it->operand->text)) + "\"";
    it->Replace(it->operand->text, fix);
    it->advice.note = "put the text in double quotes: " + fix;
    return true;
}

bool AdviseOnShape(OperandCase* it) {
    if (AdviseOnLabelName(it) || AdviseOnQuotedRegister(it) ||
        (it->fault.number != MSG_TOO_MANY_ARGUMENTS && AdviseOnMisspeltRegister(it))) {
        return true;
    }
    const auto& operands = it->statement.operands;
    const bool isCondition = operands.size() == 2 && HoldsWord("CALL JR", it->statement.mnemonic) &&
                             operands[0].tokens.size() == 1 &&
                             operands[0].tokens[0].kind == TokenKind::name &&
                             operands[1].what.kind == KIND_VALUE;
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
    if (!it->advice.edits.empty() &&
        !IsSound(it->adviser.Facts(), it->statement, it->advice.edits)) {
        it->advice.edits.clear();
        it->advice.note.clear();
        return false;
    }
    if (it->ProposesUnknownName()) {
        it->advice.edits.clear();
        const Token* const token = it->operand == nullptr ? nullptr : it->operand->OnlyToken();
        if (token != nullptr && token->kind == TokenKind::name &&
            token->text.size() == 1) {  // probably a register
            return false;
        }
        if (HoldsWord("IN OUT", it->statement.mnemonic) && operands.size() == 2) {  // "OUT (V),E"
            it->PointAt(operands[it->statement.mnemonic == "IN" ? 1 : 0].text);
            it->advice.note = "use (C), or a number with A";
        } else if (it->fault.number != MSG_TOO_MANY_ARGUMENTS &&
                   it->advice.note.starts_with("write ")) {
            it->advice.note = FormsNote(it->statement);
        }
    }
    return true;
}

constexpr std::size_t npos = std::string::npos;

// Sets the operand and the place, in case no better ones are found.
void AimAt(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        if (operand.text.starts_with('\'')) {
            it->operand = &operand;  // perhaps a string that ends in a later operand
            break;
        }
        if (operand.what.reg == REG_DIRECT &&
            std::ranges::any_of(operand.tokens, [](const Token& token) {
                return ClassOf(token.text).kind != KIND_VALUE || token.kind == TokenKind::other;
            })) {  // "LD ( HL ),5", "LD (IX.1),5"
            it->operand = &operand;
        }
    }
    const auto& operands = it->statement.operands;
    if (it->statement.mnemonic == "ADD" && operands.size() == 2 &&
        !HoldsWord("A HL IX IY", operands[0].text)) {
        it->operand = operands.data();  // "ADD B" alone matches a form
    }
    if (HoldsWord("CALL JR", it->statement.mnemonic) && operands.size() == 2 &&
        operands[0].what.kind == KIND_VALUE && operands[1].what.kind == KIND_VALUE &&
        !operands[0].tokens.empty() &&
        (!operands[0].tokens[0].IsValue() || operands[0].tokens[0].kind == TokenKind::other ||
         operands[0].tokens[0].text == "NOT")) {  // "CALL !Z,X", "JR .Z,X"
        it->operand = operands.data();
    }
    if (it->operand != nullptr) {
        it->PointAt(it->operand->text);
    }
}

// A note that lists the numbers allowed as the first operand of BIT, SET, RES, IM or RST.
std::string NumbersNote(const StatementView& statement) {
    return "use " + Listed(ChoicesAt(statement, 0)) + " with " + std::string(statement.mnemonic);
}

}  // namespace

std::string FormsNote(const StatementView& statement) {
    const Keyword* const keyword = statement.keyword;
    const std::size_t excess = FindExcess(statement);
    const std::size_t faulty = excess == noFault ? FindFaultyOperand(statement) : excess;
    if (faulty == noFault) {
        return HoldsWord("IM RST", statement.mnemonic) ? NumbersNote(statement) : "";
    }
    const std::vector<std::string> choices = ChoicesAt(statement, faulty);
    const std::string word(statement.mnemonic);
    const std::int32_t most = keyword->operands.most;
    if (most == 0) {
        return "check the mnemonic: " + word + " takes no operands";
    }
    if ((choices.empty() || excess != noFault) && faulty < statement.operands.size() &&
        std::cmp_greater(statement.operands.size(), most)) {
        return "remove " + std::string(statement.operands[faulty].text) + ": " + word + " takes " +
               (most == 1 ? "one operand" : "two operands");
    }
    if (choices.empty()) {
        return "";
    }
    std::string note = "use ";  // GCC 12 warns about + here at link time
    note.append(Listed(choices)).append(faulty == 0 ? " with " : " after ").append(word);
    return faulty == 0 ? note : note.append(" ").append(statement.operands[0].text);
}

void AdviseOnOperandCase(OperandCase* it) {
    const FaultView& fault = it->fault;
    assert(it->statement.keyword != nullptr);
    const bool isExcess = fault.number == MSG_TOO_MANY_ARGUMENTS;
    AimAt(it);
    if (AdviseOnFileName(it) || AdviseOnOddQuotes(it) || AdviseOnSet(it) || AdviseOnSplitWord(it) ||
        AdviseOnComma(it) || AdviseOnSecondInstruction(it) || AdviseOnLastSign(it) ||
        AdviseOnListBrackets(it) || AdviseOnSplitBrackets(it) || AdviseOnSeparator(it) ||
        (it->operand != nullptr && it->operand->tokens.size() > 2 && AdviseOnBareText(it)) ||
        AdviseOnIndexHalf(it) || AdviseOnSpelling(it) || AdviseOnUnopenedString(it) ||
        AdviseOnBareText(it) || AdviseOnRegister(it) || (isExcess && AdviseOnProse(it))) {
        return;
    }
    if (fault.statement.keyword->operands.most == 0) {
        it->PointAt(fault.statement.rest);
        if (AdviseOnShape(it)) {
            return;
        }
    }
    const bool isValue =
        it->operand != nullptr && it->operand->what.kind == KIND_VALUE &&
        !HoldsWord("EX INCLUDE BINCLUDE", fault.statement.mnemonic);  // AF', a file
    const ExpressionFault kind =
        isValue ? FindExpressionFault(*it->operand).fault : ExpressionFault::none;
    const bool isBroken = kind == ExpressionFault::noRight ||
                          kind == ExpressionFault::openBracket ||
                          kind == ExpressionFault::closeBracket;
    const bool isData = HoldsWord("DB DEFB DW DEFW DS DEFS", fault.statement.mnemonic);
    if (isValue &&
        (isData || isBroken ||
         (isExcess ? kind != ExpressionFault::longString : fault.number != MSG_ILLEGAL_ARGUMENT)) &&
        AdviseOnExpression(it)) {
        return;
    }
    if (fault.number == MSG_UNRESOLVED || fault.number == MSG_NOT_IMMEDIATE) {
        AdviseOnUnknownName(it);
        return;
    }
    const bool isDivision =  // in data, where a value that cannot be computed is illegal
        isData && isValue && std::ranges::any_of(it->operand->tokens, [](const Token& token) {
            return token.code == OP_DIVIDE || token.code == OP_MODULO;
        });
    if (fault.number == MSG_BAD_EXPRESSION || isDivision) {
        it->advice.note = "check for a division by 0 and for names that are not values";
        return;
    }
    if (AdviseOnEmptyOperand(it) || AdviseOnProse(it) || AdviseOnShape(it) ||
        (isValue && AdviseOnExpression(it)) || AdviseOnSwappedOperands(it)) {
        return;
    }
    it->advice.note = FormsNote(it->statement);
    const bool isNumber = HoldsWord("BIT SET RES IM RST", it->statement.mnemonic) &&
                          it->operand == it->statement.operands.data();  // it is out of range
    if (it->advice.note.empty() && isNumber) {
        it->advice.note = NumbersNote(it->statement);
    }
}

Advice AdviseOnOperands(Adviser& adviser, const FaultView& fault) {
    if (fault.statement.keyword == nullptr) {  // a NUL ended the mnemonic for the core
        return {};
    }
    if (Advice split = AdviseOnSplitMnemonic(fault.statement); split.place) {  // "IN CLUDE X"
        return split;
    }
    OperandCase it{adviser, fault, fault.statement, FocusOf(fault)};
    AdviseOnOperandCase(&it);
    const std::string note = Raised(it.advice.note);  // the note shows names as they were typed
    for (const OperandView& operand : fault.statement.operands) {
        for (const Token& token : operand.tokens) {
            if (note.find("ANOTHER NAME: " + std::string(token.text) + " ALONE") != npos) {
                it.advice.explains.emplace_back(token.text);
            }
        }
    }
    const Keyword* const keyword = fault.statement.keyword;
    const auto& operands = fault.statement.operands;
    const bool isExcess = fault.number == MSG_ARGUMENT_EXPECTED &&
                          std::cmp_greater(operands.size(), keyword->operands.most) &&
                          !operands.back().text.empty();
    if (isExcess) {  // ADD reports three operands as too few
        it.advice.text = "too many arguments";
    }
    return it.advice;
}

}  // namespace korv
