// Operands that do not fit the mnemonic or have no value. First the operand at fault is found, by
// the place that the core reported or by the forms; then the first explanation that fits counts.

#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::string_view data = "DB DEFB DW DEFW";
constexpr std::string_view jumps = "JP JR CALL DJNZ";

// What the steps work on.
struct Case {
    Adviser& adviser;
    const FaultView& fault;
    const StatementView& statement;
    const OperandView* operand = nullptr;  // at fault; null: one is missing, or it is none of them
    Advice advice = {};

    void PointAt(std::string_view part) { advice.place = statement.PartOf(part); }
    void Replace(std::string_view part, std::string text) {
        advice.edits.push_back({statement.PartOf(part), std::move(text)});
    }
    // Puts `text` in front of `part`.
    void Insert(std::string_view part, std::string text) {
        Replace(part.substr(0, 0), std::move(text));
    }
    [[nodiscard]] bool IsDefined(std::string_view name) const {
        const auto known = adviser.Facts().FindName(name);
        return known && known->hasValue;
    }
};

bool HasFormWith(const StatementView& statement, const std::vector<TextEdit>& edits) {
    const std::string line = Raised(Applied(statement.line, edits));
    return HasForm(CutStatement(line));
}

// The token `text` in the expression of `operand`, which the name of an index register is no part
// of.
const Token* FindToken(const OperandView& operand, std::string_view text) {
    const auto first = operand.tokens.begin() + (operand.IsIndexed() ? 2 : 0);
    const auto token = std::ranges::find(first, operand.tokens.end(), text, &Token::text);
    return token == operand.tokens.end() ? nullptr : &*token;
}

// The operand that the message is about.
const OperandView* FocusOf(const FaultView& fault) {
    const auto& operands = fault.statement.operands;
    const auto find = [&operands](auto isIt) -> const OperandView* {
        const auto it = std::ranges::find_if(operands, isIt);
        return it == operands.end() ? nullptr : &*it;
    };
    if (fault.part.length != 0) {
        const OperandView* const at = find([&fault](const OperandView& each) {
            const LinePart part = fault.statement.PartOf(each.text);
            return fault.part.offset >= part.offset &&
                   fault.part.offset < part.offset + part.length;
        });
        const std::size_t faulty = FindFaultyOperand(fault.statement);
        const bool isNamed =
            at != nullptr && fault.statement.PartOf(at->text).length >= fault.part.length;
        if (isNamed && (fault.number != MSG_ILLEGAL_ARGUMENT || faulty >= operands.size())) {
            return at;
        }
    }
    switch (fault.number) {
        case MSG_ILLEGAL_ARGUMENT:
        case MSG_ILLEGAL_CONDITION:
        case MSG_TOO_MANY_ARGUMENTS:
        case MSG_ARGUMENT_EXPECTED:
            if (const std::size_t i = FindFaultyOperand(fault.statement); i < operands.size()) {
                return &operands[i];
            }
            break;
        case MSG_UNRESOLVED:
            if (const OperandView* const it = find([&fault](const OperandView& each) {
                    const bool isNamed =
                        each.what.kind == KIND_VALUE || fault.statement.mnemonic == "DJNZ";
                    return isNamed && FindToken(each, fault.text) != nullptr;
                })) {
                return it;
            }
            break;
        default:
            break;
    }
    if (const OperandView* const it = find([](const OperandView& each) {
            return each.what.kind == KIND_VALUE &&
                   FindExpressionFault(each).fault != ExpressionFault::none;
        })) {
        return it;
    }
    return operands.size() == 1 ? operands.data() : nullptr;
}

