/// The parts of `Adviser::AdviceFor`, one for each subject of a message, and functions that they
/// share.
#pragma once

#include "frontend/notes.h"

namespace korv {

/// Advice on a mnemonic that is not in the vocabulary.
[[nodiscard]] Advice AdviseOnWord(Adviser& adviser, const FaultView& fault);

/// Advice on a mnemonic with a blank in it, as in "RE T"; empty if there is none.
[[nodiscard]] Advice AdviseOnSplitMnemonic(const StatementView& statement);

/// Advice on operands that do not fit, or have no value.
[[nodiscard]] Advice AdviseOnOperands(Adviser& adviser, const FaultView& fault);

/// A note on the first operand that does not fit, usually a list of what would fit; may be empty.
[[nodiscard]] std::string FormsNote(const StatementView& statement);

/// True if a jump has an operand like 1B or 1F, a numbered label in other assemblers.
[[nodiscard]] bool IsNumberedLabel(const StatementView& statement);
inline constexpr const char* braceNote =
    "end a condition with ENDIF and a routine with RET: there are no braces";
inline constexpr const char* oneInstructionNote = "write one instruction in a line";
inline constexpr const char* assignmentNote =
    "write an instruction, such as LD or ADD: there are no assignments";
inline constexpr const char* numberNote =
    "begin the name with a letter, or write a number as 255, 0FFH, $FF, 1010B or %1010";
inline constexpr const char* anonymousLabelNote = "name the label: there are no anonymous labels";
inline constexpr std::string_view numberedLabelNote =
    "name the label: there are no numbered labels, and 1B is a binary number";

/// Advice on a definition whose name follows the directive, as in "EQU X,5"; empty if there is
/// none.
[[nodiscard]] Advice AdviseOnNameSecond(const StatementView& statement);

/// Advice on everything else: labels, files, conditions, ranges.
[[nodiscard]] Advice AdviseOnRest(Adviser& adviser, const FaultView& fault);

/// Advice on a definition in the style of another assembler, or in the wrong column; empty if there
/// is none.
[[nodiscard]] Advice AdviseOnDefinition(const StatementView& statement);

/// Advice on "#define X 5"; for other lines, the result of `AdviseOnNameSecond`.
[[nodiscard]] Advice AdviseOnPreprocessor(const StatementView& statement);

/// Advice on a name with invalid characters at the start of the line; empty if there is none.
[[nodiscard]] Advice AdviseOnOddName(Adviser& adviser, const StatementView& statement);

/// Advice on a label that runs into the mnemonic after it; empty if there is none.
[[nodiscard]] Advice AdviseOnGluedLabel(const RunFacts& facts, const StatementView& statement);

/// Advice on a label that is not in column 1, or whose colon is not right after it; empty if there
/// is none.
[[nodiscard]] Advice AdviseOnLabelPlace(const Adviser& adviser, const StatementView& statement);

/// True if `text` has a byte that is not ASCII.
[[nodiscard]] bool HasOddByte(std::string_view text);

/// True if `text` can be a name.
[[nodiscard]] bool IsNameText(std::string_view text);

/// Advice at `part` that proposes no change.
[[nodiscard]] Advice Say(const StatementView& statement, std::string_view part, std::string note);

/// Foreign registers that beginners and translated programs use.
inline constexpr std::string_view foreignRegisters =
    "AX BX CX DX AL AH BL BH CL CH DL DH SI DI BP EAX EBX ECX EDX";

/// Advice to replace `part` with `text`.
[[nodiscard]] Advice Replace(const StatementView& statement, std::string_view part,
                             std::string text, std::string note);

}  // namespace korv
