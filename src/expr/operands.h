/// The operands of a statement. Each is classified as a register, condition or value, and is
/// evaluated when it is added.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "diagnostics/message_numbers.h"
#include "expr/registers.h"
#include "source/char_class.h"

namespace korv {

class CAssembler;

/// One operand. Its texts are views of the line; anything that outlives the statement must copy
/// them.
struct lsArg : OperandClass {
    Status status = 0;       ///< of its expression; 0 if that succeeded or there is none
    std::int32_t value = 0;  ///< of its expression; 0 unless `status` is 0
    std::string_view text;   ///< the operand as written
    /// The part of `text` that is evaluated. This and `fault` are valid only if `status` is
    /// nonzero; otherwise, they are left over from an earlier line. Clearing them for every operand
    /// would add 5 % to the instructions of a run.
    std::string_view expression;
    /// The token at which the evaluation failed. With MSG_UNRESOLVED, it is the name that has no
    /// value yet. It is empty if the tokens are valid but the calculation failed.
    std::string_view fault;
    lsArg* next = nullptr;  ///< record of the next operand, if there is one

    [[nodiscard]] bool IsValue() const { return kind == KIND_VALUE; }
    [[nodiscard]] bool IsCondition() const { return kind == KIND_CONDITION; }
    [[nodiscard]] bool IsQuoted() const { return (flags & LA_QUOTED) != 0; }
    [[nodiscard]] bool IsIndirect() const { return (flags & LA_INDIRECT) != 0; }
    /// Whether this is (IX+d) or (IY+d).
    [[nodiscard]] bool IsIndexed() const { return reg == REG_IX_INDEXED || reg == REG_IY_INDEXED; }
    /// Whether this is an expression, with or without parentheses, but not (IX+d) or (IY+d).
    [[nodiscard]] bool IsPlainValue() const {
        return IsValue() && (reg == REG_NONE || reg == REG_DIRECT);
    }
};

/// The operand list of a statement. It holds the records of operands 1 and 2; further records are
/// chained to them, without a limit.
class KO_Args {
  public:
    /// Supports `for (const lsArg& arg : args)`. A step costs the same for any number of operands.
    struct Iterator {
        lsArg& operator*() const { return *arg; }
        Iterator& operator++() {
            arg = arg->next;
            --left;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return left != other.left; }

        lsArg* arg;
        std::int32_t left;  // operands from `arg` on
    };

    /// `owner` evaluates the expressions; it is not owned.
    explicit KO_Args(CAssembler* owner) : owner(owner) { inlineArgs[0].next = &inlineArgs[1]; }
    ~KO_Args();
    KO_Args(const KO_Args&) = delete;
    KO_Args& operator=(const KO_Args&) = delete;

    /// Adds the operand `text` and evaluates it. `text` is a nonempty part of the line without
    /// blanks at its ends. Result: 0, or `emptyOperand` for empty parentheses, which are not added.
    /// The status of the expression is in the record. Ends the process if there is no memory for a
    /// record.
    Status Add(std::string_view text);
    /// Like `Add`, for a text that is one token (see expr/token.h), alone or in parentheses.
    void AddToken(std::string_view text) {
        if (lsArg* const arg = Append(text, ClassOfToken(text)); arg->IsValue()) {
            EvaluateToken(arg, text);
        }
    }
    void AddTokenInParentheses(std::string_view text) {
        const std::string_view token = WithoutParentheses(text);
        if (lsArg* const arg = Append(text, ClassInParentheses(token)); arg->IsValue()) {
            EvaluateToken(arg, token);
        }
    }

    [[nodiscard]] std::int32_t Count() const { return count; }

    /// Operand `n`, from 1; null if there is none.
    [[nodiscard]] lsArg* Arg(std::int32_t n);
    /// These may be called only if the statement has that operand.
    [[nodiscard]] lsArg& First() { return inlineArgs[0]; }
    [[nodiscard]] lsArg& Second() { return inlineArgs[1]; }
    [[nodiscard]] lsArg& Last() { return count == 1 ? inlineArgs[0] : *tail; }

    [[nodiscard]] Iterator begin() { return {inlineArgs.data(), count}; }
    [[nodiscard]] Iterator end() { return {nullptr, 0}; }

    /// Empties the list.
    void Clear() {
        if (count > 2) [[unlikely]] {
            tail->next = std::exchange(spare, Second().next);
            tail = &Second();
        }
        count = 0;
    }

  private:
    // Appends the record of an operand that has not been evaluated yet.
    lsArg* Append(std::string_view text, const OperandClass& what) {
        const auto number = static_cast<std::size_t>(count++);
        lsArg* const arg = number < inlineArgs.size() ? &inlineArgs[number] : NewRecord();
#ifndef NDEBUG
        arg->expression = arg->fault = {};  // so that a test notices if they are read
#endif
        static_cast<OperandClass&>(*arg) = what;
        arg->status = 0;
        arg->value = 0;
        arg->text = text;
        return arg;
    }
    void EvaluateToken(lsArg* arg, std::string_view token);
    lsArg* NewRecord();

    std::int32_t count = 0;
    std::array<lsArg, 2> inlineArgs;
    lsArg* tail = &inlineArgs[1];  // record of the last operand, if there are two or more
    lsArg* spare = nullptr;        // owned; records to be reused by later lines
    CAssembler* owner;
};

}  // namespace korv
