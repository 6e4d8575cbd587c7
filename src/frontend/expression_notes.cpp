// Advice on expressions whose tokens do not fit together.

#include <algorithm>

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

// Edits that insert the missing commas before the tokens from `first` up to, but not including,
// `end`: between two values, and before the sign of a value, as in "3 -4".
std::vector<TextEdit> CommasIn(const OperandCase& it, std::size_t first, std::size_t end) {
    const std::vector<Token>& tokens = it.operand->tokens;
    std::vector<TextEdit> edits;
    for (std::size_t i = first; i < end; ++i) {
        const bool isAfterValue = tokens[i - 1].IsValue() || tokens[i - 1].code == OP_CLOSE;
        const LinePart left = it.statement.PartOf(tokens[i - 1].text);
        const LinePart here = it.statement.PartOf(tokens[i].text);
        const std::uint32_t start = left.offset + left.length;
        const bool isSigned =
            tokens[i].code == OP_MINUS && here.offset > start && i + 1 < end &&
            it.statement.PartOf(tokens[i + 1].text).offset == here.offset + here.length;
        if (isAfterValue && (tokens[i].IsValue() || tokens[i].code == OP_OPEN || isSigned)) {
            edits.push_back({{start, here.offset - start}, ","});
        }
    }
    return edits;
}

// A name with a dot before or inside it. A dot inside splits the name into two tokens.
bool AdviseOnDots(OperandCase* it, const Token& token) {
    const char* const at = token.text.data();
    if (token.text.front() != '.') {
        return false;
    }
    const bool isGlued = HasClass(at[-1], CC_NAME);
    std::string_view part = token.text;
    if (isGlued) {
        const auto before = std::ranges::find_if(it->operand->tokens, [at](const Token& each) {
            return each.text.data() + each.text.size() == at;
        });
        part = it->statement.Span(before->text, token.text);
    }
    std::string name(part.substr(isGlued ? 0 : 1));
    if (name.find_first_not_of("0123456789.") == std::string::npos) {
        it->PointAt(part);
        it->advice.note = "use whole numbers, and commas between them: there are no fractions";
        return true;
    }
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos && it->IsDefined(name.substr(0, dot)) &&
        it->IsDefined(name.substr(dot + 1))) {  // "DW X.Y"
        const bool isData = HoldsWord(dataDirectives, it->statement.mnemonic);
        return it->Propose(part, {{it->statement.PartOf(part.substr(dot, 1)), isData ? "," : "+"}});
    }
    const std::string_view head = part.substr(0, std::min(dot, part.size()));
    const bool isIndex = HoldsWord("IX IY", head);  // "(IX.Y)", "IX.Y"
    std::vector<TextEdit> edits = {
        {it->statement.PartOf(part.substr(head.size(), 1)), isIndex ? "+" : " "}};
    if (part == it->operand->text) {
        edits.insert(edits.begin(), {it->statement.PartOf(part.substr(0, 0)), "("});
        edits.push_back({it->statement.PartOf(part.substr(part.size())), ")"});
    }
    if (IsSound(it->adviser.Facts(), it->statement, edits)) {
        return it->Propose(part, edits);
    }
    std::ranges::replace(name, '.', '_');
    it->PointAt(part);
    it->Replace(part, name);
    it->advice.note = "write " + name + " here and in the definition: a name has no dots";
    return true;
}

// The first token of a comment that lacks its semicolon: an unknown name, or the "--" before it,
// after a complete statement. Null if there is none.
const Token* FindProse(const OperandCase& it) {
    for (const OperandView& operand : it.statement.operands) {
        const std::vector<Token>& tokens = operand.tokens;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            const bool isDashed =
                i > 1 && it.statement.Span(tokens[i - 2].text, tokens[i - 1].text) == "--";
            const bool isInList = HoldsWord(dataDirectives, it.statement.mnemonic) &&
                                  &operand != &it.statement.operands.back();
            const bool isExpected = i == 0 && (tokens.size() == 1 || !tokens[1].IsValue());
            if (tokens[i].kind != TokenKind::name || it.IsDefined(tokens[i].text) ||
                HoldsWord("PLUS MINUS TIMES X IS", tokens[i].text) || isInList || isExpected) {
                continue;
            }
            const Token& start = tokens[isDashed ? i - 2 : i];
            const StatementView rest =
                CutStatement(it.statement.line.substr(0, it.statement.PartOf(start.text).offset));
            const bool isWhole = std::ranges::all_of(rest.operands, [&it](const auto& each) {
                return each.what.kind != KIND_VALUE ||
                       (FindExpressionFault(each).fault == ExpressionFault::none &&
                        std::ranges::all_of(each.tokens, [&it](const Token& token) {
                            return token.kind != TokenKind::name || it.IsDefined(token.text);
                        }));
            });
            if (isWhole && HasForm(rest)) {
                return &start;
            }
        }
    }
    return nullptr;
}

