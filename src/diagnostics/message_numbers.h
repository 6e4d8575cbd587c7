/// The message numbers that code reports by name, and the texts of all of them. A number is a row
/// of MESSAGE_TABLE; whether a report is an error or a warning is decided by the list that it goes
/// to. This header includes nothing of the project and is open to all folders.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace korv {

/// The result of what can fail: 0, a row of MESSAGE_TABLE, or -1, which has a name for each
/// function that returns it.
using Status = std::int32_t;
inline constexpr Status generalFailure = -1;  ///< handlers; reported as MSG_GENERAL_FAILURE
inline constexpr Status endOfFile = -1;       ///< CSourceFile::ReadLine
inline constexpr Status emptyOperand = -1;    ///< KO_Args::Add; reported as an internal error
inline constexpr Status patchFailed = -1;     ///< CIdentifierManager::Backpatch
inline constexpr Status listIsFull = -1;      ///< CMessageList
inline constexpr Status noStream = -1;        ///< DumpStatus

inline constexpr std::int32_t MSG_SYSTEM_ERROR = 1;
inline constexpr std::int32_t MSG_REDEFINITION = 8;
inline constexpr std::int32_t MSG_CANNOT_OPEN = 10;
inline constexpr std::int32_t MSG_NO_SOURCE_NAME = 11;
inline constexpr std::int32_t MSG_UNRESOLVED = 12;
inline constexpr std::int32_t MSG_TOO_MANY_ARGUMENTS = 13;
inline constexpr std::int32_t MSG_ARGUMENT_EXPECTED = 14;
inline constexpr std::int32_t MSG_ABORTED = 15;
inline constexpr std::int32_t MSG_ILLEGAL_ARGUMENT = 16;
inline constexpr std::int32_t MSG_NOT_IMMEDIATE = 17;
inline constexpr std::int32_t MSG_NO_LABEL = 18;
inline constexpr std::int32_t MSG_NOT_IMPLEMENTED = 19;
inline constexpr std::int32_t MSG_BAD_EXPRESSION = 20;
inline constexpr std::int32_t MSG_NOT_SIGNED_BYTE = 22;
inline constexpr std::int32_t MSG_NOT_WORD = 23;
inline constexpr std::int32_t MSG_GENERAL_FAILURE = 24;
inline constexpr std::int32_t MSG_TOO_COMPLEX = 25;
inline constexpr std::int32_t MSG_NO_EQU_LABEL = 26;
inline constexpr std::int32_t MSG_NOT_UNSIGNED_BYTE = 27;
inline constexpr std::int32_t MSG_OFFSET_TOO_BIG = 28;
inline constexpr std::int32_t MSG_NO_PATCHES = 29;
inline constexpr std::int32_t MSG_SOURCE_IS_TARGET = 30;
inline constexpr std::int32_t MSG_CANNOT_CHANGE_DIRECTORY = 31;
inline constexpr std::int32_t MSG_CANNOT_GET_DIRECTORY = 32;
inline constexpr std::int32_t MSG_UNKNOWN_INSTRUCTION = 33;
inline constexpr std::int32_t MSG_NOT_IN_CONDITION = 34;
inline constexpr std::int32_t MSG_ILLEGAL_ELSE = 35;
inline constexpr std::int32_t MSG_CONDITIONS_TOO_DEEP = 36;
inline constexpr std::int32_t MSG_LABEL_TOO_LONG = 37;
inline constexpr std::int32_t MSG_FILES_TOO_DEEP = 38;
inline constexpr std::int32_t MSG_NOT_SIGNED_WORD = 39;
inline constexpr std::int32_t MSG_NOT_BYTE = 40;
inline constexpr std::int32_t MSG_LINE_TOO_LONG = 41;
inline constexpr std::int32_t MSG_LABEL_NOT_ALLOWED = 43;
inline constexpr std::int32_t MSG_TEXT_AFTER_STRING = 44;
inline constexpr std::int32_t MSG_NO_CLOSING_QUOTE = 45;
inline constexpr std::int32_t MSG_RESERVED_NAME = 46;
inline constexpr std::int32_t MSG_ORG_AFTER_CODE = 47;
inline constexpr std::int32_t MSG_ORG_IN_CODE = 48;
inline constexpr std::int32_t MSG_NOT_IN_MACRO = 51;
inline constexpr std::int32_t MSG_OUT_OF_MEMORY = 52;
inline constexpr std::int32_t MSG_ILLEGAL_CONDITION = 54;
inline constexpr std::int32_t MSG_BAD_NUMBER = 55;
inline constexpr std::int32_t MSG_LABEL_WITHOUT_COLON = 57;
inline constexpr std::int32_t MSG_COMMAND_LINE_SKIPPED = 58;
inline constexpr std::int32_t MSG_EXPECTED_ARGUMENT = 59;
inline constexpr std::int32_t MSG_ORG_USED = 60;

