/// The vocabulary: every word that may stand as a mnemonic, with its handler. To add an
/// instruction, add its row. The order is that of the characters; the recogniser's tree is made
/// from this table by the compiler, which refuses a table out of order and thereby a word given
/// twice.
#pragma once

#include <array>
#include <string_view>

#include "codegen/handler.h"
#include "codegen/handlers.h"
#include "codegen/implied.h"

namespace korv {

struct Keyword {
    std::string_view word;
    InstructionHandler handler;
};

// clang-format off
inline constexpr std::array keywords = {
    Keyword{"ADC", HandleAdc},
    Keyword{"ADD", HandleAdd},
    Keyword{"AND", HandleAccumulatorOp<4>},
    Keyword{"BINCLUDE", HandleBinclude},
    Keyword{"BIT", HandleBit<'B'>},
    Keyword{"CALL", HandleCall},
    Keyword{"CCF", HandleImplied<0x3F>},
    Keyword{"COND", HandleIf},
    Keyword{"CP", HandleAccumulatorOp<7>},
    Keyword{"CPD", HandleImplied<0xED, 0xA9>},
    Keyword{"CPDR", HandleImplied<0xED, 0xB9>},
    Keyword{"CPI", HandleImplied<0xED, 0xA1>},
    Keyword{"CPIR", HandleImplied<0xED, 0xB1>},
    Keyword{"CPL", HandleImplied<0x2F>},
    Keyword{"DAA", HandleImplied<0x27>},
    Keyword{"DB", HandleDb},
    Keyword{"DD", HandleDd},
    Keyword{"DEC", HandleDec},
    Keyword{"DEFB", HandleDb},
    Keyword{"DEFD", HandleDd},
    Keyword{"DEFM", HandleDm},
    Keyword{"DEFS", HandleDs},
    Keyword{"DEFW", HandleDw},
    Keyword{"DI", HandleImplied<0xF3>},
    Keyword{"DJNZ", HandleDjnz},
    Keyword{"DM", HandleDm},
    Keyword{"DS", HandleDs},
    Keyword{"DW", HandleDw},
    Keyword{"EI", HandleImplied<0xFB>},
    Keyword{"ELSE", HandleElse},
    Keyword{"END", HandleEnd},
    Keyword{"ENDC", HandleEndif},
    Keyword{"ENDIF", HandleEndif},
    Keyword{"ENDM", HandleEndm},
    Keyword{"ENDP", HandleEndp},
    Keyword{"EQU", HandleEqu},
    Keyword{"EX", HandleEx},
    Keyword{"EXX", HandleImplied<0xD9>},
    Keyword{"HALT", HandleImplied<0x76>},
    Keyword{"IF", HandleIf},
    Keyword{"IM", HandleIm},
    Keyword{"IN", HandleIn},
    Keyword{"INC", HandleInc},
    Keyword{"INCLUDE", HandleInclude},
    Keyword{"IND", HandleImplied<0xED, 0xAA>},
    Keyword{"INDR", HandleImplied<0xED, 0xBA>},
    Keyword{"INI", HandleImplied<0xED, 0xA2>},
    Keyword{"INIR", HandleImplied<0xED, 0xB2>},
    Keyword{"JP", HandleJp},
    Keyword{"JR", HandleJr},
    Keyword{"LD", HandleLd},
    Keyword{"LDD", HandleImplied<0xED, 0xA8>},
    Keyword{"LDDR", HandleImplied<0xED, 0xB8>},
    Keyword{"LDI", HandleImplied<0xED, 0xA0>},
    Keyword{"LDIR", HandleImplied<0xED, 0xB0>},
    Keyword{"MACRO", HandleMacro},
    Keyword{"MAC_OFF", HandleMacOff},
    Keyword{"MAC_ON", HandleMacOn},
    Keyword{"NEG", HandleImplied<0xED, 0x44>},
    Keyword{"NOP", HandleImplied<0x00>},
    Keyword{"OR", HandleAccumulatorOp<6>},
    Keyword{"ORG", HandleOrg},
    Keyword{"OTDR", HandleImplied<0xED, 0xBB>},
    Keyword{"OTIR", HandleImplied<0xED, 0xB3>},
    Keyword{"OUT", HandleOut},
    Keyword{"OUTD", HandleImplied<0xED, 0xAB>},
    Keyword{"OUTI", HandleImplied<0xED, 0xA3>},
    Keyword{"POP", HandlePop},
    Keyword{"PROC", HandleProc},
    Keyword{"PUSH", HandlePush},
    Keyword{"RES", HandleBit<'R'>},
    Keyword{"RET", HandleRet},
    Keyword{"RETI", HandleImplied<0xED, 0x4D>},
    Keyword{"RETN", HandleImplied<0xED, 0x45>},
    Keyword{"RL", HandleShift<2>},
    Keyword{"RLA", HandleImplied<0x17>},
    Keyword{"RLC", HandleShift<0>},
    Keyword{"RLCA", HandleImplied<0x07>},
    Keyword{"RLD", HandleImplied<0xED, 0x6F>},
    Keyword{"RR", HandleShift<3>},
    Keyword{"RRA", HandleImplied<0x1F>},
    Keyword{"RRC", HandleShift<1>},
    Keyword{"RRCA", HandleImplied<0x0F>},
    Keyword{"RRD", HandleImplied<0xED, 0x67>},
    Keyword{"RST", HandleRst},
    Keyword{"SBC", HandleSbc},
    Keyword{"SCF", HandleImplied<0x37>},
    Keyword{"SET", HandleBit<'S'>},
    Keyword{"SLA", HandleShift<4>},
    Keyword{"SRA", HandleShift<5>},
    Keyword{"SRL", HandleShift<7>},
    Keyword{"SUB", HandleAccumulatorOp<2>},
    Keyword{"XOR", HandleAccumulatorOp<5>},
};
// clang-format on

}  // namespace korv
