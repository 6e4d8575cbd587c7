// Reading one operand. A name of a register or condition is found by its length and letters and
// never reaches the scanner; everything else is an expression and evaluated at once. What has no
// value yet keeps its expression and the name that it waits for, so that the handler can file a
// patch.

#include "expr/operands.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "driver/assembler.h"
#include "source/char_class.h"

namespace korv {
namespace {

// The name of a register or condition that `text` may be: all of it, or what stands in its
// parentheses. Empty: none.
std::string_view CandidateName(std::string_view text, bool isIndirect) {
    if (isIndirect) {
        return text.size() == 3 || text.size() == 4 ? text.substr(1, text.size() - 2)
                                                    : std::string_view();
    }
    return text.size() <= 2 || text.size() == 5 ? text : std::string_view();
}

void TakeName(const OperandName& row, bool isIndirect, lsArg* arg) {
    if (row.reg != REG_NONE) {  // "(I)" and "(R)" are registers too, without a code
        arg->reg = isIndirect ? row.regIndirect : row.reg;
        arg->flags |= LA_INDIRECT;
        arg->kind = KIND_REGISTER;
    }
    const std::int32_t condition = isIndirect ? row.conditionIndirect : row.condition;
    if (condition >= 0) {
        arg->condition = condition;
        arg->flags |= LA_CONSTANT;
        arg->kind = KIND_CONDITION;
    }
}

// The expression inside the parentheses of `text`, and in `code` what kind of memory operand it
// makes.
std::string_view InnerExpression(std::string_view text, std::int32_t* code) {
    std::string_view inner = text.substr(1, text.size() - 2);
    *code = REG_DIRECT;
    if (inner.starts_with("IX") || inner.starts_with("IY")) {
        std::size_t sign = 2;
        while (sign < inner.size() && HasClass(inner[sign], CC_BLANK)) {
            ++sign;
        }
        if (sign < inner.size() && (inner[sign] == '+' || inner[sign] == '-')) {
            *code = inner[1] == 'X' ? REG_IX_INDEXED : REG_IY_INDEXED;
            inner.remove_prefix(sign);  // the sign belongs to the displacement
        }
    }
    while (!inner.empty() && HasClass(inner.front(), CC_BLANK)) {
        inner.remove_prefix(1);
    }
    return inner;
}

}  // namespace

// Makes `arg` the value of `expression`, which is part of its text, whatever becomes of it.
void KO_Args::Evaluate(std::string_view expression, lsArg* arg) {
    std::string_view unresolved = "";
    arg->kind = KIND_VALUE;
    arg->status = owner->ScanExpression(expression, &arg->value, &unresolved);
    if (arg->status == 0) {
        arg->flags |= LA_CONSTANT;
    } else {
        arg->expressionString.Assign(expression);
        arg->unresolvedString.Assign(unresolved);
    }
}

KO_Args::~KO_Args() {
    Clear();
    while (spare != nullptr) {
        delete std::exchange(spare, spare->next);
    }
}

// A record for operand 3 or later, at its defaults.
lsArg* KO_Args::NewRecord() {
    if (spare != nullptr) {
        lsArg* const arg = std::exchange(spare, spare->next);
        arg->next = nullptr;
        return arg;
    }
    auto* const arg = new (std::nothrow) lsArg;
    if (arg == nullptr) {
        std::printf("Could not allocate memory for lsArg!\n");
        std::exit(-1);
    }
    return arg;
}

std::int32_t KO_Args::Add(std::string_view source) {
    const bool isInline = count < 2;
    lsArg* const arg = count == 0 ? &inlineArgs[0] : count == 1 ? &inlineArgs[1] : NewRecord();
    arg->textString.Assign(source);
    // From here on the text is the copy: what it is evaluated from lives as long as the operand.
    const std::string_view text = arg->Text();
    const bool isIndirect = text.front() == '(' && text.back() == ')';
    if (isIndirect) {
        arg->flags |= LA_INDIRECT;
    } else if (text.front() == '"' && text.back() == '"') {
        arg->flags |= LA_QUOTED;
    }

    const std::string_view name = CandidateName(text, isIndirect);
    const OperandName* const row = name.empty() ? nullptr : FindOperandName(name);
    if (row != nullptr) {
        TakeName(*row, isIndirect, arg);
    } else if (!isIndirect) {
        Evaluate(text, arg);
    } else if (const std::string_view inner = InnerExpression(text, &arg->reg); !inner.empty()) {
        Evaluate(inner, arg);
    } else {
        if (isInline) {
            arg->Reset();
        } else {
            KeepRecord(arg);
        }
        return -1;
    }
    if (!isInline) {
        (head == nullptr ? head : tail->next) = arg;
        tail = arg;
    }
    ++count;
    return 0;
}

}  // namespace korv
