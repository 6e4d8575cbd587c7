/// The operands that each mnemonic takes, from the processor's published instruction set.
#pragma once

#include <array>
#include <string_view>

namespace korv {

/// The operand forms of some mnemonics. Terms in lower case are classes. r: A to L; s: r, n, (HL)
/// or (xy+d); m: s without n; dd: BC, DE, HL, SP; qq: BC, DE, HL, AF; xy: IX or IY; cc: a
/// condition; c4: NZ, Z, NC, C; n: a byte, nn: a word, e: the target of a relative jump (all three
/// match any value); b: 0 to 7; p: 0, 8 .. 56; i: 0 to 2; x: a value or string; str: a string;
/// name: a file. "*" repeats the operand before it. All other terms match literally.
struct FormRow {
    std::string_view words;           ///< mnemonics, separated by blanks
    std::string_view forms;           ///< separated by blanks; "-" is the form without operands
    bool ignoresParentheses = false;  ///< around a number: JP (nn) is JP nn
};

// clang-format off
inline constexpr auto formTable = std::to_array<FormRow>({
    {"LD", "r,s A,(nn) A,(BC) A,(DE) A,I A,R (HL),r (HL),n (xy+d),r (xy+d),n (nn),A (BC),A (DE),A I,A R,A "
           "dd,nn dd,(nn) xy,nn xy,(nn) (nn),dd (nn),xy SP,HL SP,xy"},
    {"PUSH POP", "qq xy"},
    {"EX", "DE,HL AF,AF' (SP),HL (SP),xy"},
    {"ADD", "A,s s HL,dd IX,BC IX,DE IX,IX IX,SP IY,BC IY,DE IY,IY IY,SP"},
    {"ADC SBC", "A,s HL,dd"},
    {"SUB AND XOR OR CP", "s"},
    {"INC DEC", "m dd xy"},
    {"RL RLC RR RRC SLA SRA SRL", "m"},
    {"BIT SET RES", "b,m", true},
    {"JP", "nn cc,nn (HL) (xy)", true},
    {"JR", "e c4,e", true},
    {"CALL", "nn cc,nn", true},
    {"DJNZ", "e", true},
    {"RET", "- cc", true},
    {"RST", "p", true},
    {"IM", "i", true},
    {"IN", "A,(n) r,(C) F,(C)"},
    {"OUT", "(n),A (C),r (C),F"},
    {"DB DEFB", "x,*", true},
    {"DW DEFW", "nn,*", true},
    {"DS DEFS ORG EQU IF COND", "nn", true},
    {"DM DEFM", "str"},
    {"INCLUDE BINCLUDE", "name"},
});
// clang-format on

}  // namespace korv
