/// The messages: number, name and text of each. A report is an error or a warning, depending on the
/// list to which it is added. This header includes no other header of the project, so all folders
/// may include it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <iterator>

namespace korv {

/// The result of a function that can fail: 0, the number of a row of MESSAGE_TABLE, or -1. The
/// value -1 has a separate name for each function that returns it.
using Status = std::int32_t;
inline constexpr Status generalFailure = -1;  ///< handlers; reported as MSG_GENERAL_FAILURE
inline constexpr Status endOfFile = -1;       ///< CSourceFile::ReadLine
inline constexpr Status emptyOperand = -1;    ///< KO_Args::Add; reported as an internal error
inline constexpr Status patchFailed = -1;     ///< CIdentifierManager::Backpatch
inline constexpr Status noStream = -1;        ///< DumpStatus

/// All messages by number. Some are never reported.
// clang-format off
#define KORV_MESSAGES(ROW) \
    ROW(0, MSG_NONE, "Error #0.") \
    ROW(1, MSG_SYSTEM_ERROR, "System Error!") \
    ROW(2, MSG_IDENTIFIERS, "*Identifiers*") \
    ROW(3, MSG_FILE_IO, "*FileIO*") \
    ROW(4, MSG_BIN_BLOCK, "*BinBlock*") \
    ROW(5, MSG_ERROR_BASE, "Error Base!") \
    ROW(6, MSG_ERROR_IN_LINE, "Error in line.") \
    ROW(7, MSG_MISSING_ARGUMENT, "Missing argument.") \
    ROW(8, MSG_REDEFINITION, "Identifier redefinition.") \
    ROW(9, MSG_REGISTRATION, "Identifier registration error.") \
    ROW(10, MSG_CANNOT_OPEN, "Could not open file.") \
    ROW(11, MSG_NO_SOURCE_NAME, "No source filename.") \
    ROW(12, MSG_UNRESOLVED, "Could not resolve label.") \
    ROW(13, MSG_TOO_MANY_ARGUMENTS, "Too many arguments.") \
    ROW(14, MSG_ARGUMENT_EXPECTED, "Argument expected.") \
    ROW(15, MSG_ABORTED, "Program aborted!") \
    ROW(16, MSG_ILLEGAL_ARGUMENT, "Illegal argument.") \
    ROW(17, MSG_NOT_IMMEDIATE, "Could not resolve value immediately.") \
    ROW(18, MSG_NO_LABEL, "No label found on current line!") \
    ROW(19, MSG_NOT_IMPLEMENTED, "Instruction not implemented yet! *SoRrY!") \
    ROW(20, MSG_BAD_EXPRESSION, "Could not resolve expression.") \
    ROW(21, MSG_UNUSED_21, "") \
    ROW(22, MSG_NOT_SIGNED_BYTE, "Not a signed 8 Bit value.") \
    ROW(23, MSG_NOT_WORD, "Not a 16 Bit value.") \
    ROW(24, MSG_GENERAL_FAILURE, "General failure!") \
    ROW(25, MSG_TOO_COMPLEX, "Evaluation Stack Overflow -> Expression too complex.") \
    ROW(26, MSG_NO_EQU_LABEL, "System error: No Equ Label found!") \
    ROW(27, MSG_NOT_UNSIGNED_BYTE, "Not an unsigned 8 Bit value.") \
    ROW(28, MSG_OFFSET_TOO_BIG, "Relative offset too big.") \
    ROW(29, MSG_NO_PATCHES, "No backpatch information found! (System error!?!)") \
    ROW(30, MSG_SOURCE_IS_TARGET, "Source file is target file!") \
    ROW(31, MSG_CANNOT_CHANGE_DIRECTORY, "Could not change directory.") \
    ROW(32, MSG_CANNOT_GET_DIRECTORY, "Could not get directory.") \
    ROW(33, MSG_UNKNOWN_INSTRUCTION, "Illegal or unknown instruction.") \
    ROW(34, MSG_NOT_IN_CONDITION, "Not in condition.") \
    ROW(35, MSG_ILLEGAL_ELSE, "Illegal ELSE.") \
    ROW(36, MSG_CONDITIONS_TOO_DEEP, "Conditions nested too deep.") \
    ROW(37, MSG_LABEL_TOO_LONG, "Label too long.") \
    ROW(38, MSG_FILES_TOO_DEEP, "Maximum file nesting depth reached.") \
    ROW(39, MSG_NOT_SIGNED_WORD, "Not a signed 16 Bit value.") \
    ROW(40, MSG_NOT_BYTE, "Not an 8 Bit value.") \
    ROW(41, MSG_LINE_TOO_LONG, "Line too long.") \
    ROW(42, MSG_UNUSED_42, "") \
    ROW(43, MSG_LABEL_NOT_ALLOWED, "Label not allowed here.") \
    ROW(44, MSG_TEXT_AFTER_STRING, "Empty string not allowed.") \
    ROW(45, MSG_NO_CLOSING_QUOTE, "No closing quote.") \
    ROW(46, MSG_RESERVED_NAME, "Instruction/command names not allowed as label.") \
    ROW(47, MSG_ORG_AFTER_CODE, "ORG used after start of code, start address not changed!") \
    ROW(48, MSG_ORG_IN_CODE, "ORG used in code.") \
    ROW(49, MSG_MACRO_NESTING, "MACRO nesting not supported.") \
    ROW(50, MSG_NO_MACRO_NAME, "No MACRO name supplied.") \
    ROW(51, MSG_NOT_IN_MACRO, "Not doing MACRO.") \
    ROW(52, MSG_OUT_OF_MEMORY, "Out of Memory.") \
    ROW(53, MSG_NUMBER_TOO_LONG, "Number too long.") \
    ROW(54, MSG_ILLEGAL_CONDITION, "Illegal condition.") \
    ROW(55, MSG_BAD_NUMBER, "Error parsing number.") \
    ROW(56, MSG_WARNING_BASE, "Warning Base!") \
    ROW(57, MSG_LABEL_WITHOUT_COLON, "Label not ended with ':'.") \
    ROW(58, MSG_COMMAND_LINE_SKIPPED, "Gen80 command line skipped.") \
    ROW(59, MSG_EXPECTED_ARGUMENT, "Expected argument.") \
    ROW(60, MSG_ORG_USED, "ORG used!")
// clang-format on

#define KORV_NUMBER(number, name, text) inline constexpr std::int32_t name = number;
KORV_MESSAGES(KORV_NUMBER)
#undef KORV_NUMBER

struct MessageRow {
    std::int32_t number;
    const char* text;
};

/// All rows, indexed by message number.
#define KORV_ROW(number, name, text) {number, text},
inline constexpr auto MESSAGE_TABLE = std::to_array<MessageRow>({KORV_MESSAGES(KORV_ROW)});
#undef KORV_ROW

static_assert(MESSAGE_TABLE.front().number == 0 &&
                  MESSAGE_TABLE.back().number + 1 == std::ssize(MESSAGE_TABLE) &&
                  std::ranges::is_sorted(MESSAGE_TABLE, std::ranges::less_equal(),
                                         &MessageRow::number),
              "a row of MESSAGE_TABLE is not at the place of its number");

}  // namespace korv
