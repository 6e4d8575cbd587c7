/// The operands of a statement, each classified as register, condition or value and evaluated when
/// it is added.
#pragma once

#include <cstdint>
#include <string_view>

#include "expr/registers.h"
#include "expr/tmp_string.h"

namespace korv {

class CAssembler;

/// Bits of `lsArg::flags`.
inline constexpr std::uint32_t LA_INDIRECT = 0x01;  ///< in parentheses; also on every register name
inline constexpr std::uint32_t LA_QUOTED = 0x02;    ///< begins and ends with a double quote
inline constexpr std::uint32_t LA_CONSTANT = 0x04;  ///< has a value; also on conditions
inline constexpr std::int32_t KIND_NONE = 0;
inline constexpr std::int32_t KIND_REGISTER = 1;
inline constexpr std::int32_t KIND_VALUE = 2;
inline constexpr std::int32_t KIND_CONDITION = 4;

/// One operand. Valid until the statement's list is cleared: what outlives the statement takes a
/// reference or a copy.
class lsArg {
  public:
    CtmpString textString;        ///< the operand as written; patches take a further reference
    CtmpString expressionString;  ///< the text given to ScanExpression, if `status` is not 0
    CtmpString
        unresolvedString;   ///< the name in it without a value yet; empty unless `status` is 12
    lsArg* next = nullptr;  ///< next record of the overflow chain
    std::int32_t condition = -1;    ///< condition number 0 to 7, or -1
    std::int32_t reg = REG_NONE;    ///< REG_* code
    std::int32_t status = 0;        ///< of ScanExpression; 0 if it succeeded or was not called
    std::uint32_t flags = 0;        ///< LA_* bits
    std::int32_t kind = KIND_NONE;  ///< KIND_*
    std::int32_t value = 0;         ///< of the expression; 0 unless `status` is 0

    [[nodiscard]] std::string_view Text() const { return textString.View(); }
    [[nodiscard]] std::string_view Expression() const { return expressionString.View(); }
    [[nodiscard]] std::string_view Unresolved() const { return unresolvedString.View(); }
    [[nodiscard]] bool IsValue() const { return kind == KIND_VALUE; }
    [[nodiscard]] bool IsCondition() const { return kind == KIND_CONDITION; }
    [[nodiscard]] bool IsConstant() const { return (flags & LA_CONSTANT) != 0; }
    [[nodiscard]] bool IsIndirect() const { return (flags & LA_INDIRECT) != 0; }
    /// Whether this is (IX+d) or (IY+d).
    [[nodiscard]] bool IsIndexed() const { return reg == REG_IX_INDEXED || reg == REG_IY_INDEXED; }
    /// Whether `value` may be read as a number of its own, with or without parentheses.
    [[nodiscard]] bool IsPlainValue() const {
        return IsValue() && (reg == REG_NONE || reg == REG_DIRECT);
    }

    /// Back to the defaults; all references are dropped.
    void Reset() {
        textString.Release();
        if (status != 0) {
            expressionString.Release();
            unresolvedString.Release();
        }
        next = nullptr;
        condition = -1;
        reg = REG_NONE;
        status = 0;
        flags = 0;
        kind = KIND_NONE;
        value = 0;
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

    /// Adds the operand `text`, which is not empty and has no blanks at its ends, and evaluates it.
    /// Result: 0, or -1 if nothing stands between its parentheses: it is not in the list then. What
    /// becomes of its expression is in the record. Ends the process when there is no memory for a
    /// record.
    std::int32_t Add(std::string_view text);

    [[nodiscard]] std::int32_t Count() const { return count; }

    /// Operand `n`, 1 or 2; with the defaults where there is no such operand.
    [[nodiscard]] lsArg* Arg(std::int32_t n) { return &inlineArgs[n - 1]; }

    /// The operands in their order: the first, and the one behind `arg`; null at the end. However
    /// many there are, a step costs the same.
    [[nodiscard]] lsArg* First() { return count > 0 ? &inlineArgs[0] : nullptr; }
    [[nodiscard]] lsArg* Behind(const lsArg* arg) {
        if (arg == &inlineArgs[0]) {
            return count > 1 ? &inlineArgs[1] : nullptr;
        }
        return arg == &inlineArgs[1] ? head : arg->next;
    }

    /// Releases all operands.
    void Clear() {
        if (count != 0) {
            inlineArgs[0].Reset();
            if (count > 1) {
                inlineArgs[1].Reset();
                ReleaseOverflow();
            }
            count = 0;
        }
    }

  private:
    void Evaluate(std::string_view expression, lsArg* arg);
    lsArg* NewRecord();
    void ReleaseOverflow() {
        while (head != nullptr) {
            lsArg* const arg = head;
            head = arg->next;
            KeepRecord(arg);
        }
        tail = nullptr;
    }
    void KeepRecord(lsArg* arg) {
        arg->Reset();
        arg->next = spare;
        spare = arg;
    }

    std::int32_t count = 0;
    lsArg* head = nullptr;  // owned; the overflow chain
    lsArg* tail = nullptr;
    lsArg* spare = nullptr;  // owned; released records, so that a line of data allocates nothing
    lsArg inlineArgs[2];
    CAssembler* owner;
};

}  // namespace korv
