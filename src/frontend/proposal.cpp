#include "frontend/proposal.h"

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/translation.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::int32_t largestByte = 255;

bool HasValue(const RunFacts& facts, std::string_view name) {
    const auto known = facts.FindName(name);
    return known && known->hasValue;
}

// True if operand `index` of the mnemonic can only be a byte.
bool TakesByte(const StatementView& statement, std::size_t index) {
    if (HoldsWord("DB DEFB", statement.mnemonic)) {
        return true;
    }
    const std::vector<std::string> choices = ChoicesAt(statement, index);
    const bool isMemory = statement.operands[index].what.reg == REG_DIRECT;
    return std::ranges::find(choices, isMemory ? "(n)" : "n") != choices.end();
}

// The value of `operand` if it is a single number or name, otherwise 0.
std::int32_t ValueOf(const RunFacts& facts, const OperandView& operand) {
    const Token* const token = operand.OnlyToken();
    if (token == nullptr || token->kind == TokenKind::number) {
        return token == nullptr ? 0 : token->value;
    }
    const auto known = facts.FindName(token->text);
    return known ? known->value : 0;
}

bool IsOutOfRange(const RunFacts& facts, const StatementView& statement, std::size_t index) {
    const bool isBit = HoldsWord("BIT SET RES", statement.mnemonic);
    return ValueOf(facts, statement.operands[index]) > (isBit ? 7 : largestByte) &&
           (isBit || TakesByte(statement, index));
}

// A string that is a whole operand of DB or DM, a file name and AF' are not expressions.
bool IsExpression(const StatementView& statement, const OperandView& operand) {
    const bool isText = operand.tokens.size() == 1 && operand.tokens[0].kind == TokenKind::string &&
                        HoldsWord("DB DEFB DM DEFM", statement.mnemonic);
    return operand.what.kind == KIND_VALUE && !isText &&
           !HoldsWord("INCLUDE BINCLUDE EX", statement.mnemonic);
}

bool IsSoundOperand(const RunFacts& facts, const StatementView& before,
                    const StatementView& statement, std::size_t index) {
    const OperandView& operand = statement.operands[index];
    if (!IsExpression(statement, operand)) {
        return true;
    }
    const bool isProduct =  // of a character: "x"*3
        std::ranges::find(operand.tokens, OP_MULTIPLY, &Token::code) != operand.tokens.end() &&
        operand.text.find('"') != std::string_view::npos;
    if (FindExpressionFault(operand).fault != ExpressionFault::none ||
        IsOutOfRange(facts, statement, index) || (isProduct && TakesByte(statement, index))) {
        return false;
    }
    return std::ranges::all_of(operand.tokens, [&](const Token& token) {
        if (token.kind == TokenKind::number && HasClass(token.text.front(), CC_LETTER)) {
            return before.line.find(token.text) != std::string_view::npos;  // "BH", which is 11
        }
        return !operand.HoldsAsName(token) || HasValue(facts, token.text) ||
               (token.kind == TokenKind::name && !HoldsWord(foreignRegisters, token.text) &&
                before.line.find(token.text) != std::string_view::npos);
    });
}