struct MessageRow {
    std::int32_t number;
    const char* text;
};

/// The row of a number is at that index. A number that nobody reports has no name.
inline constexpr auto MESSAGE_TABLE = std::to_array<MessageRow>({
    {0, "Error #0."},
    {MSG_SYSTEM_ERROR, "System Error!"},
    {2, "*Identifiers*"},
    {3, "*FileIO*"},
    {4, "*BinBlock*"},
    {5, "Error Base!"},
    {6, "Error in line."},
    {7, "Missing argument."},
    {MSG_REDEFINITION, "Identifier redefinition."},
    {9, "Identifier registration error."},
    {MSG_CANNOT_OPEN, "Could not open file."},
    {MSG_NO_SOURCE_NAME, "No source filename."},
    {MSG_UNRESOLVED, "Could not resolve label."},
    {MSG_TOO_MANY_ARGUMENTS, "Too many arguments."},
    {MSG_ARGUMENT_EXPECTED, "Argument expected."},
    {MSG_ABORTED, "Program aborted!"},
    {MSG_ILLEGAL_ARGUMENT, "Illegal argument."},
    {MSG_NOT_IMMEDIATE, "Could not resolve value immediately."},
    {MSG_NO_LABEL, "No label found on current line!"},
    {MSG_NOT_IMPLEMENTED, "Instruction not implemented yet! *SoRrY!"},
    {MSG_BAD_EXPRESSION, "Could not resolve expression."},
    {21, ""},
    {MSG_NOT_SIGNED_BYTE, "Not a signed 8 Bit value."},
    {MSG_NOT_WORD, "Not a 16 Bit value."},
    {MSG_GENERAL_FAILURE, "General failure!"},
    {MSG_TOO_COMPLEX, "Evaluation Stack Overflow -> Expression too complex."},
    {MSG_NO_EQU_LABEL, "System error: No Equ Label found!"},
    {MSG_NOT_UNSIGNED_BYTE, "Not an unsigned 8 Bit value."},
    {MSG_OFFSET_TOO_BIG, "Relative offset too big."},
    {MSG_NO_PATCHES, "No backpatch information found! (System error!?!)"},
    {MSG_SOURCE_IS_TARGET, "Source file is target file!"},
    {MSG_CANNOT_CHANGE_DIRECTORY, "Could not change directory."},
    {MSG_CANNOT_GET_DIRECTORY, "Could not get directory."},
    {MSG_UNKNOWN_INSTRUCTION, "Illegal or unknown instruction."},
    {MSG_NOT_IN_CONDITION, "Not in condition."},
    {MSG_ILLEGAL_ELSE, "Illegal ELSE."},
    {MSG_CONDITIONS_TOO_DEEP, "Conditions nested too deep."},
    {MSG_LABEL_TOO_LONG, "Label too long."},
    {MSG_FILES_TOO_DEEP, "Maximum file nesting depth reached."},
    {MSG_NOT_SIGNED_WORD, "Not a signed 16 Bit value."},
    {MSG_NOT_BYTE, "Not an 8 Bit value."},
    {MSG_LINE_TOO_LONG, "Line too long."},
    {42, ""},  // not used
    {MSG_LABEL_NOT_ALLOWED, "Label not allowed here."},
    {MSG_TEXT_AFTER_STRING, "Empty string not allowed."},
    {MSG_NO_CLOSING_QUOTE, "No closing quote."},
    {MSG_RESERVED_NAME, "Instruction/command names not allowed as label."},
    {MSG_ORG_AFTER_CODE, "ORG used after start of code, start address not changed!"},
    {MSG_ORG_IN_CODE, "ORG used in code."},
    {49, "MACRO nesting not supported."},
    {50, "No MACRO name supplied."},
    {MSG_NOT_IN_MACRO, "Not doing MACRO."},
    {MSG_OUT_OF_MEMORY, "Out of Memory."},
    {53, "Number too long."},
    {MSG_ILLEGAL_CONDITION, "Illegal condition."},
    {MSG_BAD_NUMBER, "Error parsing number."},
    {56, "Warning Base!"},
    {MSG_LABEL_WITHOUT_COLON, "Label not ended with ':'."},
    {MSG_COMMAND_LINE_SKIPPED, "Gen80 command line skipped."},
    {MSG_EXPECTED_ARGUMENT, "Expected argument."},
    {MSG_ORG_USED, "ORG used!"},
});

static_assert(MESSAGE_TABLE[0].number == 0 &&
                  std::ranges::adjacent_find(MESSAGE_TABLE,
                                             [](const MessageRow& a, const MessageRow& b) {
                                                 return b.number != a.number + 1;
                                             }) == MESSAGE_TABLE.end(),
              "a row of MESSAGE_TABLE is not at the place of its number");

}  // namespace korv
