#include "frontend/instruction_help.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "codegen/keywords.h"

namespace korv {
namespace {

struct InstructionHelp {
    std::string_view word;
    std::string_view text;  ///< begins with a capital, ends with a full stop
};

// clang-format off
/// In the order of `keywords`.
constexpr std::array instructionHelp = {
    InstructionHelp{"ADC", "Adds the operand and the carry flag to A or HL."},
    InstructionHelp{"ADD", "Adds the operand to A, HL, IX or IY."},
    InstructionHelp{"AND", "Combines A with the operand by AND; clears the carry flag."},
    InstructionHelp{"BINCLUDE", "Inserts the bytes of a file."},
    InstructionHelp{"BIT", "Sets the zero flag if a bit of the operand is 0."},
    InstructionHelp{"CALL", "Calls a subroutine: pushes the address of the next instruction and jumps, if the condition holds."},
    InstructionHelp{"CCF", "Inverts the carry flag."},
    InstructionHelp{"COND", "Assembles the lines up to ELSE or ENDC only if the expression is not 0; the same as IF."},
    InstructionHelp{"CP", "Compares A with the operand: sets the flags as SUB does and leaves A unchanged."},
    InstructionHelp{"CPD", "Compares A with (HL), then decrements HL and BC."},
    InstructionHelp{"CPDR", "Repeats CPD until A equals (HL) or BC is 0."},
    InstructionHelp{"CPI", "Compares A with (HL), then increments HL and decrements BC."},
    InstructionHelp{"CPIR", "Repeats CPI until A equals (HL) or BC is 0."},
    InstructionHelp{"CPL", "Inverts all bits of A."},
    InstructionHelp{"DAA", "Corrects A to packed BCD after an addition or subtraction."},
    InstructionHelp{"DB", "Inserts bytes: values and the characters of strings."},
    InstructionHelp{"DD", "Reserved for double words; not implemented."},
    InstructionHelp{"DEC", "Subtracts 1 from the operand; leaves the carry flag unchanged."},
    InstructionHelp{"DEFB", "Inserts bytes; the same as DB."},
    InstructionHelp{"DEFD", "Reserved for double words; not implemented."},
    InstructionHelp{"DEFM", "Inserts the characters of a string; the same as DM."},
    InstructionHelp{"DEFS", "Inserts a number of zero bytes; the same as DS."},
    InstructionHelp{"DEFW", "Inserts 16-bit words; the same as DW."},
    InstructionHelp{"DI", "Disables maskable interrupts."},
    InstructionHelp{"DJNZ", "Decrements B and makes a relative jump if B is not 0."},
    InstructionHelp{"DM", "Inserts the characters of a string."},
    InstructionHelp{"DS", "Inserts a number of zero bytes."},
    InstructionHelp{"DW", "Inserts 16-bit words, low byte first."},
    InstructionHelp{"EI", "Enables maskable interrupts after the next instruction."},
    InstructionHelp{"ELSE", "Assembles the lines up to ENDIF only if those after IF were skipped."},
    InstructionHelp{"END", "Ends the source: the lines after it are not read."},
    InstructionHelp{"ENDC", "Ends a conditional block; the same as ENDIF."},
    InstructionHelp{"ENDIF", "Ends a conditional block."},
    InstructionHelp{"ENDM", "Reserved for the end of a macro; valid only inside a macro."},
    InstructionHelp{"ENDP", "Reserved for the end of a procedure; not implemented."},
    InstructionHelp{"EQU", "Gives the name in column 1 the value of the expression."},
    InstructionHelp{"EX", "Exchanges two 16-bit operands."},
    InstructionHelp{"EXX", "Exchanges BC, DE and HL with the alternate registers."},
    InstructionHelp{"HALT", "Stops until an interrupt or a reset."},
    InstructionHelp{"IF", "Assembles the lines up to ELSE or ENDIF only if the expression is not 0."},
    InstructionHelp{"IM", "Selects interrupt mode 0, 1 or 2."},
    InstructionHelp{"IN", "Reads a byte from a port."},
    InstructionHelp{"INC", "Adds 1 to the operand; leaves the carry flag unchanged."},
    InstructionHelp{"INCLUDE", "Assembles the lines of another file at this place."},
    InstructionHelp{"IND", "Reads a byte from port C into (HL), then decrements HL and B."},
    InstructionHelp{"INDR", "Repeats IND until B is 0."},
    InstructionHelp{"INI", "Reads a byte from port C into (HL), then increments HL and decrements B."},
    InstructionHelp{"INIR", "Repeats INI until B is 0."},
    InstructionHelp{"JP", "Jumps to an address, if the condition holds."},
    InstructionHelp{"JR", "Jumps to an address at most 126 bytes back or 129 ahead, if the condition holds."},
    InstructionHelp{"LD", "Copies the second operand to the first; only LD A,I and LD A,R change flags."},
    InstructionHelp{"LDD", "Copies (HL) to (DE), then decrements HL, DE and BC."},
    InstructionHelp{"LDDR", "Repeats LDD until BC is 0."},
    InstructionHelp{"LDI", "Copies (HL) to (DE), then increments HL and DE and decrements BC."},
    InstructionHelp{"LDIR", "Repeats LDI until BC is 0."},
    InstructionHelp{"MACRO", "Reserved for macros; not implemented."},
    InstructionHelp{"MAC_OFF", "Reserved for the listing of macros; not implemented."},
    InstructionHelp{"MAC_ON", "Reserved for the listing of macros; not implemented."},
    InstructionHelp{"NEG", "Negates A: subtracts it from 0."},
    InstructionHelp{"NOP", "Does nothing."},
    InstructionHelp{"OR", "Combines A with the operand by OR; clears the carry flag."},
    InstructionHelp{"ORG", "Sets the address of the lines that follow; leaves no gap in the image."},
    InstructionHelp{"OTDR", "Repeats OUTD until B is 0."},
    InstructionHelp{"OTIR", "Repeats OUTI until B is 0."},
    InstructionHelp{"OUT", "Writes a byte to a port."},
    InstructionHelp{"OUTD", "Writes (HL) to port C, then decrements HL and B."},
    InstructionHelp{"OUTI", "Writes (HL) to port C, then increments HL and decrements B."},
    InstructionHelp{"POP", "Loads a register pair from the stack and adds 2 to SP."},
    InstructionHelp{"PROC", "Reserved for procedures; not implemented."},
    InstructionHelp{"PUSH", "Subtracts 2 from SP and stores a register pair on the stack."},
    InstructionHelp{"RES", "Clears a bit of the operand."},
    InstructionHelp{"RET", "Returns from a subroutine, if the condition holds."},
    InstructionHelp{"RETI", "Returns from a maskable interrupt and signals its end to the peripherals."},
    InstructionHelp{"RETN", "Returns from a non-maskable interrupt and restores the interrupt enable state."},
    InstructionHelp{"RL", "Rotates the operand left through the carry flag."},
    InstructionHelp{"RLA", "Rotates A left through the carry flag; leaves the zero and sign flags unchanged."},
    InstructionHelp{"RLC", "Rotates the operand left; bit 7 is copied to bit 0 and the carry flag."},
    InstructionHelp{"RLCA", "Rotates A left; bit 7 is copied to bit 0 and the carry flag; leaves the zero and sign flags unchanged."},
    InstructionHelp{"RLD", "Rotates the low digit of A and both digits of (HL) left by one digit."},
    InstructionHelp{"RR", "Rotates the operand right through the carry flag."},
    InstructionHelp{"RRA", "Rotates A right through the carry flag; leaves the zero and sign flags unchanged."},
    InstructionHelp{"RRC", "Rotates the operand right; bit 0 is copied to bit 7 and the carry flag."},
    InstructionHelp{"RRCA", "Rotates A right; bit 0 is copied to bit 7 and the carry flag; leaves the zero and sign flags unchanged."},
    InstructionHelp{"RRD", "Rotates the low digit of A and both digits of (HL) right by one digit."},
    InstructionHelp{"RST", "Calls one of the subroutines at 0, 8, 10H, 18H, 20H, 28H, 30H and 38H."},
    InstructionHelp{"SBC", "Subtracts the operand and the carry flag from A or HL."},
    InstructionHelp{"SCF", "Sets the carry flag."},
    InstructionHelp{"SET", "Sets a bit of the operand."},
    InstructionHelp{"SLA", "Shifts the operand left; bit 0 becomes 0, bit 7 is moved to the carry flag."},
    InstructionHelp{"SRA", "Shifts the operand right; bit 7 is kept, bit 0 is moved to the carry flag."},
    InstructionHelp{"SRL", "Shifts the operand right; bit 7 becomes 0, bit 0 is moved to the carry flag."},
    InstructionHelp{"SUB", "Subtracts the operand from A."},
    InstructionHelp{"XOR", "Combines A with the operand by exclusive OR; clears the carry flag."},
};
// clang-format on
static_assert(std::ranges::equal(instructionHelp, keywords, {}, &InstructionHelp::word,
                                 &Keyword::word),
              "every keyword has its row, in the same order");

}  // namespace

std::string_view HelpFor(const Keyword& keyword) {
    return instructionHelp[static_cast<std::size_t>(&keyword - keywords.data())].text;
}

}  // namespace korv