// Two values without anything between them: a comma, an operator or a semicolon is missing.
void AdviseOnTwoValues(OperandCase* it, const Token& token) {
    const bool isData = HoldsWord(dataDirectives, it->statement.mnemonic);
    if (AdviseOnDots(it, token) || (isData && AdviseOnQuotes(it))) {
        return;
    }
    if (token.code == OP_OPEN && &token == &it->operand->tokens.back()) {
        it->Replace(token.text, "");
        it->advice.note = "remove the bracket";
        return;
    }
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
    if (AdviseOnWordOperator(it, token) || AdviseOnWordOperator(it, before)) {
        return;
    }
    const bool isUnknown = before.kind == TokenKind::name && !it->IsDefined(before.text);
    if (AdviseOnSplitNumber(it, before, token)) {
        return;
    }
    if (!comma.empty() && (isName || isKnown) && !isUnknown && HasFormWith(it->statement, comma)) {
        it->Propose(token.text, comma, "add the comma: ");
        const bool isDigits =  // "DB 1,2 3"
            before.kind == TokenKind::number && token.kind == TokenKind::number && isData;
        if (isDigits && it->statement.operands.size() > 1) {
            it->advice.note = "add the comma, or remove the blank";
        }
        return;
    }
    if (AdviseOnProse(it) || (isName && AdviseOnSeparated(it, token.text, comma))) {
        return;
    }
    const std::string typed(it->statement.Typed(token.text));
    const bool isRegister =
        isName || token.kind == TokenKind::registerName || token.kind == TokenKind::condition;
    if (token.code == OP_OPEN && isUnknown) {
        it->advice.note = "write the value out: there are no functions";
    } else if (isRegister && IsSound(it->adviser.Facts(), it->statement,
                                     {{it->statement.PartOf(token.text), ""}})) {
        it->advice.note = "remove " + typed + ", or begin a comment with a semicolon";
    } else {
        it->advice.note = "an operator, a comma or a semicolon is missing before " + typed;
    }
}

// True for a jump to "+" or "--", which are labels in other assemblers.
bool IsAnonymousLabel(const StatementView& statement, std::string_view text) {
    return HoldsWord("JP JR CALL DJNZ", statement.mnemonic) &&
           text.find_first_not_of("+-") == std::string_view::npos;
}

// A closing bracket without an opening one, in an operand with `opens` opening brackets.
void AdviseOnExtraBracket(OperandCase* it, const Token& token, std::ptrdiff_t opens) {
    const OperandView& operand = *it->operand;
    const bool isLast = operand.text.ends_with(')');
    const std::string_view bracket =
        isLast ? operand.text.substr(operand.text.size() - 1) : token.text;
    const std::vector<TextEdit> open = {{it->statement.PartOf(operand.text.substr(0, 0)), "("}};
    const bool isMissing = opens == 0 && !HoldsWord(dataDirectives, it->statement.mnemonic) &&
                           HasFormWith(it->statement, open);
    it->PointAt(bracket);
    if (!isLast || (isMissing && IsSound(it->adviser.Facts(), it->statement,
                                         {{it->statement.PartOf(bracket), ""}}))) {
        it->advice.note = "remove the bracket, or open it at the start of the operand";
    } else if (isMissing) {
        it->PointAt(operand.text);
        it->advice.edits = open;
        it->advice.note = "open the bracket";
    } else {
        it->Replace(bracket, "");
        it->advice.note = "remove the bracket: it was not opened";
    }
}

// A bracket without its counterpart.
void AdviseOnBracket(OperandCase* it, const Token& token, bool isOpened) {
    const OperandView& operand = *it->operand;
    const auto count = [&operand](std::int32_t code) {
        return std::ranges::count(operand.tokens, code, &Token::code);
    };
    if (isOpened) {
        it->Replace(operand.text.substr(operand.text.size()), ")");
        const bool isEither =
            operand.tokens.size() > 2 && HoldsWord("LD IN OUT", it->statement.mnemonic);
        it->advice.note = !isEither && HasFormWith(it->statement, it->advice.edits)
                              ? "close the bracket"
                              : "remove the bracket, or close it";
    } else if (count(OP_CLOSE) > count(OP_OPEN)) {
        AdviseOnExtraBracket(it, token, count(OP_OPEN));
    } else if (std::ranges::any_of(operand.tokens, IsComparison, &Token::code)) {
        it->advice.note = "give each comparison a name by EQU and combine the names";
    } else {
        it->PointAt(operand.text);
        it->Insert(operand.text, "0+");
        it->advice.note =
            "write 0+" + std::string(operand.text) + ": brackets at both ends mean memory";
    }
}

// An operator without a value before it, such as the "&" in "&FF", which is meant as a number.
void AdviseOnNoLeft(OperandCase* it, const Token& token) {
    const auto next = static_cast<std::size_t>(&token - it->operand->tokens.data()) + 1;
    const bool isPrefix = token.text == "&" && next < it->operand->tokens.size();
    const std::string_view value = isPrefix ? it->operand->tokens[next].text : std::string_view();
    if (const std::string number = NumberSpelling("0X" + std::string(value)); !number.empty()) {
        const std::string_view part = it->statement.Span(token.text, value);
        it->PointAt(part);
        it->Replace(part, number);
    } else if (it->IsDefined(value)) {
        it->Replace(token.text, "");  // "&NAME", an address in C
        it->advice.note = WriteNote(it->statement, it->advice.edits);
    } else {
        const std::string text(token.text);
        it->advice.note = it->IsDefined(text) ? "choose another name, which is no operator: " + text
                                              : text + " needs a value before it";
    }
}

