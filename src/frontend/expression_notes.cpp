// Expressions whose tokens do not fit together.

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/operand_case.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Commas between the values that follow each other, of the tokens from `first` to before `end`.
std::vector<TextEdit> CommasIn(const OperandCase& it, std::size_t first, std::size_t end) {
    const std::vector<Token>& tokens = it.operand->tokens;
    std::vector<TextEdit> edits;
    for (std::size_t i = first; i < end; ++i) {
        const bool isAfterValue = tokens[i - 1].IsValue() || tokens[i - 1].code == OP_CLOSE;
        if (isAfterValue && (tokens[i].IsValue() || tokens[i].code == OP_OPEN)) {
            const LinePart left = it.statement.PartOf(tokens[i - 1].text);
            const std::uint32_t start = left.offset + left.length;
            edits.push_back({{start, it.statement.PartOf(tokens[i].text).offset - start}, ","});
        }
    }
    return edits;
}

// A text with double quotes in it: the number 34 for each.
bool AdviseOnQuotes(OperandCase* it) {
    const std::string_view text = it->operand->text;
    const bool isText = text.size() > 3 && text.front() == '"' && text.back() == '"' &&
                        std::ranges::none_of(it->operand->tokens, [](const Token& token) {
                            return token.text.find('"') == std::string_view::npos;
                        });
    const bool hasBlanks =
        std::ranges::adjacent_find(it->operand->tokens, [](const Token& one, const Token& next) {
            return one.text.data() + one.text.size() != next.text.data();
        }) != it->operand->tokens.end();
    if (!isText || hasBlanks) {
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
        if (piece.ends_with('\\')) {  // as in "say \"hi\""
            piece.pop_back();
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

// A name with a dot in it, in two tokens that touch.
bool AdviseOnDots(OperandCase* it, const Token& token) {
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

// Two values without anything between them: a comma, an operator or a semicolon is missing.
void AdviseOnTwoValues(OperandCase* it, const Token& token) {
    const bool isData = HoldsWord(dataDirectives, it->statement.mnemonic);
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
    if (AdviseOnGluedOperator(it, token)) {
        return;
    }
    if (!comma.empty() && (isName || isKnown) && HasFormWith(it->statement, comma)) {
        it->advice.edits = comma;
        it->advice.note = "add the comma: " + WriteNote(it->statement, comma).substr(6);
    } else if (!isKnown || before.code == OP_CLOSE) {
        it->Insert(token.text, "; ");
        it->advice.note = "begin the comment with a semicolon, or add the operator that is missing";
    } else {
        const bool isRegister =
            isName || token.kind == TokenKind::registerName || token.kind == TokenKind::condition;
        it->advice.note = isRegister ? "remove " + std::string(it->statement.Typed(token.text)) +
                                           ", or begin a comment with a semicolon"
                                     : "add the operator that is missing, or begin a comment with "
                                       "a semicolon";
    }
}

bool IsComparing(const OperandView& operand) {
    return std::ranges::any_of(operand.tokens, [](const Token& token) {
        return token.code == OP_LESS || token.code == OP_GREATER || token.code == OP_EQUAL ||
               token.code == OP_LESS_EQUAL || token.code == OP_GREATER_EQUAL;
    });
}

// A bracket that is not closed, or not opened.
void AdviseOnBracket(OperandCase* it, const Token& token, bool isOpened) {
    const OperandView& operand = *it->operand;
    const bool isMemory = operand.text.front() == '(' && operand.text.back() == ')';
    const auto count = [&operand](std::int32_t code) {
        return std::ranges::count(operand.tokens, code, &Token::code);
    };
    if (!isOpened && count(OP_CLOSE) > count(OP_OPEN)) {
        const std::vector<TextEdit> open = {{it->statement.PartOf(operand.text.substr(0, 0)), "("}};
        const bool isMissing =
            HasFormWith(it->statement, open) && operand.text.back() == ')' && count(OP_OPEN) == 0;
        const std::string_view last = operand.text.substr(operand.text.size() - 1);
        it->PointAt(isMissing ? operand.text : operand.text.back() == ')' ? last : token.text);
        it->advice.edits = isMissing ? open : std::vector<TextEdit>{{*it->advice.place, ""}};
        it->advice.note = isMissing ? "open the bracket" : "remove the bracket: it was not opened";
        return;
    }
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
void AdviseOnNoLeft(OperandCase* it, const Token& token) {
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

}  // namespace

// An expression that is no expression.
bool AdviseOnExpression(OperandCase* it) {
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
            if (const std::string name = Raised(text.substr(1, text.size() - 2));
                it->IsDefined(name)) {
                it->Replace(token->text, name);
                note = "write " + name + ": a name has no quotes";
                break;
            }
            note = "use a string of one character: only DB and DM take longer ones";
            break;
        case ExpressionFault::emptyString:
            note = "put one character between the quotes";
            break;
        case ExpressionFault::openString:
            if (text.size() > 2 && text.ends_with('\'')) {
                it->Replace(token->text.substr(text.size() - 1), "\"");
            } else if (text.size() > 1) {
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
            if (text.ends_with('"') && std::ranges::count(text, '"') == 1) {
                it->Insert(token->text, "\"");
                note = "open the string with a double quote";
            } else if (!AdviseOnDots(it, *token)) {
                note = "use numbers, names, strings in double quotes and operators";
            }
            break;
        case ExpressionFault::tooComplex:
            it->PointAt(it->operand->text);
            note = "give a part of it a name by EQU: an expression has at most 19 parts";
            break;
        case ExpressionFault::zeroDivisor:
            note = "divide by something else than 0";
            break;
        case ExpressionFault::none:
            break;
    }
    return true;
}

}  // namespace korv
