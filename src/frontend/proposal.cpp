#include "frontend/proposal.h"

#include <algorithm>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/translation.h"

namespace korv {
namespace {

bool HasValue(const RunFacts& facts, std::string_view name) {
    const auto known = facts.FindName(name);
    return known && known->hasValue;
}

// Whether the mnemonic takes nothing but a byte as operand `index`.
bool TakesByte(const StatementView& statement, std::size_t index) {
    if (HoldsWord("DB DEFB", statement.mnemonic)) {
        return true;
    }
    const std::vector<std::string> choices = ChoicesAt(statement, index);
    const auto has = [&choices](std::string_view term) {
        return std::ranges::find(choices, term) != choices.end();
    };
    return statement.operands[index].what.reg == REG_DIRECT ? has("(n)") && !has("(nn)")
                                                            : has("n") && !has("nn");
}

bool IsOutOfRange(const StatementView& statement, std::size_t index) {
    const Token* const token = statement.operands[index].OnlyToken();
    constexpr std::int32_t largestByte = 255;
    return token != nullptr && token->kind == TokenKind::number && token->value > largestByte &&
           TakesByte(statement, index);
}

// A string that is a whole operand of DB or DM, a name of a file and AF' are no expressions.
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
    if (FindExpressionFault(operand).fault != ExpressionFault::none ||
        IsOutOfRange(statement, index)) {
        return false;
    }
    return std::ranges::all_of(operand.tokens, [&](const Token& token) {
        const bool isName = token.kind == TokenKind::name || token.kind == TokenKind::digitName;
        return !operand.HoldsAsName(token) || HasValue(facts, token.text) ||
               (isName && before.line.find(token.text) != std::string_view::npos);
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

}  // namespace korv
