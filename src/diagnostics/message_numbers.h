/// The message numbers that code reports by name, and the texts of all of them. A number is a row
/// of MESSAGE_TABLE; whether a report is an error or a warning is decided by the list that it goes
/// to. This header includes nothing of the project and is open to all folders.
#pragma once

#include <array>
#include <cstdint>

namespace korv {

inline constexpr std::array MESSAGE_TABLE = {
    "Error #0.",
    "System Error!",
    "*Identifiers*",
    "*FileIO*",
    "*BinBlock*",
    "Error Base!",
    "Error in line.",
    "Missing argument.",
    "Identifier redefinition.",
    "Identifier registration error.",
    "Could not open file.",  // 10
    "No source filename.",
    "Could not resolve label.",
    "Too many arguments.",
    "Argument expected.",
    "Program aborted!",
    "Illegal argument.",
    "Could not resolve value immediately.",
    "No label found on current line!",
    "Instruction not implemented yet! *SoRrY!",
    "Could not resolve expression.",  // 20
    "",
    "Not a signed 8 Bit value.",
    "Not a 16 Bit value.",
    "General failure!",
    "Evaluation Stack Overflow -> Expression too complex.",
    "System error: No Equ Label found!",
    "Not an unsigned 8 Bit value.",
    "Relative offset too big.",
    "No backpatch information found! (System error!?!)",
    "Source file is target file!",  // 30
    "Could not change directory.",
    "Could not get directory.",
    "Illegal or unknown instruction.",
    "Not in condition.",
    "Illegal ELSE.",
    "Conditions nested too deep.",
    "Label too long.",
    "Maximum file nesting depth reached.",
    "Not a signed 16 Bit value.",
    "Not an 8 Bit value.",  // 40
    "Line too long.",
    "",  // 42 is not used
    "Label not allowed here.",
    "Empty string not allowed.",
    "No closing quote.",
    "Instruction/command names not allowed as label.",
    "ORG used after start of code, start address not changed!",
    "ORG used in code.",
    "MACRO nesting not supported.",
    "No MACRO name supplied.",  // 50
    "Not doing MACRO.",
    "Out of Memory.",
    "Number too long.",
    "Illegal condition.",
    "Error parsing number.",
    "Warning Base!",
    "Label not ended with ':'.",
    "Gen80 command line skipped.",
    "Expected argument.",
    "ORG used!",  // 60
};
static_assert(MESSAGE_TABLE.size() == 61);

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
inline constexpr std::int32_t MSG_TEXT_BEHIND_STRING = 44;
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

}  // namespace korv