bool Take(Case* it, std::optional<RowAdvice> row) {
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

// "X SET 5" and the like.
bool AdviseOnSet(Case* it) {
    const bool isSet = it->statement.mnemonic == "SET" && it->statement.operands.size() == 1 &&
                       !it->statement.label.empty();
    if (!isSet) {
        return false;
    }
    it->advice = AdviseOnDefinition(it->statement);
    return it->advice.place.has_value();
}

// A comma that is another sign, as in "LD A:5".
bool AdviseOnSeparator(Case* it) {
    const auto& operands = it->statement.operands;
    if (it->fault.number != MSG_ARGUMENT_EXPECTED || operands.size() != 1) {
        return false;
    }
    const std::string_view text = operands[0].text;
    const std::size_t at = text.find_first_of(":.=<-;");
    if (at == std::string_view::npos || at + 1 == text.size()) {
        return false;
    }
    const std::vector<TextEdit> edits = {{it->statement.PartOf(text.substr(at, 1)), ","}};
    if (!HasFormWith(it->statement, edits)) {
        return false;
    }
    it->PointAt(text.substr(at, 1));
    it->advice.edits = edits;
    it->advice.note = WriteNote(it->statement, edits);
    return true;
}

// A half of an index register.
bool AdviseOnIndexHalf(Case* it) {
    for (const OperandView& operand : it->statement.operands) {
        const Token* const token = operand.OnlyToken();
        const bool isHalf =
            token != nullptr &&
            HoldsWord("IXH IXL IYH IYL HX LX HY LY XH XL YH YL IXU IYU", token->text);
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

// A spelling of another assembler.
bool AdviseOnSpelling(Case* it) {
    std::vector<const OperandView*> candidates;
    if (it->operand != nullptr) {
        candidates.push_back(it->operand);
    } else {
        for (const OperandView& each : it->statement.operands) {
            candidates.push_back(&each);
        }
    }
    for (const OperandView* const operand : candidates) {
        if (operand == &it->statement.operands.back() && IsNumberedLabel(it->statement)) {
            it->PointAt(operand->text);
            it->advice.note = numberedLabelNote;
            return true;
        }
        Foreign found = FindForeign(it->statement, *operand);
        if (found.part.data() != nullptr) {
            it->PointAt(found.part);
            it->advice.note = std::move(found.note);
            if (!found.fix.empty()) {
                it->Replace(found.part, std::move(found.fix));
            }
            return true;
        }
        if (Take(it, TokenAdvice(it->statement, *operand))) {
            return true;
        }
    }
    return false;
}

// A name with a dot in it, in two tokens that touch.
bool AdviseOnDots(Case* it, const Token& token) {
    const char* const at = token.text.data();
    if (token.text.front() != '.' || token.text.size() < 2) {
        return false;
    }
    const bool isGlued = at > it->operand->text.data() && HasClass(at[-1], CC_NAME);
    std::string_view part = token.text;
    if (isGlued) {
        const auto before = std::ranges::find_if(it->operand->tokens, [at](const Token& each) {
            return each.text.data() + each.text.size() == at;
        });
        part = it->statement.Span(before->text, token.text);
    }
    std::string name(part.substr(isGlued ? 0 : 1));
    std::ranges::replace(name, '.', '_');
    it->PointAt(part);
    it->Replace(part, name);
    it->advice.note = "write " + name + " here and in the definition: a name has no dots";
    return true;
}

// Commas between the values that follow each other, of the tokens from `first` to before `end`.
std::vector<TextEdit> CommasIn(const Case& it, std::size_t first, std::size_t end) {
    const std::vector<Token>& tokens = it.operand->tokens;
    std::vector<TextEdit> edits;
    for (std::size_t i = first; i < end; ++i) {
        if (tokens[i - 1].IsValue() && tokens[i].IsValue()) {
            const LinePart left = it.statement.PartOf(tokens[i - 1].text);
            const std::uint32_t start = left.offset + left.length;
            edits.push_back({{start, it.statement.PartOf(tokens[i].text).offset - start}, ","});
        }
    }
    return edits;
}

// A text with double quotes in it: the number 34 for each.
bool AdviseOnQuotes(Case* it) {
    const std::string_view text = it->operand->text;
    const bool isText = text.size() > 3 && text.front() == '"' && text.back() == '"' &&
                        std::ranges::none_of(it->operand->tokens, [](const Token& token) {
                            return token.text.find('"') == std::string_view::npos;
                        });
    if (!isText) {
        return false;
    }
    const std::string_view inner = it->statement.Typed(text.substr(1, text.size() - 2));
    std::string fix;
    std::string piece;
    const auto close = [&](bool isLast) {
        if (!piece.empty()) {
            fix += (fix.empty() ? "\"" : ",\"") + piece + "\"";
        }
        fix += isLast ? "" : fix.empty() ? "34" : ",34";
        piece.clear();
    };
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] != '"') {
            piece += inner[i];
            continue;
        }
        close(false);
        i += i + 1 < inner.size() && inner[i + 1] == '"' ? std::size_t{1} : 0;
    }
    close(true);
    it->PointAt(text);
    it->Replace(text, fix);
    it->advice.note = "write " + fix + ": a double quote in a string is the number 34";
    return true;
}

