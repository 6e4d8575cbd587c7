// Reads one operand. The name of a register or condition is not evaluated. Everything else is an
// expression and is evaluated at once. An operand that has no value yet stores the name that it
// waits for, so that the handler can file a patch.

#include "expr/operands.h"

#include <cstdlib>
#include <new>

#include "driver/assembler.h"
#include "expr/token.h"
#include "platform/platform.h"

namespace korv {
namespace {

// The REG_* code of the expression `*inner` in parentheses: IX or IY with a displacement, or an
// address. Reduces `*inner` to the expression to evaluate; a displacement begins with its sign.
std::int32_t TakeIndex(std::string_view* inner) {
    const char second = inner->size() > 2 && inner->front() == 'I' ? (*inner)[1] : '\0';
    if (second == 'X' || second == 'Y') {
        std::string_view rest = *inner;
        rest.remove_prefix(2);
        rest = WithoutLeadingBlanks(rest);
        if (rest.starts_with('+') || rest.starts_with('-')) {
            *inner = rest;
            return second == 'X' ? REG_IX_INDEXED : REG_IY_INDEXED;
        }
    }
    *inner = WithoutLeadingBlanks(*inner);
    return REG_DIRECT;
}

// Stores the outcome of evaluating `expression`.
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

// A record for any operand after the second.
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
    tail->next = arg;
    tail = arg;
    return arg;
}

void KO_Args::EvaluateToken(lsArg* arg, std::string_view token) {
    TakeStatus(arg, token, owner->ParseValue(token, &arg->value));
    if (arg->status != 0) {
        arg->fault = token;
    }
}

Status KO_Args::Add(std::string_view text) {
    std::string_view expression = WithoutParentheses(text);
    const bool isIndirect = expression.size() != text.size();
    if (expression.empty()) {
        return emptyOperand;
    }
    OperandClass what = isIndirect ? ClassInParentheses(expression) : ClassOfToken(expression);
    const bool isValue = what.kind == KIND_VALUE;
    if (isValue && isIndirect) {
        what.reg = TakeIndex(&expression);
        if (expression.empty()) {
            return -1;
        }
    } else if (text.front() == '"' && text.back() == '"') {
        what.flags |= LA_QUOTED;
    }
    lsArg* const arg = Append(text, what);
    if (isValue) {
        TakeStatus(arg, expression, owner->ScanExpression(expression, &arg->value, &arg->fault));
    }
    return 0;
}

lsArg* KO_Args::Arg(std::int32_t n) {
    for (lsArg& arg : *this) {
        if (--n == 0) {
            return &arg;
        }
    }
    return nullptr;
}

}  // namespace korv
