#include "frontend/instruction_forms.h"

#include <algorithm>
#include <utility>

#include "codegen/keywords.h"
#include "codegen/operand_forms.h"
#include "frontend/form_table.h"

namespace korv {
namespace {

// Removes the first part of `text` and the `separator` after it. Returns the part.
std::string_view TakePart(std::string_view* text, char separator) {
    const std::size_t end = std::min(text->find(separator), text->size());
    const std::string_view part = text->substr(0, end);
    text->remove_prefix(std::min(end + 1, text->size()));
    return part;
}

const FormRow* RowOfWord(std::string_view mnemonic) {
    const auto* const row = std::ranges::find_if(
        formTable, [mnemonic](const FormRow& each) { return HoldsWord(each.words, mnemonic); });
    return row == formTable.end() ? nullptr : row;
}

// True if `operand` may be a number up to `most` without bits outside `mask`. An expression may
// have any value.
bool MayBe(const OperandView& operand, std::int32_t most, std::int32_t mask) {
    const Token* const token = operand.OnlyToken();
    return token == nullptr || (token->value <= most && (token->value & ~mask) == 0);
}

// A class of operands. Forms and shapes refer to it by its `term`.
struct TermRow {
    std::string_view term;
    bool (*includes)(const OperandView& operand, bool ignoresParentheses);
};

bool IsDirect(const OperandView& operand) {
    return operand.what.reg == REG_DIRECT;
}
bool IsBare(const OperandView& operand) {
    return operand.what.reg == REG_NONE && operand.what.kind == KIND_VALUE;
}
bool IsNumber(const OperandView& operand, bool ignoresParentheses) {
    return IsBare(operand) || (ignoresParentheses && IsDirect(operand));
}
bool IsMemory(const OperandView& operand) {
    return IsFieldRegister(operand.what.reg) || operand.IsIndexed();
}
bool IsName(const OperandView& operand) {
    return operand.what.kind == KIND_REGISTER || operand.what.kind == KIND_CONDITION;
}
bool IsIndex(std::int32_t reg) {
    return reg == REG_IX || reg == REG_IY;
}

// clang-format off
constexpr auto termTable = std::to_array<TermRow>({
    {"r", [](const OperandView& it, bool) { return IsByteRegister(it.what.reg); }},
    {"s", [](const OperandView& it, bool) { return IsMemory(it) || IsBare(it); }},
    {"m", [](const OperandView& it, bool) { return IsMemory(it); }},
    {"dd", [](const OperandView& it, bool) { return IsPair(it.what.reg) && it.what.reg != REG_AF && !IsIndex(it.what.reg); }},
    {"qq", [](const OperandView& it, bool) { return IsPair(it.what.reg) && it.what.reg != REG_SP && !IsIndex(it.what.reg); }},
    {"xy", [](const OperandView& it, bool) { return IsIndex(it.what.reg); }},
    {"(xy)", [](const OperandView& it, bool) { return it.what.reg == REG_IX_INDIRECT || it.what.reg == REG_IY_INDIRECT; }},
    {"(xy+d)", [](const OperandView& it, bool) { return it.IsIndexed(); }},
    {"cc", [](const OperandView& it, bool) { return it.what.condition >= 0; }},
    {"c4", [](const OperandView& it, bool) { return it.what.condition >= 0 && it.what.condition <= 3; }},
    {"n", IsNumber},
    {"nn", IsNumber},
    {"e", IsNumber},
    {"x", IsNumber},
    {"(n)", [](const OperandView& it, bool) { return IsDirect(it); }},
    {"(nn)", [](const OperandView& it, bool) { return IsDirect(it); }},
    {"b", [](const OperandView& it, bool ignores) { return IsNumber(it, ignores) && MayBe(it, 7, 7); }},
    {"p", [](const OperandView& it, bool ignores) { return IsNumber(it, ignores) && MayBe(it, 0x38, 0x38); }},
    {"i", [](const OperandView& it, bool ignores) { return IsNumber(it, ignores) && MayBe(it, 2, 3); }},
    {"str", [](const OperandView& it, bool) { return it.text.starts_with('"'); }},
    {"name", [](const OperandView& it, bool) { return it.what.kind != KIND_NONE; }},
    {"any", [](const OperandView& it, bool) { return !it.text.empty(); }},
    {"v", [](const OperandView& it, bool) { return IsNumber(it, true); }},
    {"gp", [](const OperandView& it, bool) { return it.what.reg >= REG_BC && it.what.reg <= REG_HL; }},
    {"pair", [](const OperandView& it, bool) { return IsPair(it.what.reg); }},
    {"reg", [](const OperandView& it, bool) { return IsName(it) && it.text.front() != '('; }},
    {"(reg)", [](const OperandView& it, bool) { return it.what.kind == KIND_REGISTER && it.text.front() == '('; }},
    {"(cc)", [](const OperandView& it, bool) { return it.what.kind == KIND_CONDITION && it.text.front() == '('; }},
    {"(any)", [](const OperandView& it, bool) { return it.text.starts_with('(') && it.text.ends_with(')'); }},
    {"F", [](const OperandView& it, bool) { return it.what.reg == REG_F; }},
    {"AF'", [](const OperandView& it, bool) { return it.what.reg == REG_AF || it.text == "AF'"; }},
});
// clang-format on

// True if `operand` belongs to the class `term`, or is the text `term`.
bool IsA(const OperandView& operand, std::string_view term, bool ignoresParentheses) {
    const auto* const row = std::ranges::find(termTable, term, &TermRow::term);
    return row == termTable.end() ? term == operand.text
                                  : row->includes(operand, ignoresParentheses);
}

// True if the first `count` operands match those of `form`. If `isWhole` is true, `form` must have
// no further operands.
bool Begins(const StatementView& statement, std::string_view form, std::size_t count,
            bool ignoresParentheses, bool isWhole) {
    if (form == "-") {
        form = {};
    }
    std::string_view last;
    for (std::size_t i = 0; i < count; ++i) {
        if (form.empty()) {
            return false;
        }
        const bool repeats = form == "*";
        last = repeats ? last : TakePart(&form, ',');
        if (!IsA(statement.operands[i], last, ignoresParentheses)) {
            return false;
        }
    }
    return !isWhole || form.empty() || form == "*";
}

// The classes that notes replace with their members.
constexpr auto consists = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"s", "r (HL) (IX+d) (IY+d) n"},
    {"m", "r (HL) (IX+d) (IY+d)"},
    {"dd", "BC DE HL SP"},
    {"qq", "BC DE HL AF"},
    {"xy", "IX IY"},
    {"(xy)", "(IX) (IY)"},
    {"(xy+d)", "(IX+d) (IY+d)"},
    {"cc", "NZ Z NC C PO PE P M"},
    {"c4", "NZ Z NC C"},
    {"e", "nn"},
    {"b", "0..7"},
    {"i", "0 1 2"},
    {"p", "0 8 16 24 32 40 48 56"},
});