bool IsSoundLine(const RunFacts& facts, const StatementView& before, std::string_view line) {
    const StatementView statement = CutStatement(line.substr(0, StatementEnd(line)));
    if (statement.mnemonic.empty()) {
        return true;
    }
    if (!HasForm(statement)) {
        return false;
    }
    for (std::size_t i = 0; i < statement.operands.size(); ++i) {
        if (!IsSoundOperand(facts, before, statement, i)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool HasLargeName(const RunFacts& facts, const StatementView& statement) {
    for (std::size_t i = 0; i < statement.operands.size(); ++i) {
        if (IsOutOfRange(facts, statement, i)) {
            return true;
        }
    }
    return false;
}

bool IsSound(const RunFacts& facts, const StatementView& statement,
             const std::vector<TextEdit>& edits) {
    const std::string changed = Raised(Applied(statement.typed, edits));
    for (std::size_t start = 0; start <= changed.size();) {
        const std::size_t end = std::min(changed.find('\n', start), changed.size());
        if (!IsSoundLine(facts, statement, std::string_view(changed).substr(start, end - start))) {
            return false;
        }
        start = end + 1;
    }
    return true;
}

namespace {

// The search for one small change that makes a statement sound.
struct SlipSearch {
    const RunFacts& facts;
    const StatementView& statement;
    Advice advice = {};
    std::string meant = {};
    bool isUnsure = false;  // several changes make the statement sound

    [[nodiscard]] bool IsNameAt(std::size_t at) const {
        return at < statement.line.size() && HasClass(statement.line[at], CC_NAME);
    }
    // True if `at` is in an operand that is a register or condition, after its first `skipped`
    // characters.
    [[nodiscard]] bool IsInWord(std::size_t at, std::size_t skipped) const {
        return std::ranges::any_of(statement.operands, [&](const OperandView& each) {
            const LinePart part = statement.PartOf(each.text);
            return each.what.kind != KIND_VALUE && at >= part.offset + skipped &&
                   at < part.offset + part.length;
        });
    }
    // True if the character at `at` may have been swapped with the next one.
    [[nodiscard]] bool MaySwap(std::size_t at) const {
        const std::string_view line = statement.line;
        const bool isFirst = !IsNameAt(at);  // the punctuation mark is the first of the two
        const std::size_t sign = isFirst ? at : at + 1;
        if (sign >= line.size() || !IsNameAt(isFirst ? at + 1 : at)) {
            return false;
        }
        if (HasClass(line[sign], CC_BLANK)) {  // else the swap only removes a blank
            return at == 0 || IsNameAt(isFirst ? at + 2 : at - 1);
        }
        const bool isData = HoldsWord("DB DEFB DW DEFW DM DEFM", statement.mnemonic);
        const bool isBetween = line[sign] == ')' && IsNameAt(sign + 1);
        return line[sign] == ':' ||
               (!isBetween && HoldsWord(", ( )", line.substr(sign, 1)) && !isData &&
                line.substr(sign, 2) != "()" && !IsInWord(isFirst ? at + 1 : at, 0));
    }
    void Attempt(std::size_t at, std::size_t length, std::string text);
};

void SlipSearch::Attempt(std::size_t at, std::size_t length, std::string text) {
    const std::vector<TextEdit> edits = {
        {{static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(length)}, std::move(text)}};
    const std::string changed =
        Raised(Applied(statement.typed.substr(0, statement.line.size()), edits));
    const StatementView view = CutStatement(changed);
    const auto known = facts.FindName(view.label);
    const bool isLabel =
        view.label.empty() || view.label == statement.label || (known && !known->hasValue);
    if (view.keyword == nullptr || !isLabel || HoldsWord("INCLUDE BINCLUDE", view.mnemonic) ||
        !IsSoundLine(facts, StatementView{}, changed)) {
        return;
    }
    if (!meant.empty() && meant != changed) {
        isUnsure = true;
    }
    meant = changed;
    advice.place = LinePart{edits[0].part.offset, std::max(edits[0].part.length, 1U)};
    advice.edits = edits;
    const bool isSame = view.label.empty() || view.label == statement.label;
    const std::string whole =
        isSame ? WriteNote(statement, edits).substr(6) : Applied(statement.typed, edits);
    advice.note = edits[0].text == "," ? "add the comma: " + whole : "did you mean " + whole + "?";
    advice.definesName = view.mnemonic == "EQU" || view.label != statement.label;
    if (!view.label.empty()) {
        advice.names = {std::string(view.label)};
    }
}

}  // namespace

Advice AdviseOnSlip(const RunFacts& facts, const FaultView& fault) {
    constexpr std::size_t longest = 80;  // a bound for the work on one message
    const StatementView& statement = fault.statement;
    const std::string_view line = statement.line;
    const bool isInstruction =
        statement.keyword != nullptr && statement.keyword->group == KeywordGroup::instruction;
    if (AdviseOnSplitMnemonic(statement).place) {  // "R LA" is RLA rather than RL A
        return {};
    }
    SlipSearch search{facts, statement};
    for (std::size_t at = 0; at < line.size() && line.size() <= longest; ++at) {
        const char c = line[at];
        const char before = at == 0 ? ' ' : line[at - 1];
        const bool isAfterName = HasClass(before, CC_NAME);
        if (search.MaySwap(at)) {
            search.Attempt(at, 2, {statement.typed[at + 1], statement.typed[at]});
        }
        if (c == '(' || (c == '0' && isAfterName && !HasClass(before, CC_DIGIT))) {
            search.Attempt(at, 1, ")");
        } else if (c == ')' || (c == '9' && isInstruction && !isAfterName)) {
            search.Attempt(at, 1, "(");
        }
        if (c == ')' && search.IsNameAt(at + 1)) {  // "2)H", ")FFH"
            search.Attempt(at, 1, "0");
        }
        if (at > 2 && c != '+' &&
            HoldsWord("(IX (IY", line.substr(at - 3, 3))) {  // "(IX5)", "(IX=5)"
            search.Attempt(at, c == '=' || HasClass(c, CC_BLANK) ? 1 : 0, "+");
            if (c == '_') {
                search.Attempt(at, 1, "-");
            }
        }
        if (line.substr(at, 2) == ",)") {
            search.Attempt(at, 2, "),");
        }
        const std::string_view next = line.substr(at + 1);
        const bool isGroup = next.size() == 3;  // "16,384"
        if (c == ',' && (isInstruction || statement.mnemonic == "EQU") && !next.empty() &&
            (isGroup || !HasClass(next[0], CC_DIGIT))) {
            search.Attempt(at, 1, "");
        }
        if (isInstruction && (isAfterName || before == ')') && before != c &&
            (search.IsNameAt(at) || c == '(') && !search.IsInWord(at, 1)) {
            search.Attempt(at, 0, ",");
        }
    }
    return search.isUnsure ? Advice{} : search.advice;
}

std::string MeantMnemonic(const FaultView& fault, const Advice& advice) {
    const StatementView& statement = fault.statement;
    std::string line = Raised(Applied(statement.line, advice.edits));
    if (FindKeyword(statement.label) != nullptr) {
        line.insert(0, " ");
    }
    const StatementView view = CutStatement(std::string_view(line).substr(0, line.find('\n')));
    return std::string(
        view.mnemonic.empty()  // the label is on a line of its own
            ? CutStatement(std::string_view(line).substr(line.find('\n') + 1)).mnemonic
            : view.mnemonic);
}

namespace {

// Extends the change of one part to all foreign parts of the statement. Result: true if the changed
// statement is sound.
bool Complete(const RunFacts& facts, const StatementView& statement, Advice* advice) {
    const Translation whole = Translate(statement, advice->edits);
    const std::vector<TextEdit> edits = {{LinePart{0, whole.end}, whole.typed}};
    if (!IsSound(facts, statement, edits)) {
        return false;
    }
    advice->edits = edits;
    advice->note = "write " + whole.typed.substr(whole.typed.find_first_not_of(" \t")) +
                   (HasClass(whole.typed.front(), CC_BLANK) ? "" : " from column 1 on");
    return true;
}

// Removes a proposal that would lead to another error, and the note too if it names the change.
void Withdraw(const FaultView& fault, Advice* advice) {
    const StatementView& statement = fault.statement;
    const bool isQuestion = advice->note.starts_with("did you mean ");
    const bool isNamed = isQuestion ||
                         advice->note.starts_with(WriteNote(statement, advice->edits)) ||
                         std::ranges::any_of(advice->edits, [&](const TextEdit& edit) {
                             const std::size_t start = edit.text.find_first_not_of(" \t\n");
                             return start != std::string::npos &&
                                    advice->note.find(edit.text.substr(start)) != std::string::npos;
                         });
    const bool isRename = advice->note.find(" here and ") != std::string::npos;
    if (isNamed && !isRename) {
        const std::string meant = MeantMnemonic(fault, *advice);
        const bool isWord = fault.number == MSG_UNKNOWN_INSTRUCTION;
        advice->note = advice->note.starts_with("use double quotes") ? doubleQuoteNote
                       : !isWord                                     ? FormsNote(statement)
                       : isQuestion || FindKeyword(meant) == nullptr
                           ? ""
                           : "use " + std::string(meant) + checkOperands;
    }
    const LinePart part = advice->place.value_or(fault.part);
    const std::string_view text = statement.line.substr(part.offset, part.length);
    if (advice->note.empty() && !text.empty() && HasClass(text.front(), CC_DIGIT)) {
        advice->note = numberNote;
    }
    advice->edits.clear();
}

}  // namespace

void CheckProposal(const RunFacts& facts, const FaultView& fault, Advice* advice) {
    if (!advice->edits.empty() && advice->newName.empty() &&
        !IsSound(facts, fault.statement, advice->edits) &&
        !Complete(facts, fault.statement, advice)) {
        Withdraw(fault, advice);
    }
}

}  // namespace korv
