// Advice on names without a value.

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "source/char_class.h"

namespace korv {
namespace {

// An EQU that depends on itself. A chain of EQUs that ends at an unknown name is reported at that
// name.
bool AdviseOnCircle(OperandCase* it, const std::string& name) {
    std::vector<std::string> path;
    for (std::string next = name; !next.empty() && path.size() < 32;) {
        if (std::ranges::find(path, next) != path.end()) {
            it->advice.note = "give " + next + " a value: it depends on itself";
            it->advice.names = path;
            it->advice.definesName = true;
            return true;
        }
        path.push_back(next);
        const KnownName known = it->adviser.Facts().FindName(next).value_or(KnownName{});
        next.clear();
        const StatementView definition = CutStatement(known.waitingLine);
        for (const OperandView& operand : definition.operands) {
            for (const Token& token : operand.tokens) {
                const bool isName = token.kind == TokenKind::name ||
                                    token.kind == TokenKind::digitName ||
                                    token.kind == TokenKind::other;
                if (isName && !it->IsDefined(token.text)) {
                    next = token.text;
                }
            }
        }
    }
    if (path.size() == 1) {
        return false;
    }
    it->advice.isFollowOn =
        it->adviser.IsExplained(path.back()) || !HoldsWord("IF COND", it->statement.mnemonic);
    it->advice.note =
        "check the EQU of " + path[path.size() - 2] + ": " + path.back() + " has no value here";
    return true;
}

}  // namespace

// A glued or misspelt word operator: "XAND3" or "X ADN 3".
bool AdviseOnWordOperator(OperandCase* it, const Token& token) {
    if (HoldsWord("SRL SRA SLA", token.text) && &token != it->operand->tokens.data()) {
        return it->Propose(
            token.text, {{it->statement.PartOf(token.text), token.text == "SLA" ? "SHL" : "SHR"}});
    }
    for (const std::string_view word : {"AND", "XOR", "OR", "SHL", "SHR", "MOD"}) {
        const std::vector<TextEdit> edits = {{it->statement.PartOf(token.text), std::string(word)}};
        if (EditDistance(token.text, word) == 1 &&
            IsSound(it->adviser.Facts(), it->statement, edits)) {
            it->advice.edits = edits;
            it->advice.note = "did you mean " + std::string(word) + "?";
            return true;
        }
        const std::size_t at = token.text.find(word);
        if (at == std::string_view::npos) {
            continue;
        }
        const auto isKnown = [it](std::string_view part) {
            const std::vector<Token> tokens = CutTokens(part);
            return tokens.size() == 1 &&
                   (tokens[0].kind == TokenKind::number || it->IsDefined(part));
        };
        const std::string_view left = token.text.substr(0, at);
        const std::string_view right = token.text.substr(at + word.size());
        const bool isBeforeValue =  // "1SHL 5"
            right.empty() && &token != &it->operand->tokens.back() && (&token)[1].IsValue();
        const bool isAfterValue = &token != it->operand->tokens.data() && left.empty();
        if ((isKnown(left) || isAfterValue) && (isKnown(right) || isBeforeValue)) {
            const std::string fix = std::string(left) + (left.empty() ? "" : " ") +
                                    std::string(word) + (right.empty() ? "" : " ") +
                                    std::string(right);
            it->Replace(token.text, fix);
            it->advice.note = WriteNote(it->statement, it->advice.edits) + ": " +
                              std::string(word) + " needs blanks around it";
            return true;
        }
    }
    return false;
}

namespace {

// A defined name that has 1 for an L in `name`, or 0 for an O, or vice versa.
std::string NameThatLooksLike(const OperandCase& it, const std::string& name) {
    constexpr std::string_view signs = "L1O0";
    std::string other = name;
    for (char& c : other) {
        const std::size_t at = signs.find(c);
        if (at == std::string_view::npos) {
            continue;
        }
        c = signs[at ^ 1U];
        if (it.IsDefined(other)) {
            return other;
        }
        c = signs[at];
    }
    return "";
}

// The name whose missing value caused the message. If a value is needed at once, this may be a name
// that is defined later in the source. Null if there is none.
const Token* FindUnknown(const OperandCase& it) {
    if (it.operand == nullptr) {
        return nullptr;
    }
    if (const Token* const token = FindToken(*it.operand, it.fault.text)) {
        return token;
    }
    const bool isImmediate =
        it.fault.number == MSG_NOT_IMMEDIATE || HoldsWord("IF COND", it.statement.mnemonic);
    for (const bool takesDefined : {false, true}) {
        for (const Token& each : it.operand->tokens) {
            const bool isName = each.kind == TokenKind::name || each.kind == TokenKind::digitName ||
                                each.kind == TokenKind::registerName ||
                                each.kind == TokenKind::condition;
            if (isName && (takesDefined ? isImmediate : !it.IsDefined(each.text))) {
                return &each;
            }
        }
    }
    return nullptr;
}

// A register or condition in an expression.
bool AdviseOnNamedRegister(OperandCase* it, const Token& token) {
    const bool isOne =  // "5+l"
        it->statement.Typed(token.text) == "l" && &token != it->operand->tokens.data();
    if (isOne || (token.kind != TokenKind::registerName && token.kind != TokenKind::condition)) {
        return false;
    }
    const bool isSum = std::ranges::any_of(it->operand->tokens, [](const Token& each) {
        return each.code == OP_PLUS || each.code == OP_MINUS;
    });
    const std::string_view sum = it->operand->text;
    const std::vector<TextEdit> memory = {
        {it->statement.PartOf(sum), "(" + std::string(it->statement.Typed(sum)) + ")"}};
    if (isSum && sum.starts_with('I') && HasFormWith(it->statement, memory)) {  // "IX+5"
        return it->Propose(sum, memory);
    }
    it->advice.note = (isSum ? "add with ADD, INC, SUB or DEC: " : "use a number or a name: ") +
                      std::string(token.text) +
                      " is a register or condition, and expressions have none";
    return true;
}

// "OFFH", "LO" and "1O0", which have a letter in place of a digit.
bool AdviseOnLetterForDigit(OperandCase* it, const Token& token) {
    std::string digits(token.text);
    const std::size_t letter = digits.find_first_of("OLI");
    const bool isWord = token.text.size() > 2 && !token.text.ends_with('H') &&  // "LOB"
                        token.text.find_first_of(decimalDigits) == std::string_view::npos;
    if (isWord || (letter != 0 && token.kind != TokenKind::digitName)) {
        return false;
    }
    const bool hasSuffix = it->statement.Typed(token.text).ends_with('L');  // "1000L", as in C
    std::ranges::replace(digits, 'O', '0');
    std::ranges::replace(digits, 'L', '1');
    std::ranges::replace(digits, 'I', '1');
    if (const std::string spelled = NumberSpelling(digits); digits.starts_with("0X")) {
        digits = spelled;
    }
    const std::vector<Token> tokens = CutTokens(digits);
    if (hasSuffix || tokens.size() != 1 || tokens[0].kind != TokenKind::number) {
        return false;
    }
    it->Replace(token.text, digits);
    it->advice.note =
        "write " + digits + ": " + std::string(token.text.substr(letter, 1)) + " is a letter";
    return true;
}

// A defined name with a similar spelling, or "A_B" for A-B and "AX3" for A*3.
bool AdviseOnNearName(OperandCase* it, const Token& token) {
    const auto isValue = [it](std::string_view text) {
        return it->IsDefined(text) || text.find_first_not_of(decimalDigits) == text.npos;
    };
    for (std::size_t i = 1; i + 1 < token.text.size(); ++i) {
        const char sign = token.text[i] == '_' ? '-' : '*';
        if ((sign == '-' || token.text[i] == 'X') && isValue(token.text.substr(0, i)) &&
            isValue(token.text.substr(i + 1))) {
            return it->Propose(token.text,
                               {{it->statement.PartOf(token.text.substr(i, 1)), {sign}}});
        }
    }
    const std::string_view stem =
        token.text.substr(std::min(token.text.find_first_not_of(decimalDigits), token.text.size()));
    if (it->IsDefined(stem)) {  // "2WIDTH"
        it->advice.note = "put an operator before " + std::string(it->statement.Typed(stem));
        return true;
    }
    std::string near = NameThatLooksLike(*it, std::string(token.text));
    if (near.empty()) {
        near = it->adviser.NearestName(token.text);
    }
    if (near.empty()) {
        return false;
    }
    it->Replace(token.text, near);
    it->advice.note = "did you mean " + near + "?";
    it->advice.names = {std::string(token.text)};
    it->advice.newName = near;
    return true;
}

}  // namespace

// A name that has no value.
void AdviseOnUnknownName(OperandCase* it) {
    const Token* const token = FindUnknown(*it);
    if (token == nullptr) {
        return;
    }
    it->PointAt(token->text);
    const std::string name(token->text);
    std::string& note = it->advice.note;
    if (AdviseOnNamedRegister(it, *token)) {
        return;
    }
    if (FindKeyword(token->text) != nullptr) {
        note = "use a name that is defined: " + name + " is an instruction";
        return;
    }
    if (HoldsWord("@B @F @@", name)) {
        note = anonymousLabelNote;
        return;
    }
    if (AdviseOnCircle(it, name) || AdviseOnWordOperator(it, *token) || AdviseOnProse(it)) {
        return;
    }
    if (const auto known = it->adviser.Facts().FindName(token->text); known && known->hasValue) {
        note = "define " + name + " above this line: " + std::string(it->statement.mnemonic) +
               " needs its value at once";
        return;
    }
    if (AdviseOnNearName(it, *token) || AdviseOnMisspeltRegister(it, true)) {
        return;
    }
    if (AdviseOnLetterForDigit(it, *token)) {
        return;
    }
    if (token->kind == TokenKind::digitName) {
        note = numberNote;
        return;
    }
    const bool isMarked = name.front() == 'H' && name.size() > 2 &&  // "H100"
                          name.find_first_of(decimalDigits) != std::string::npos;
    if (const std::string number = NumberSpelling("0X" + name.substr(isMarked ? 1 : 0));
        !number.empty() && name.front() != '_' && (isMarked || name.size() % 2 == 0)) {
        it->Replace(token->text, number);
        note = "write " + number + " if it is hexadecimal";
        return;
    }
    if (it->fault.number == MSG_NOT_IMMEDIATE || HoldsWord("IF COND", it->statement.mnemonic)) {
        note = "define " + name + " above this line, or by -D " + name + "=1";
    }
}

}  // namespace korv
