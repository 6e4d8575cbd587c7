/// All handlers, grouped by the file that defines them. A handler runs after its frame, with the
/// operands ready. The keyword table maps words to handlers.
#pragma once

#include <cstdint>

#include "codegen/handler.h"

namespace korv {

// codegen/implied.cpp: the whole encoding is in the keyword's row
Status AssembleImplied(CAssembler* assembler, CStatement* statement, std::uint8_t prefix,
                       std::uint8_t opcode);

// codegen/load.cpp
HandlerFunction AssembleLd;

// codegen/arithmetic.cpp; AND, CP, OR, SUB, XOR use EncodeAccumulatorOp
HandlerFunction AssembleAdd;
/// ADC and SBC; the opcodes are for B and BC as the second operand.
Status AssembleWithCarry(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                         std::uint8_t pairOpcode);
/// INC and DEC; the opcodes are for B and BC.
Status AssembleStep(CAssembler* assembler, CStatement* statement, std::uint8_t byteOpcode,
                    std::uint8_t pairOpcode);

// codegen/bits.cpp; rotates and shifts use ProcessBSR_Ex
/// BIT, RES and SET; `kind` as for ProcessBSR_Ex.
Status AssembleBit(CAssembler* assembler, CStatement* statement, char kind);

// codegen/jumps.cpp
HandlerFunction AssembleCall, AssembleDjnz, AssembleJp, AssembleJr, AssembleRet, AssembleRst;

// codegen/stack_and_ports.cpp
/// PUSH and POP: `opcode` is the one for BC.
Status AssembleStack(CAssembler* assembler, CStatement* statement, std::uint8_t opcode);
HandlerFunction AssembleEx, AssembleIm;
/// IN and OUT; operand `registerPlace` is the register. Opcodes: B with (C), and A with (n).
Status AssembleInOut(CAssembler* assembler, CStatement* statement, std::int32_t registerPlace,
                     std::uint8_t registerOpcode, std::uint8_t portOpcode);

// directives/data.cpp
HandlerFunction AssembleDb, AssembleDm, AssembleDs, AssembleDw, AssembleBinclude;

// directives/origin.cpp
HandlerFunction AssembleOrg, AssembleEqu;

// directives/conditions.cpp
HandlerFunction AssembleIf, AssembleElse, AssembleEndif, AssembleEnd;

// codegen/handler.cpp
/// A command that does nothing but fail with `answer`.
Status AnswerOnly(CAssembler* assembler, CStatement* statement, Status answer);

// source/include_files.cpp
HandlerFunction AssembleInclude;

}  // namespace korv
