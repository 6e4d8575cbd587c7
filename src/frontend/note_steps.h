/// The parts of `Adviser::AdviceFor`, by what a message is about.
#pragma once

#include "frontend/notes.h"

namespace korv {

/// A mnemonic that is not in the vocabulary.
[[nodiscard]] Advice AdviseOnWord(Adviser& adviser, const FaultView& fault);

/// A mnemonic with a blank in it, as in "RE T"; empty advice for none.
[[nodiscard]] Advice AdviseOnSplitMnemonic(const StatementView& statement);

/// Operands that do not fit, or have no value.
[[nodiscard]] Advice AdviseOnOperands(Adviser& adviser, const FaultView& fault);

/// The operands that fit instead of the first that does not; empty if they all fit.
[[nodiscard]] std::string FormsNote(const StatementView& statement);

/// Whether the operand of a jump is as 1B or 1F, which mean numbered labels in other assemblers.
[[nodiscard]] bool IsNumberedLabel(const StatementView& statement);
inline constexpr const char* braceNote =
    "end a condition with ENDIF and a routine with RET: there are no braces";
inline constexpr const char* oneInstructionNote = "write one instruction in a line";
inline constexpr const char* numberNote =
    "begin the name with a letter, or write a number as 255, 0FFH, $FF, 1010B or %1010";
inline constexpr const char* anonymousLabelNote = "name the label: there are no anonymous labels";
inline constexpr std::string_view numberedLabelNote =
    "name the label: there are no numbered labels, and 1B is a binary number";

/// A definition whose name follows the directive, as in "EQU X,5"; empty advice if the line is
/// none.
[[nodiscard]] Advice AdviseOnNameSecond(const StatementView& statement);

/// All else: labels, files, conditions, ranges.
[[nodiscard]] Advice AdviseOnRest(Adviser& adviser, const FaultView& fault);

/// A definition that is written as in another assembler, or in the wrong column; empty advice if
/// the line is none.
[[nodiscard]] Advice AdviseOnDefinition(const StatementView& statement);

/// "#define X 5", and what `AdviseOnNameSecond` gives.
[[nodiscard]] Advice AdviseOnPreprocessor(const StatementView& statement);

/// A name with characters that no name has, at the start of the line; empty advice for none.
[[nodiscard]] Advice AdviseOnOddName(Adviser& adviser, const StatementView& statement);

/// A label that is not in column 1, or has its colon elsewhere; empty advice for none.
[[nodiscard]] Advice AdviseOnLabelPlace(const Adviser& adviser, const StatementView& statement);

/// Whether `text` has a byte that is not ASCII.
[[nodiscard]] bool HasOddByte(std::string_view text);

/// Whether `text` can be a name.
[[nodiscard]] bool IsNameText(std::string_view text);

/// Advice at `part` without a change.
[[nodiscard]] Advice Say(const StatementView& statement, std::string_view part, std::string note);

/// Advice at `part`, which is to become `text`.
[[nodiscard]] Advice Replace(const StatementView& statement, std::string_view part,
                             std::string text, std::string note);

}  // namespace korv
