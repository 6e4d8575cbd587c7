/// The operands of a statement, each classified as register, condition or value and evaluated when
/// it is added.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "expr/registers.h"
#include "expr/unresolved_name.h"

namespace korv {

class CAssembler;

/// One operand. Its texts are views of the line: what outlives the statement takes a copy.
struct lsArg : OperandClass {
    Status status = 0;            ///< of its expression; 0 if that succeeded or there is none
    std::int32_t value = 0;       ///< of its expression; 0 unless `status` is 0
    std::string_view text;        ///< the operand as written
    std::string_view expression;  ///< what of `text` is evaluated; set if that failed
    UnresolvedName unresolved;    ///< the name in it without a value yet; set with MSG_UNRESOLVED
    lsArg* next = nullptr;        ///< next record of the overflow chain

    [[nodiscard]] bool IsRegister() const { return kind == KIND_REGISTER; }
    [[nodiscard]] bool IsValue() const { return kind == KIND_VALUE; }
    [[nodiscard]] bool IsCondition() const { return kind == KIND_CONDITION; }
    [[nodiscard]] bool IsConstant() const { return (flags & LA_CONSTANT) != 0; }
    [[nodiscard]] bool IsQuoted() const { return (flags & LA_QUOTED) != 0; }
    [[nodiscard]] bool IsIndirect() const { return (flags & LA_INDIRECT) != 0; }
    /// Whether this is (IX+d) or (IY+d).
    [[nodiscard]] bool IsIndexed() const { return reg == REG_IX_INDEXED || reg == REG_IY_INDEXED; }
    /// Whether `value` may be read as a number of its own, with or without parentheses.
    [[nodiscard]] bool IsPlainValue() const {
        return IsValue() && (reg == REG_NONE || reg == REG_DIRECT);
    }
};

/// The operand list of a statement. Operands 1 and 2 lie in it, further ones are chained; there is
/// no limit.
class KO_Args {
  public:
    /// `owner` evaluates the expressions; it is not owned.
    explicit KO_Args(CAssembler* owner) : owner(owner) {}
    ~KO_Args();
    KO_Args(const KO_Args&) = delete;
    KO_Args& operator=(const KO_Args&) = delete;

    /// Adds the operand `text`, a part of the line which is not empty and has no blanks at its
    /// ends, and evaluates it. Result: 0, or `emptyOperand` for "()", which is not added. What
    /// becomes of its expression is in the record. Ends the process when there is no memory for a
    /// record.
    Status Add(std::string_view text);
    /// The same for a text that is one token (see expr/token.h), alone or in parentheses.
    void AddToken(std::string_view text) { AddToken(text, text, ClassOf(text)); }
    void AddTokenInParentheses(std::string_view text) {
        const std::string_view token = text.substr(1, text.size() - 2);
        AddToken(text, token, ClassInParentheses(token));
    }

    [[nodiscard]] std::int32_t Count() const { return count; }

    /// Operand `n`, from 1; null when there is none.
    [[nodiscard]] lsArg* Arg(std::int32_t n);
    /// Operand `n`, 1 or 2, of a statement that has it.
    [[nodiscard]] lsArg& operator[](std::int32_t n) {
        return inlineArgs[static_cast<std::size_t>(n - 1)];
    }
    /// The text of operand `n`; without data where there is no such operand.
    [[nodiscard]] std::string_view Text(std::int32_t n) {
        return n <= count ? Arg(n)->text : std::string_view();
    }

    /// The operands in their order: the first, and the one after `arg`; null at the end. However
    /// many there are, a step costs the same.
    [[nodiscard]] lsArg* First() { return count > 0 ? inlineArgs.data() : nullptr; }
    [[nodiscard]] lsArg* After(const lsArg* arg) {
        if (arg == &inlineArgs[0]) {
            return count > 1 ? &inlineArgs[1] : nullptr;
        }
        return arg == &inlineArgs[1] ? head : arg->next;
    }
    /// The last of them, of one or more.
    [[nodiscard]] lsArg& Last() { return count > 2 ? *tail : inlineArgs[count > 1 ? 1 : 0]; }

    /// Empties the list.
    void Clear() {
        if (count > 2) [[unlikely]] {
            tail->next = spare;
            spare = head;
            head = tail = nullptr;
        }
        count = 0;
    }

  private:
    // The record of a further operand. It keeps what the operand before it in this place has left,
    // but for what is set for every operand.
    lsArg* Append() {
        const auto number = static_cast<std::size_t>(count++);
        return number < inlineArgs.size() ? &inlineArgs[number] : NewRecord();
    }
    void AddToken(std::string_view text, std::string_view token, const OperandClass& what) {
        lsArg* const arg = Append();
        static_cast<OperandClass&>(*arg) = what;
        arg->status = 0;
        arg->value = 0;
        arg->text = text;
        if (arg->IsValue()) {
            EvaluateToken(arg, token);
        }
    }
    void EvaluateToken(lsArg* arg, std::string_view token);
    lsArg* NewRecord();

    std::int32_t count = 0;
    std::array<lsArg, 2> inlineArgs;
    lsArg* head = nullptr;  // owned; the overflow chain
    lsArg* tail = nullptr;
    lsArg* spare = nullptr;  // owned; released records, so that a line of data allocates nothing
    CAssembler* owner;
};

}  // namespace korv
