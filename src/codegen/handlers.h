/// All handlers, by the file that defines them. The keyword table says which word leads to which.
/// Instructions that differ in a number alone share a template.
#pragma once

#include <cstdint>

namespace korv {

class CAssembler;
struct CStatement;

// The instructions without operands are in codegen/implied.h.

// codegen/load.cpp
std::int32_t HandleLd(CAssembler* assembler, CStatement* statement);

// codegen/arithmetic.cpp
std::int32_t HandleAdc(CAssembler* assembler, CStatement* statement);
std::int32_t HandleAdd(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDec(CAssembler* assembler, CStatement* statement);
std::int32_t HandleInc(CAssembler* assembler, CStatement* statement);
std::int32_t HandleSbc(CAssembler* assembler, CStatement* statement);

/// `group` is the number in bits 5 to 3 of the opcode.
std::int32_t AssembleAccumulatorOp(CAssembler* assembler, CStatement* statement,
                                   std::int32_t group);
template <std::int32_t group>
std::int32_t HandleAccumulatorOp(CAssembler* assembler, CStatement* statement) {
    return AssembleAccumulatorOp(assembler, statement, group);
}

// codegen/bits.cpp
/// `kind` and `field` are those of ProcessBSR_Ex.
std::int32_t AssembleBit(CAssembler* assembler, CStatement* statement, char kind);
std::int32_t AssembleShift(CAssembler* assembler, CStatement* statement, std::int32_t field);
template <char kind>
std::int32_t HandleBit(CAssembler* assembler, CStatement* statement) {
    return AssembleBit(assembler, statement, kind);
}
template <std::int32_t field>
std::int32_t HandleShift(CAssembler* assembler, CStatement* statement) {
    return AssembleShift(assembler, statement, field);
}

// codegen/jumps.cpp
std::int32_t HandleCall(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDjnz(CAssembler* assembler, CStatement* statement);
std::int32_t HandleJp(CAssembler* assembler, CStatement* statement);
std::int32_t HandleJr(CAssembler* assembler, CStatement* statement);
std::int32_t HandleRet(CAssembler* assembler, CStatement* statement);
std::int32_t HandleRst(CAssembler* assembler, CStatement* statement);

// codegen/stack_and_ports.cpp
std::int32_t HandleEx(CAssembler* assembler, CStatement* statement);
std::int32_t HandleIm(CAssembler* assembler, CStatement* statement);
std::int32_t HandleIn(CAssembler* assembler, CStatement* statement);
std::int32_t HandleOut(CAssembler* assembler, CStatement* statement);
std::int32_t HandlePop(CAssembler* assembler, CStatement* statement);
std::int32_t HandlePush(CAssembler* assembler, CStatement* statement);

// directives/data.cpp
std::int32_t HandleDb(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDm(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDs(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDw(CAssembler* assembler, CStatement* statement);

// directives/origin.cpp
std::int32_t HandleOrg(CAssembler* assembler, CStatement* statement);
std::int32_t HandleEqu(CAssembler* assembler, CStatement* statement);

// directives/conditions.cpp
std::int32_t HandleIf(CAssembler* assembler, CStatement* statement);
std::int32_t HandleElse(CAssembler* assembler, CStatement* statement);
std::int32_t HandleEndif(CAssembler* assembler, CStatement* statement);
std::int32_t HandleEnd(CAssembler* assembler, CStatement* statement);

// directives/reserved.cpp
std::int32_t HandleBinclude(CAssembler* assembler, CStatement* statement);
std::int32_t HandleDd(CAssembler* assembler, CStatement* statement);
std::int32_t HandleEndm(CAssembler* assembler, CStatement* statement);
std::int32_t HandleEndp(CAssembler* assembler, CStatement* statement);
std::int32_t HandleMacro(CAssembler* assembler, CStatement* statement);
std::int32_t HandleMacOff(CAssembler* assembler, CStatement* statement);
std::int32_t HandleMacOn(CAssembler* assembler, CStatement* statement);
std::int32_t HandleProc(CAssembler* assembler, CStatement* statement);

// source/include_files.cpp
std::int32_t HandleInclude(CAssembler* assembler, CStatement* statement);

}  // namespace korv