// Two values without anything between them: a comma, an operator or a semicolon is missing.
void AdviseOnTwoValues(Case* it, const Token& token) {
    const bool isData = HoldsWord(data, it->statement.mnemonic);
    if (AdviseOnDots(it, token) || (isData && AdviseOnQuotes(it))) {
        return;
    }
    it->PointAt(token.text);
    if (HoldsWord("# '", token.text)) {
        it->Replace(token.text, ";");
        it->advice.note = "begin the comment with a semicolon";
        return;
    }
    const auto index = static_cast<std::size_t>(&token - it->operand->tokens.data());
    const Token& before = it->operand->tokens[index - 1];
    const std::vector<TextEdit> comma =
        CommasIn(*it, isData ? 1 : index, isData ? it->operand->tokens.size() : index + 1);
    const bool isName =
        before.kind == TokenKind::registerName || before.kind == TokenKind::condition;
    const bool isKnown = token.kind != TokenKind::name || it->IsDefined(token.text);
    if ((isName || (isData && isKnown)) && HasFormWith(it->statement, comma)) {
        it->advice.edits = comma;
        it->advice.note = "add the comma: " + WriteNote(it->statement, comma).substr(6);
    } else if (!isKnown || before.code == OP_CLOSE) {
        it->Insert(token.text, "; ");
        it->advice.note = "begin the comment with a semicolon, or add the operator that is missing";
    } else {
        it->advice.note =
            "add the comma or operator that is missing, or begin a comment with a semicolon";
    }
}

bool IsComparing(const OperandView& operand) {
    return std::ranges::any_of(operand.tokens, [](const Token& token) {
        return token.code == OP_LESS || token.code == OP_GREATER || token.code == OP_EQUAL ||
               token.code == OP_LESS_EQUAL || token.code == OP_GREATER_EQUAL;
    });
}

// A bracket that is not closed, or not opened.
void AdviseOnBracket(Case* it, const Token& token, bool isOpened) {
    const OperandView& operand = *it->operand;
    const bool isMemory = operand.text.front() == '(' && operand.text.back() == ')';
    if (isMemory && !isOpened && IsComparing(operand)) {
        it->advice.note = "give each comparison a name by EQU and combine the names";
    } else if (isMemory && !isOpened && token.text.data() != &operand.text.back()) {
        it->PointAt(operand.text);
        it->Insert(operand.text, "0+");
        it->advice.note =
            "write 0+" + std::string(operand.text) + ": brackets at both ends mean memory";
    } else if (isOpened) {
        it->Replace(operand.text.substr(operand.text.size()), ")");
        it->advice.note = "close the bracket";
    } else {
        it->Replace(token.text, "");
        it->advice.note = "remove the bracket: it was not opened";
    }
}

// An operator at the start, where "&FF" is meant for a number.
void AdviseOnNoLeft(Case* it, const Token& token) {
    const auto next = static_cast<std::size_t>(&token - it->operand->tokens.data()) + 1;
    const bool isPrefix = token.text == "&" && next < it->operand->tokens.size();
    const std::string number =
        isPrefix ? NumberSpelling("0X" + std::string(it->operand->tokens[next].text)) : "";
    if (number.empty()) {
        it->advice.note = "add a value before " + std::string(token.text);
        return;
    }
    const std::string_view part = it->statement.Span(token.text, it->operand->tokens[next].text);
    it->PointAt(part);
    it->Replace(part, number);
}

// An expression that is no expression.
bool AdviseOnExpression(Case* it) {
    if (it->operand == nullptr) {
        return false;
    }
    const auto [kind, token] = FindExpressionFault(*it->operand);
    if (kind == ExpressionFault::none) {
        return false;
    }
    it->PointAt(token->text);
    const std::string text(token->text);
    std::string& note = it->advice.note;
    switch (kind) {
        case ExpressionFault::twoValues:
            AdviseOnTwoValues(it, *token);
            break;
        case ExpressionFault::noLeft:
            AdviseOnNoLeft(it, *token);
            break;
        case ExpressionFault::noRight:
            note = "add a value after " + text;
            break;
        case ExpressionFault::openBracket:
        case ExpressionFault::closeBracket:
            AdviseOnBracket(it, *token, kind == ExpressionFault::openBracket);
            break;
        case ExpressionFault::comparison:
            note = "give the comparison a name by EQU: it has no value in brackets";
            break;
        case ExpressionFault::longString:
            note = "use a string of one character: only DB and DM take longer ones";
            break;
        case ExpressionFault::emptyString:
            note = "put one character between the quotes";
            break;
        case ExpressionFault::openString:
            if (text.size() > 1) {
                it->Replace(it->statement.line.substr(it->statement.line.size()), "\"");
            }
            note = "close the string with a double quote";
            break;
        case ExpressionFault::emptyNumber:
            note = token->text == "B" || token->text == "H" || token->text == "O"
                       ? "choose another name: " + text + " alone reads as a number without digits"
                       : "add the digits after " + text;
            break;
        case ExpressionFault::largeNumber:
            note = "use at most 65535; a larger value has to be computed, as in 35000*2";
            break;
        case ExpressionFault::badToken:
            if (!AdviseOnDots(it, *token)) {
                note = "use numbers, names, strings in double quotes and operators";
            }
            break;
        case ExpressionFault::zeroDivisor:
            note = "divide by something else than 0";
            break;
        case ExpressionFault::none:
            break;
    }
    return true;
}

