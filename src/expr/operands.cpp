// Reading one operand. A name of a register or condition is told by its length and letters and
// never reaches the scanner; everything else is an expression and evaluated at once. What has no
// value yet keeps the name that it waits for, so that the handler can file a patch.

#include "expr/operands.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "driver/assembler.h"
#include "expr/token.h"
#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Whether `inner`, which stands in parentheses, begins with IX or IY and the sign of a
// displacement, perhaps after blanks. Then the expression begins at that sign.
bool TakeIndexName(std::string_view* inner) {
    if (!inner->starts_with("IX") && !inner->starts_with("IY")) {
        return false;
    }
    const std::string_view rest = WithoutLeadingBlanks(inner->substr(2));
    if (rest.empty() || (rest.front() != '+' && rest.front() != '-')) {
        return false;
    }
    *inner = rest;
    return true;
}

// What has become of the expression of `arg`.
inline void TakeStatus(lsArg* arg, std::string_view expression, Status status) {
    arg->status = status;
    if (status == 0) [[likely]] {
        arg->flags |= LA_CONSTANT;
    } else {
        arg->expression = expression;
    }
}

}  // namespace

KO_Args::~KO_Args() {
    Clear();
    while (spare != nullptr) {
        delete std::exchange(spare, spare->next);
    }
}

// A record for operand 3 or later.
lsArg* KO_Args::NewRecord() {
    lsArg* arg = spare;
    if (arg != nullptr) {
        spare = arg->next;
    } else {
        arg = new (std::nothrow) lsArg;
        if (arg == nullptr) {
            platform::PrintMemoryFailure("Could not allocate memory for lsArg!");
            std::exit(-1);
        }
    }
    arg->next = nullptr;
    (head == nullptr ? head : tail->next) = arg;
    tail = arg;
    return arg;
}

void KO_Args::EvaluateToken(lsArg* arg, std::string_view token) {
    TakeStatus(arg, token, owner->ScanToken(token, &arg->value, &arg->unresolved));
}

Status KO_Args::Add(std::string_view text) {
    const bool isIndirect = text.front() == '(' && text.back() == ')';
    const std::string_view inner = isIndirect ? text.substr(1, text.size() - 2) : text;
    if (!inner.empty() && SkipToken(inner.data()) == inner.data() + inner.size()) {
        AddToken(text, inner, isIndirect ? ClassInParentheses(inner) : ClassOf(inner));
        return 0;
    }
    std::string_view expression = inner;
    OperandClass what = isIndirect ? operand_class::direct : operand_class::value;
    if (isIndirect && TakeIndexName(&expression)) {
        what.reg = inner[1] == 'X' ? REG_IX_INDEXED : REG_IY_INDEXED;
    } else if (isIndirect) {
        expression = WithoutLeadingBlanks(inner);
    } else if (text.front() == '"' && text.back() == '"') {
        what.flags |= LA_QUOTED;
    }
    if (expression.empty()) {
        return -1;
    }
    lsArg* const arg = Append();
    static_cast<OperandClass&>(*arg) = what;
    arg->text = text;
    const Status status = owner->ScanExpression(expression, &arg->value, &arg->unresolved);
    TakeStatus(arg, expression, status);
    return 0;
}

lsArg* KO_Args::Arg(std::int32_t n) {
    lsArg* arg = First();
    for (; n > 1 && arg != nullptr; --n) {
        arg = After(arg);
    }
    return arg;
}

}  // namespace korv
