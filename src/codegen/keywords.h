/// The vocabulary: every mnemonic with its frame, its number of operands, and its handler with the
/// facts that distinguish it within its group. To add an instruction, add its row. The order is
/// that of the characters; the compiler makes the recogniser's tree from this table and refuses a
/// table that is out of order or holds a word twice.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "codegen/handler.h"
#include "codegen/handlers.h"
#include "codegen/operand_forms.h"

namespace korv {

/// Instructions without operands: the opcode, alone or after ED.
template <std::uint8_t opcode>
constexpr Keyword Implied(std::string_view word) {
    return {word, With<AssembleImplied, opcode>, noOperand, Frame::operandsFirst};
}
template <std::uint8_t opcode>
constexpr Keyword ImpliedEd(std::string_view word) {
    return {word, With<AssembleImpliedEd, opcode>, noOperand, Frame::operandsFirst};
}
/// The group of AND, and the rotates and shifts, by the number in bits 5 to 3 of their opcodes.
template <std::int32_t group>
constexpr Keyword AccumulatorOp(std::string_view word) {
    return {word, With<EncodeAccumulatorOp, group>, oneOperand};
}
template <std::int32_t field>
constexpr Keyword Shift(std::string_view word) {
    return {word, With<ProcessBSR_Ex, 'X', field>, oneOperand};
}
/// Commands whose names are taken, with the message that they answer.
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
    ImpliedEd<0xA9>("CPD"),
    ImpliedEd<0xB9>("CPDR"),
    ImpliedEd<0xA1>("CPI"),
    ImpliedEd<0xB1>("CPIR"),
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
    ImpliedEd<0xAA>("IND"),
    ImpliedEd<0xBA>("INDR"),
    ImpliedEd<0xA2>("INI"),
    ImpliedEd<0xB2>("INIR"),
    Keyword{"JP", AssembleJp, oneOrTwoOperands},
    Keyword{"JR", AssembleJr, oneOrTwoOperands},
    Keyword{"LD", AssembleLd, twoOperands},
    ImpliedEd<0xA8>("LDD"),
    ImpliedEd<0xB8>("LDDR"),
    ImpliedEd<0xA0>("LDI"),
    ImpliedEd<0xB0>("LDIR"),
    Reserved<MSG_NOT_IMPLEMENTED>("MACRO", Frame::nothing),
    Reserved<MSG_NOT_IMPLEMENTED>("MAC_OFF"),
    Reserved<MSG_NOT_IMPLEMENTED>("MAC_ON"),
    ImpliedEd<0x44>("NEG"),
    Implied<0x00>("NOP"),
    AccumulatorOp<6>("OR"),
    Directive("ORG", AssembleOrg, oneOperand, Frame::operandsOnly),
    ImpliedEd<0xBB>("OTDR"),
    ImpliedEd<0xB3>("OTIR"),
    Keyword{"OUT", With<AssembleInOut, 2, 0x41, 0xD3>, twoOperands},
    ImpliedEd<0xAB>("OUTD"),
    ImpliedEd<0xA3>("OUTI"),
    Keyword{"POP", With<AssembleStack, 0xC1>, oneOperand},
    Reserved<MSG_NOT_IMPLEMENTED>("PROC"),
    Keyword{"PUSH", With<AssembleStack, 0xC5>, oneOperand},
    Keyword{"RES", With<AssembleBit, 'R'>, twoOperands},
    Keyword{"RET", AssembleRet, noneOrOneOperand},
    ImpliedEd<0x4D>("RETI"),
    ImpliedEd<0x45>("RETN"),
    Shift<2>("RL"),
    Implied<0x17>("RLA"),
    Shift<0>("RLC"),
    Implied<0x07>("RLCA"),
    ImpliedEd<0x6F>("RLD"),
    Shift<3>("RR"),
    Implied<0x1F>("RRA"),
    Shift<1>("RRC"),
    Implied<0x0F>("RRCA"),
    ImpliedEd<0x67>("RRD"),
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