// An EQU that depends on itself. A chain that ends at an unknown name is explained there.
bool AdviseOnCircle(Case* it, const std::string& name) {
    std::vector<std::string> path;
    for (std::string next = name; !next.empty() && path.size() < 32;) {
        if (std::ranges::find(path, next) != path.end()) {
            it->advice.note = "give " + next + " a value: it depends on itself";
            it->advice.name = next;
            it->advice.definesName = true;
            return true;
        }
        path.push_back(next);
        const auto known = it->adviser.Facts().FindName(next);
        next.clear();
        if (!known || known->waitingLine.empty()) {
            break;
        }
        const StatementView definition = CutStatement(known->waitingLine);
        for (const OperandView& operand : definition.operands) {
            for (const Token& token : operand.tokens) {
                if (token.kind == TokenKind::name && !it->IsDefined(token.text)) {
                    next = token.text;
                }
            }
        }
    }
    it->advice.isFollowOn = path.size() > 1;
    return it->advice.isFollowOn;
}

// "XAND3": a word operator without blanks.
bool AdviseOnGluedOperator(Case* it, const Token& token) {
    for (const std::string_view word : {"AND", "XOR", "OR", "SHL", "SHR", "MOD"}) {
        const std::size_t at = token.text.find(word, 1);
        if (at == std::string_view::npos || at + word.size() == token.text.size()) {
            continue;
        }
        const auto isKnown = [it](std::string_view part) {
            const std::vector<Token> tokens = CutTokens(part);
            return tokens.size() == 1 &&
                   (tokens[0].kind == TokenKind::number || it->IsDefined(part));
        };
        const std::string_view left = token.text.substr(0, at);
        const std::string_view right = token.text.substr(at + word.size());
        if (isKnown(left) && isKnown(right)) {
            const std::string fix =
                std::string(left) + " " + std::string(word) + " " + std::string(right);
            it->Replace(token.text, fix);
            it->advice.note = "write " + fix + ": " + std::string(word) + " needs blanks around it";
            return true;
        }
    }
    return false;
}

// A name that has no value.
bool AdviseOnUnknownName(Case* it) {
    const std::string_view text = it->fault.text;
    const Token* token = it->operand == nullptr ? nullptr : FindToken(*it->operand, text);
    if (token == nullptr && it->operand != nullptr) {
        const auto found = std::ranges::find_if(it->operand->tokens, [it](const Token& each) {
            const bool isName = each.kind == TokenKind::name || each.kind == TokenKind::digitName ||
                                each.kind == TokenKind::registerName ||
                                each.kind == TokenKind::condition;
            return isName && (!it->IsDefined(each.text) || it->fault.number == MSG_NOT_IMMEDIATE);
        });
        token = found == it->operand->tokens.end() ? nullptr : &*found;
    }
    if (token == nullptr) {
        return false;
    }
    it->PointAt(token->text);
    const std::string name(token->text);
    std::string& note = it->advice.note;
    if (token->kind == TokenKind::registerName || token->kind == TokenKind::condition) {
        const bool isSum = std::ranges::any_of(it->operand->tokens, [](const Token& each) {
            return each.code == OP_PLUS || each.code == OP_MINUS;
        });
        note = (isSum ? "add with ADD, INC, SUB or DEC: " : "use a number or a name: ") + name +
               " is a register or condition, and expressions have none";
        return true;
    }
    if (FindKeyword(token->text) != nullptr) {
        note = "use a name that is defined: " + name + " is an instruction";
        return true;
    }
    if (AdviseOnCircle(it, name) || AdviseOnGluedOperator(it, *token)) {
        return true;
    }
    if (const auto known = it->adviser.Facts().FindName(token->text); known && known->hasValue) {
        note = "define " + name + " above this line: " + std::string(it->statement.mnemonic) +
               " needs its value at once";
        return true;
    }
    if (const std::string_view near = it->adviser.NearestName(token->text); !near.empty()) {
        it->Replace(token->text, std::string(near));
        note = "did you mean " + std::string(near) + "?";
        return true;
    }
    if (token->kind == TokenKind::digitName) {
        note = "begin the name with a letter, or write a number as 255, 0FFH, $FF, 1010B or %1010";
        return true;
    }
    if (it->fault.number == MSG_NOT_IMMEDIATE || HoldsWord("IF COND", it->statement.mnemonic)) {
        note = "define " + name + " above this line, or by -D " + name + "=1";
    }
    return true;
}

