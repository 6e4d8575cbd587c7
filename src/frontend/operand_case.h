/// The data for advice on an operand, shared by the files that give advice.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/notes.h"

namespace korv {

/// Directives that take any number of values.
inline constexpr std::string_view dataDirectives = "DB DEFB DW DEFW";

/// A message about operands, and the advice on it so far.
struct OperandCase {
    Adviser& adviser;
    const FaultView& fault;
    const StatementView& statement;
    const OperandView* operand =
        nullptr;  ///< the operand at fault; null: an operand is missing, or none is at fault
    Advice advice = {};
    bool isTranslated = false;  ///< the foreign spellings of the statement have been replaced

    void PointAt(std::string_view part) { advice.place = statement.PartOf(part); }
    void Replace(std::string_view part, std::string text) {
        advice.edits.push_back({statement.PartOf(part), std::move(text)});
    }
    /// Proposes to insert `text` before `part`.
    void Insert(std::string_view part, std::string text) {
        Replace(part.substr(0, 0), std::move(text));
    }
    /// Proposes `edits`, in a note with the changed statement between `head` and `tail`. Result:
    /// true.
    bool Propose(std::string_view part, std::vector<TextEdit> edits,
                 std::string_view head = "write ", std::string_view tail = "");
    /// True if the proposed change contains an undefined name, so that it would only lead to
    /// another error.
    [[nodiscard]] bool ProposesUnknownName() const;
    [[nodiscard]] bool IsDefined(std::string_view name) const {
        const auto known = adviser.Facts().FindName(name);
        return known && known->hasValue;
    }
};

/// The operand that the message is about; null if an operand is missing, or if the message is not
/// about an operand.
[[nodiscard]] const OperandView* FocusOf(const FaultView& fault);

/// True if the changed statement matches a form of its mnemonic.
[[nodiscard]] bool HasFormWith(const StatementView& statement, const std::vector<TextEdit>& edits);

/// The first token of `operand` that is equal to `text`; null if there is none.
[[nodiscard]] const Token* FindToken(const OperandView& operand, std::string_view text);

/// Advises on a fault in the tokens of the operand. Result: false if there is no fault.
[[nodiscard]] bool AdviseOnExpression(OperandCase* it);
/// Advises on a word operator without blanks, as in "XAND3", and on a misspelt one.
[[nodiscard]] bool AdviseOnWordOperator(OperandCase* it, const Token& token);
/// Advises on a misplaced semicolon, on a blank in place of a comma, and on "(IX,5)" and "(IX),5".
[[nodiscard]] bool AdviseOnComma(OperandCase* it);
/// Advises on a wrong separator, as in "LD A:5".
[[nodiscard]] bool AdviseOnSeparator(OperandCase* it);
/// Advises on a statement that `commas` would split into operands that do not fit ("SUB A:5").
[[nodiscard]] bool AdviseOnSeparated(OperandCase* it, std::string_view part,
                                     const std::vector<TextEdit>& commas);
/// Advises on brackets around the values of a data directive.
[[nodiscard]] bool AdviseOnListBrackets(OperandCase* it);
/// Advises on a punctuation mark after a register or a number.
[[nodiscard]] bool AdviseOnLastSign(OperandCase* it);
/// Advises on brackets with a comma in them.
[[nodiscard]] bool AdviseOnSplitBrackets(OperandCase* it);
/// Advises on an empty operand.
[[nodiscard]] bool AdviseOnEmptyOperand(OperandCase* it);
/// Advises on a second instruction on the line, with or without a separator before it.
[[nodiscard]] bool AdviseOnSecondInstruction(OperandCase* it);
/// Advises on the spellings of other assemblers.
[[nodiscard]] bool AdviseOnSpelling(OperandCase* it);
/// Advises on words that follow the operands and were meant as a comment.
[[nodiscard]] bool AdviseOnProse(OperandCase* it);
/// `words` as "A, B or C".
[[nodiscard]] std::string Listed(const std::vector<std::string>& words);
/// Advises on a register in double quotes or after "#".
[[nodiscard]] bool AdviseOnQuotedRegister(OperandCase* it);
/// Advises on a misspelt register or condition; if `isSure` is true, only on sure slips, such as
/// swapped letters.
[[nodiscard]] bool AdviseOnMisspeltRegister(OperandCase* it, bool isSure = false);
/// Advises on a register, a number or a name with a blank in it.
[[nodiscard]] bool AdviseOnSplitWord(OperandCase* it);
/// Advises on a number with a blank in it, as in "8000 H" and "1010 0101B".
[[nodiscard]] bool AdviseOnSplitNumber(OperandCase* it, const Token& before, const Token& token);
/// Advises on two operands in the wrong order.
[[nodiscard]] bool AdviseOnSwappedOperands(OperandCase* it);
/// Advises on an extra double quote, and on data with a missing one.
[[nodiscard]] bool AdviseOnOddQuotes(OperandCase* it);
/// Advises on a text with double quotes in it.
[[nodiscard]] bool AdviseOnQuotes(OperandCase* it);
/// Proposes a closing quote for the string `text` at the end of an operand.
void CloseString(OperandCase* it, std::string_view text);
/// Advises on a string in data whose opening quote is missing.
[[nodiscard]] bool AdviseOnUnopenedString(OperandCase* it);
/// Advises on a name that has no value.
void AdviseOnUnknownName(OperandCase* it);
/// Uses the first explanation that fits.
void AdviseOnOperandCase(OperandCase* it);

}  // namespace korv
