/// All handlers, by the file that defines them. They begin where their frame is done, with the
/// operands ready. The keyword table says which word leads to which.
#pragma once

#include <cstdint>

#include "codegen/handler.h"

namespace korv {

// codegen/implied.cpp: the whole encoding is in the row
Status AssembleImplied(CAssembler* assembler, CStatement* statement, std::uint8_t prefix,
                       std::uint8_t opcode);

// codegen/load.cpp
Status AssembleLd(CAssembler* assembler, CStatement* statement);

// codegen/arithmetic.cpp; AND, CP, OR, SUB, XOR are EncodeAccumulatorOp
Status AssembleAdd(CAssembler* assembler, CStatement* statement);
/// ADC and SBC: the opcodes with B and with BC as second operand.
Status AssembleWithCarry(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                         std::uint8_t pairOpcode);
/// INC and DEC: the opcodes with B and with BC.
Status AssembleStep(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                    std::uint8_t pairOpcode);

// codegen/bits.cpp; rotates and shifts are ProcessBSR_Ex
/// BIT, RES and SET: `kind` as in ProcessBSR_Ex.
Status AssembleBit(CAssembler* assembler, CStatement* statement, char kind);

// codegen/jumps.cpp
Status AssembleCall(CAssembler* assembler, CStatement* statement);
Status AssembleDjnz(CAssembler* assembler, CStatement* statement);
Status AssembleJp(CAssembler* assembler, CStatement* statement);
Status AssembleJr(CAssembler* assembler, CStatement* statement);
Status AssembleRet(CAssembler* assembler, CStatement* statement);
Status AssembleRst(CAssembler* assembler, CStatement* statement);

// codegen/stack_and_ports.cpp
/// PUSH and POP: the opcode with BC.
Status AssembleStack(CAssembler* assembler, CStatement* statement, std::uint8_t opcode);
Status AssembleEx(CAssembler* assembler, CStatement* statement);
Status AssembleIm(CAssembler* assembler, CStatement* statement);
/// IN and OUT: the place of the register among the operands, the opcodes with B and with A.
Status AssembleInOut(CAssembler* assembler, CStatement* statement, std::int32_t registerPlace,
                     std::uint8_t registerOpcode, std::uint8_t portOpcode);

// directives/data.cpp
Status AssembleDb(CAssembler* assembler, CStatement* statement);
Status AssembleDm(CAssembler* assembler, CStatement* statement);
Status AssembleDs(CAssembler* assembler, CStatement* statement);
Status AssembleDw(CAssembler* assembler, CStatement* statement);
Status AssembleBinclude(CAssembler* assembler, CStatement* statement);

// directives/origin.cpp
Status AssembleOrg(CAssembler* assembler, CStatement* statement);
Status AssembleEqu(CAssembler* assembler, CStatement* statement);

// directives/conditions.cpp
Status AssembleIf(CAssembler* assembler, CStatement* statement);
Status AssembleElse(CAssembler* assembler, CStatement* statement);
Status AssembleEndif(CAssembler* assembler, CStatement* statement);
Status AssembleEnd(CAssembler* assembler, CStatement* statement);

// codegen/handler.cpp
/// A command without a function: its result is `answer`.
Status AnswerOnly(CAssembler* assembler, CStatement* statement, Status answer);

// source/include_files.cpp
Status AssembleInclude(CAssembler* assembler, CStatement* statement);

}  // namespace korv