// A register or condition where a value belongs, in data and the like.
bool AdviseOnRegister(Case* it) {
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

// A proposed "M+0" where there is no name M leads to the next error.
bool ProposesUnknownName(const Case& it) {
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
bool AdviseOnM(Case* it) {
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
bool AdviseOnBareText(Case* it) {
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

bool AdviseOnShape(Case* it) {
    if (AdviseOnBareText(it)) {
        return true;
    }
    if (!Take(it, OperandAdvice(it->statement, it->fault.number))) {
        return AdviseOnM(it);
    }
    if (ProposesUnknownName(*it)) {
        it->advice.edits.clear();
        it->advice.note.clear();
        return AdviseOnM(it);
    }
    return true;
}

// The forms that agree with the operands before the fault.
void AdviseOnForms(Case* it) {
    const std::size_t faulty = FindFaultyOperand(it->statement);
    if (faulty == noFault) {
        return;
    }
    const std::vector<std::string> choices = ChoicesAt(it->statement, faulty);
    if (choices.empty() && faulty < it->statement.operands.size() &&
        it->statement.keyword != nullptr) {
        const std::string text(it->statement.operands[faulty].text);
        const std::int32_t most = it->statement.keyword->operands.most;
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

bool AdviseOnEmptyOperand(Case* it) {
    const auto empty =
        std::ranges::find(it->statement.operands, std::string_view(), &OperandView::text);
    if (empty == it->statement.operands.end()) {
        return false;
    }
    const std::size_t at = it->statement.PartOf(empty->text).offset;
    const std::size_t comma = it->statement.line.rfind(',', at);
    it->PointAt(it->statement.line.substr(std::min(comma, at), 1));
    it->advice.note = "add the operand, or remove the comma";
    return true;
}

}  // namespace

bool IsNumberedLabel(const StatementView& statement) {
    if (!HoldsWord(jumps, statement.mnemonic) || statement.operands.empty()) {
        return false;
    }
    const std::string_view text = statement.operands.back().text;
    return text.size() == 2 && HasClass(text[0], CC_DIGIT) && (text[1] == 'F' || text[1] == 'B');
}

Advice AdviseOnOperands(Adviser& adviser, const FaultView& fault) {
    Case it{adviser, fault, fault.statement, FocusOf(fault)};
    const bool isCount =
        fault.number == MSG_TOO_MANY_ARGUMENTS || fault.number == MSG_ARGUMENT_EXPECTED;
    const std::size_t faulty = FindFaultyOperand(fault.statement);
    if (it.operand != nullptr) {
        it.PointAt(it.operand->text);
    } else if (isCount && faulty == fault.statement.operands.size()) {
        it.PointAt(fault.statement.mnemonic);
    }
    if (AdviseOnSet(&it) || AdviseOnSeparator(&it) || AdviseOnIndexHalf(&it) ||
        AdviseOnSpelling(&it) || AdviseOnRegister(&it)) {
        return it.advice;
    }
    const bool isValue = it.operand != nullptr && it.operand->what.kind == KIND_VALUE;
    const bool isData = HoldsWord("DB DEFB DW DEFW DS DEFS", fault.statement.mnemonic);
    if (isValue && (isCount || isData || fault.number != MSG_ILLEGAL_ARGUMENT) &&
        AdviseOnExpression(&it)) {
        return it.advice;
    }
    if (fault.number == MSG_UNRESOLVED || fault.number == MSG_NOT_IMMEDIATE) {
        AdviseOnUnknownName(&it);
        return it.advice;
    }
    if (fault.number == MSG_TOO_COMPLEX) {
        it.advice.note = "give a part of it a name by EQU: an expression has at most 19 parts";
        return it.advice;
    }
    if (fault.number == MSG_BAD_EXPRESSION) {
        it.advice.note = "check for a division by 0 and for names that are not values";
        return it.advice;
    }
    if (AdviseOnEmptyOperand(&it) || AdviseOnShape(&it) || (isValue && AdviseOnExpression(&it))) {
        return it.advice;
    }
    AdviseOnForms(&it);
    return it.advice;
}

}  // namespace korv