// True if `use(form, ignoresParentheses)` returns true for any form of `mnemonic`.
template <typename Use>
bool AnyForm(std::string_view mnemonic, Use use) {
    const FormRow* const row = RowOfWord(mnemonic);
    for (std::string_view forms = row == nullptr ? "-" : row->forms; !forms.empty();) {
        if (use(TakePart(&forms, ' '), row != nullptr && row->ignoresParentheses)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<std::string> FormsOf(const StatementView& statement, std::size_t operandCount) {
    std::vector<std::string> texts;
    AnyForm(statement.mnemonic, [&](std::string_view form, bool ignores) {
        if (Begins(statement, form, operandCount, ignores, false)) {
            std::string& text = texts.emplace_back(statement.mnemonic);
            if (form != "-") {
                text.append(" ").append(form.ends_with(",*") ? form.substr(0, form.size() - 2)
                                                             : form);
            }
        }
        return false;
    });
    return texts;
}

std::vector<std::string> ChoicesAt(const StatementView& statement, std::size_t place) {
    std::vector<std::string> choices;
    const auto add = [&choices](std::string_view text) {
        const bool isIncluded = text == "A" && std::ranges::find(choices, "r") != choices.end();
        if (!isIncluded && std::ranges::find(choices, text) == choices.end()) {
            choices.emplace_back(text);
        }
    };
    for (const std::string& form : FormsOf(statement, place)) {
        std::string_view operands = std::string_view(form).substr(statement.mnemonic.size());
        operands.remove_prefix(operands.empty() ? 0 : 1);
        for (std::size_t i = 0; i < place; ++i) {
            TakePart(&operands, ',');
        }
        const std::string_view term = TakePart(&operands, ',');
        const auto* const row = std::ranges::find(
            consists, term, &std::pair<std::string_view, std::string_view>::first);
        std::string_view parts = row == consists.end() ? term : row->second;
        while (!parts.empty()) {
            add(TakePart(&parts, ' '));
        }
    }
    return choices;
}

bool HasForm(const StatementView& statement) {
    return statement.keyword != nullptr &&
           AnyForm(statement.mnemonic, [&](std::string_view form, bool ignores) {
               return Begins(statement, form, statement.operands.size(), ignores, true);
           });
}

std::size_t FindFaultyOperand(const StatementView& statement) {
    if (statement.keyword == nullptr || HasForm(statement)) {
        return noFault;
    }
    for (std::size_t i = 0; i < statement.operands.size(); ++i) {
        const bool isAny = AnyForm(statement.mnemonic, [&](std::string_view form, bool ignores) {
            return Begins(statement, form, i + 1, ignores, false);
        });
        if (!isAny) {
            return i;
        }
    }
    return statement.operands.size();
}

std::size_t FindExcess(const StatementView& statement) {
    const std::size_t count = statement.operands.size();
    if (statement.keyword == nullptr || statement.keyword->operands.most != 2 || count != 3) {
        return noFault;
    }
    for (std::size_t i = count; i-- > 0;) {
        StatementView shorter = statement;
        shorter.operands.erase(shorter.operands.begin() + static_cast<std::ptrdiff_t>(i));
        if (HasForm(shorter)) {
            return i;
        }
    }
    return count - 1;
}

bool HasShape(const StatementView& statement, std::string_view shapes) {
    if (shapes == "*" || (shapes.empty() && statement.operands.empty())) {
        return true;
    }
    while (!shapes.empty()) {
        if (Begins(statement, TakePart(&shapes, ' '), statement.operands.size(), false, true)) {
            return true;
        }
    }
    return false;
}

bool HoldsWord(std::string_view words, std::string_view word) {
    if (words == "*") {
        return true;
    }
    while (!words.empty()) {
        if (TakePart(&words, ' ') == word) {
            return true;
        }
    }
    return false;
}

bool IsOneOf(std::string_view words, std::string_view mnemonic) {
    if (HoldsWord(words, mnemonic)) {
        return true;
    }
    const std::size_t sign = words.find('=');
    if (sign == std::string_view::npos) {
        return false;
    }
    std::string_view group = words.substr(sign + 1);
    const FormRow* const row = RowOfWord(TakePart(&group, ' '));
    return row == RowOfWord(mnemonic);
}

}  // namespace korv
