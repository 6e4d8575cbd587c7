/// The vocabulary: every mnemonic with its frame, its number of operands, and its handler with the
/// facts that distinguish it within its group. To add an instruction, add its row. The rows are
/// sorted by word. The compiler builds the recogniser's tree from this table, and rejects a table
/// that is out of order or has a word twice.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "codegen/handler.h"
#include "codegen/handlers.h"
#include "codegen/operand_forms.h"

namespace korv {

/// Instructions without operands.
template <std::uint8_t opcode, std::uint8_t prefix = PREFIX_NONE>
constexpr Keyword Implied(std::string_view word) {
    return {word, With<AssembleImplied, prefix, opcode>, noOperand, Frame::operandsFirst};
}
/// The AND group, and the rotates and shifts, given bits 5 to 3 of the opcode.
template <std::int32_t group>
constexpr Keyword AccumulatorOp(std::string_view word) {
    return {word, With<EncodeAccumulatorOp, group>, oneOperand};
}
template <std::int32_t field>
constexpr Keyword Shift(std::string_view word) {
    return {word, With<ProcessBSR_Ex, 'X', field>, oneOperand};
}
/// Reserved commands, which always fail with the message `answer`.
template <Status answer>
constexpr Keyword Reserved(std::string_view word, Frame frame = Frame::labelOnly) {
    return {word, With<AnswerOnly, answer>, noOperand, frame, KeywordGroup::directive};
}
constexpr Keyword Data(std::string_view word, InstructionHandler handler, OperandCount operands) {
    return {word, handler, operands, Frame::labelFirst, KeywordGroup::data};
}
constexpr Keyword Space(std::string_view word) {
    return {word, AssembleDs, oneOperand, Frame::labelFirst, KeywordGroup::space};
}
constexpr Keyword Directive(std::string_view word, InstructionHandler handler,
                            OperandCount operands, Frame frame) {
    return {word, handler, operands, frame, KeywordGroup::directive};
}

// clang-format off
inline constexpr std::array keywords = {
    Keyword{"ADC", With<AssembleWithCarry, 0x88, 0x4A>, twoOperands},
    Keyword{"ADD", AssembleAdd, OperandCount{1, 2, MSG_ARGUMENT_EXPECTED}},
    AccumulatorOp<4>("AND"),
    Data("BINCLUDE", AssembleBinclude, oneOperand),
    Keyword{"BIT", With<AssembleBit, 'B'>, twoOperands},
    Keyword{"CALL", AssembleCall, oneOrTwoOperands},
    Implied<0x3F>("CCF"),
    Directive("COND", AssembleIf, oneOperand, Frame::noLabel),
    AccumulatorOp<7>("CP"),
    Implied<0xA9, PREFIX_ED>("CPD"),
    Implied<0xB9, PREFIX_ED>("CPDR"),
    Implied<0xA1, PREFIX_ED>("CPI"),
    Implied<0xB1, PREFIX_ED>("CPIR"),
    Implied<0x2F>("CPL"),
    Implied<0x27>("DAA"),
    Data("DB", AssembleDb, anyOperands),
    Reserved<MSG_NOT_IMPLEMENTED>("DD"),
    Keyword{"DEC", With<AssembleStep, 0x05, 0x0B>, oneOperand},
    Data("DEFB", AssembleDb, anyOperands),
    Reserved<MSG_NOT_IMPLEMENTED>("DEFD"),
    Data("DEFM", AssembleDm, oneOperand),
    Space("DEFS"),
    Data("DEFW", AssembleDw, anyOperands),
    Implied<0xF3>("DI"),
    Keyword{"DJNZ", AssembleDjnz, oneOperand},
    Data("DM", AssembleDm, oneOperand),
    Space("DS"),
    Data("DW", AssembleDw, anyOperands),
    Implied<0xFB>("EI"),
    Directive("ELSE", AssembleElse, noOperand, Frame::noLabel),
    Directive("END", AssembleEnd, noOperand, Frame::labelFirst),
    Directive("ENDC", AssembleEndif, noOperand, Frame::noLabel),
    Directive("ENDIF", AssembleEndif, noOperand, Frame::noLabel),
    Reserved<MSG_NOT_IN_MACRO>("ENDM", Frame::nothing),
    Reserved<MSG_NOT_IMPLEMENTED>("ENDP"),
    Directive("EQU", AssembleEqu, oneOperand, Frame::operandsOnly),
    Keyword{"EX", AssembleEx, twoOperands},
    Implied<0xD9>("EXX"),
    Implied<0x76>("HALT"),
    Directive("IF", AssembleIf, oneOperand, Frame::noLabel),
    Keyword{"IM", AssembleIm, oneOperand},
    Keyword{"IN", With<AssembleInOut, 1, 0x40, 0xDB>, twoOperands},
    Keyword{"INC", With<AssembleStep, 0x04, 0x03>, oneOperand},
    Directive("INCLUDE", AssembleInclude, oneOperand, Frame::labelFirst),
    Implied<0xAA, PREFIX_ED>("IND"),
    Implied<0xBA, PREFIX_ED>("INDR"),
    Implied<0xA2, PREFIX_ED>("INI"),
    Implied<0xB2, PREFIX_ED>("INIR"),
    Keyword{"JP", AssembleJp, oneOrTwoOperands},
    Keyword{"JR", AssembleJr, oneOrTwoOperands},
    Keyword{"LD", AssembleLd, twoOperands},
    Implied<0xA8, PREFIX_ED>("LDD"),
    Implied<0xB8, PREFIX_ED>("LDDR"),
    Implied<0xA0, PREFIX_ED>("LDI"),
    Implied<0xB0, PREFIX_ED>("LDIR"),
    Reserved<MSG_NOT_IMPLEMENTED>("MACRO", Frame::nothing),
    Reserved<MSG_NOT_IMPLEMENTED>("MAC_OFF"),
    Reserved<MSG_NOT_IMPLEMENTED>("MAC_ON"),
    Implied<0x44, PREFIX_ED>("NEG"),
    Implied<0x00>("NOP"),
    AccumulatorOp<6>("OR"),
    Directive("ORG", AssembleOrg, oneOperand, Frame::operandsOnly),
    Implied<0xBB, PREFIX_ED>("OTDR"),
    Implied<0xB3, PREFIX_ED>("OTIR"),
    Keyword{"OUT", With<AssembleInOut, 2, 0x41, 0xD3>, twoOperands},
    Implied<0xAB, PREFIX_ED>("OUTD"),
    Implied<0xA3, PREFIX_ED>("OUTI"),
    Keyword{"POP", With<AssembleStack, 0xC1>, oneOperand},
    Reserved<MSG_NOT_IMPLEMENTED>("PROC"),
    Keyword{"PUSH", With<AssembleStack, 0xC5>, oneOperand},
    Keyword{"RES", With<AssembleBit, 'R'>, twoOperands},
    Keyword{"RET", AssembleRet, noneOrOneOperand},
    Implied<0x4D, PREFIX_ED>("RETI"),
    Implied<0x45, PREFIX_ED>("RETN"),
    Shift<2>("RL"),
    Implied<0x17>("RLA"),
    Shift<0>("RLC"),
    Implied<0x07>("RLCA"),
    Implied<0x6F, PREFIX_ED>("RLD"),
    Shift<3>("RR"),
    Implied<0x1F>("RRA"),
    Shift<1>("RRC"),
    Implied<0x0F>("RRCA"),
    Implied<0x67, PREFIX_ED>("RRD"),
    Keyword{"RST", AssembleRst, oneOperand},
    Keyword{"SBC", With<AssembleWithCarry, 0x98, 0x42>, twoOperands},
    Implied<0x37>("SCF"),
    Keyword{"SET", With<AssembleBit, 'S'>, twoOperands},
    Shift<4>("SLA"),
    Shift<5>("SRA"),
    Shift<7>("SRL"),
    AccumulatorOp<2>("SUB"),
    AccumulatorOp<5>("XOR"),
};
// clang-format on

}  // namespace korv