// A string of several characters where one value is expected.
void AdviseOnLongString(OperandCase* it, const Token& token) {
    const std::string text(token.text.substr(1, token.text.size() - 2));
    const std::string value = EscapeValue(text);
    if (it->IsDefined(Raised(text)) && !HoldsWord(dataDirectives, it->statement.mnemonic) &&
        IsSound(it->adviser.Facts(), it->statement,
                {{it->statement.PartOf(token.text), Raised(text)}})) {
        it->Replace(token.text, Raised(text));
        it->advice.note = "write " + Raised(text) + ": a name has no quotes";
    } else if (const std::vector<Token> tokens = CutTokens(text);
               tokens.size() == 1 && tokens[0].kind == TokenKind::number) {
        it->Replace(token.text, text);
        it->advice.note = "write " + text + ": a number has no quotes";
    } else if (!value.empty()) {
        it->Replace(token.text, value);
        it->advice.note = "write " + value + ": there are no escape sequences";
    } else if (HoldsWord("DM DEFM", it->statement.mnemonic) && it->operand->tokens.size() == 3) {
        it->Replace(it->operand->text, std::string(token.text));  // DM ("text")
        it->advice.note = WriteNote(it->statement, it->advice.edits);
    } else {
        it->advice.note = HoldsWord("DB DEFB", it->statement.mnemonic)
                              ? "write a string of several characters as an operand of its own"
                              : "use a string of one character: only DB and DM take longer ones";
    }
}

std::string EmptyNumberNote(const OperandCase& it, const Token& token) {
    const std::string text(token.text);
    if (token.kind == TokenKind::registerName && !it.IsDefined(text)) {
        return "add with ADD, INC, SUB or DEC: " + text +
               " is a register, and expressions have none";
    }
    return HoldsWord("B H O", text)
               ? "choose another name: " + text + " alone reads as a number without digits"
               : "add the digits after " + text;
}

// A token that the language does not have, perhaps only because of its last character.
void AdviseOnBadToken(OperandCase* it, const Token& token) {
    const std::string_view text = token.text;
    const std::string_view last = text.substr(text.size() - 1);
    if (text.find('"') == text.size() - 1) {
        it->Replace(last, "");
        it->advice.note = "remove the quote: it was not opened";
    } else if (const std::size_t quote = text.find('"');
               HasClass(text.front(), CC_DIGIT) && text.ends_with('"')) {    // "34"text""
        const std::size_t end = text[quote - 1] == '.' ? quote - 1 : quote;  // "34."text""
        it->Replace(text.substr(end, quote - end), ",");
        it->advice.note =
            "add the comma: " + std::string(it->statement.Typed(text.substr(0, end))) + "," +
            std::string(text.substr(quote));
    } else if (HoldsWord(". '", last)) {
        it->Replace(last, "");
        it->advice.note = WriteNote(it->statement, it->advice.edits);
    } else if (!AdviseOnDots(it, token)) {
        it->advice.note = "use numbers, names, strings in double quotes and operators";
    }
}

}  // namespace

bool AdviseOnProse(OperandCase* it) {
    const Token* const start = FindProse(*it);
    if (start == nullptr) {
        return false;
    }
    it->PointAt(start->text);
    it->Insert(start->text, "; ");
    it->advice.note = "begin the comment with a semicolon";
    const bool isAfterValue = start->kind == TokenKind::name &&
                              std::ranges::none_of(it->statement.operands, [&](const auto& each) {
                                  return each.text.data() == start->text.data();
                              });
    if (isAfterValue) {
        it->advice.note +=
            ", or add what is missing before " + std::string(it->statement.Typed(start->text));
    }
    return true;
}

// An expression that cannot be evaluated.
bool AdviseOnExpression(OperandCase* it) {
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
            note = IsAnonymousLabel(it->statement, it->operand->text)
                       ? anonymousLabelNote
                       : text + " needs a value after it";
            break;
        case ExpressionFault::openBracket:
        case ExpressionFault::closeBracket:
            AdviseOnBracket(it, *token, kind == ExpressionFault::openBracket);
            break;
        case ExpressionFault::comparison:
            note = "give the comparison a name by EQU: it has no value in brackets";
            break;
        case ExpressionFault::longString:
            AdviseOnLongString(it, *token);
            break;
        case ExpressionFault::emptyString:
            note = "put one character between the quotes";
            break;
        case ExpressionFault::openString:
            CloseString(it, token->text);
            note = closeQuoteNote;
            break;
        case ExpressionFault::emptyNumber:
            if (text == "O" && !it->IsDefined(text)) {
                it->Replace(token->text, "0");
                note = "write 0: O is a letter";
                break;
            }
            note = EmptyNumberNote(*it, *token);
            break;
        case ExpressionFault::largeNumber:
            note = largeNumberNote;
            break;
        case ExpressionFault::badToken:
            AdviseOnBadToken(it, *token);
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
