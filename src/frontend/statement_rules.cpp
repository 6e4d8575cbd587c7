#include "frontend/statement_rules.h"

#include <vector>

#include "codegen/keywords.h"
#include "expr/evaluator.h"
#include "expr/number.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"

namespace korv {
namespace {

// The offset of the first backslash sequence in the string `text`, which includes its quotes.
std::size_t EscapeIn(std::string_view text) {
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == '\\' &&
            std::string_view("nrt0x\\").find(text[i + 1]) != std::string_view::npos) {
            return i;
        }
    }
    return std::string_view::npos;
}

bool IsLogical(const Token& token) {
    return token.code == OP_AND || token.code == OP_OR || token.code == OP_XOR;
}

}  // namespace

std::optional<LinePart> FindEscape(const StatementView& statement) {
    if (HoldsWord("INCLUDE BINCLUDE", statement.mnemonic)) {
        return std::nullopt;
    }
    for (const OperandView& operand : statement.operands) {
        for (const Token& token : operand.tokens) {
            if (const std::size_t at = EscapeIn(token.text); at != std::string_view::npos) {
                return statement.PartOf(token.text.substr(at, 2));
            }
        }
    }
    return std::nullopt;
}

bool ReadsAsNumber(std::string_view label) {
    std::int32_t value = 0;
    return !label.empty() && ReadNumber(label, &value) != notANumber;
}

bool ReadsAsRegister(std::string_view label) {
    return !label.empty() && ClassOf(label).kind != KIND_VALUE;
}

std::string_view SurpriseInCondition(const OperandView& condition) {
    struct Level {
        bool isCompared = false;
        bool isCombined = false;
    };
    std::vector<Level> levels(1);
    for (const Token& token : condition.tokens) {
        if (token.code == OP_NOT) {
            return "write X=0: ! turns every bit, and !1 is true";
        }
        if (token.code == OP_OPEN) {
            levels.emplace_back();
        } else if (token.code == OP_CLOSE && levels.size() > 1) {
            levels.pop_back();
        }
        levels.back().isCompared = levels.back().isCompared || IsComparison(token.code);
        levels.back().isCombined = levels.back().isCombined || IsLogical(token);
        if (levels.back().isCompared && levels.back().isCombined) {
            return "give each comparison a name by EQU: comparisons bind less than AND, OR and XOR";
        }
    }
    return "";
}

}  // namespace korv
