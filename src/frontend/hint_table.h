/// The hints that a number and the shape of a text give.
#pragma once

#include <array>
#include <string_view>

#include "diagnostics/message_numbers.h"

namespace korv {

inline constexpr Status anyNumber = 0;

/// What of the line a pattern looks at.
enum class Subject { concerned, operand, rest };

/// The first row that fits counts. For the patterns see `Matches`; a row fits if its words
/// do too. In a note, "%w" is the word, "%1" and "%2" are the operands, "%c" is what is concerned.
struct HintRow {
    Status number;
    std::string_view words;  ///< mnemonics, "*" for all
    Subject subject;
    std::string_view pattern;
    std::string_view note;
};

// clang-format off
inline constexpr auto hintTable = std::to_array<HintRow>({
    // Whatever the number: spellings of other assemblers.
    {anyNumber, "EX", Subject::rest, "*AF*,*AF*", "the one form is EX AF,AF'"},
    {anyNumber, "*", Subject::concerned, "0X*", "hexadecimal is 0FFH, $FF or #FF"},
    {anyNumber, "*", Subject::rest, "0X#*|*,0X*|*(0X*|*+0X*|*-0X*|* 0X*", "hexadecimal is 0FFH, $FF or #FF"},
    {anyNumber, "*", Subject::rest, "0B#*|*,0B#*|*(0B#*|*+0B#*", "binary is 101B or &B101"},
    {anyNumber, "*", Subject::rest, "'*|*,'*|*('*|*+'*|*-'*|* '*|*='*", "characters and strings stand in double quotes, also a single one"},
    {anyNumber, "*", Subject::rest, "*[*]*", "memory stands in round brackets: (HL)"},
    {anyNumber, "*", Subject::rest, "*!=*|*<>*|* NE *", "there is no \"not equal\": X-Y is true when they differ"},
    {anyNumber, "*", Subject::rest, "*==*", "\"equal\" is a single ="},
    {anyNumber, "*", Subject::rest, "*<<*|*>>*", "shifts are SHL and SHR: 1 SHL 4"},
    {anyNumber, "*", Subject::rest, "*&&*|*\\|\\|*", "combine conditions by AND and OR, each in a name of its own"},
    {anyNumber, "*", Subject::rest, "* EQ *|* GT *|* LT *|* GE *|* LE *", "comparisons are = < > <= >="},
    {anyNumber, "*", Subject::rest, "HIGH*|*,HIGH*|LOW *|*,LOW *|*(HIGH*|*(LOW *|LOW(*|*,LOW(*", "the high byte of X is X SHR 8, the low byte X AND 255"},
    {anyNumber, "*", Subject::rest, "NOT *|*,NOT *|* NOT *|*(NOT *", "every bit turned is !X; \"X is 0\" is X=0"},
    {anyNumber, "*", Subject::rest, "*DEFINED*", "nothing tells whether a name exists; give it a value by -D NAME=0 or 1"},
    {anyNumber, "*", Subject::operand, "IXH|IXL|IYH|IYL|HX|LX|HY|LY|XH|XL|YH|YL", "the halves of IX and IY are no registers here"},
    {anyNumber, "*", Subject::operand, "(IX)|(IY)", "write the displacement: (IX+0)"},
    {anyNumber, "*", Subject::operand, "( *)", "a register in brackets has no blanks beside it: (HL)"},
    {anyNumber, "LD", Subject::rest, "(HL+)*|*,(HL+)|(HL-)*|*,(HL-)|(HLI)*|*,(HLI)", "that is of another processor; here INC HL follows"},
    // Words that are no instruction.
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\xEF\xBB\xBF*", "the file begins with a byte order mark: save it without"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\xFF\xFE*|\xFE\xFF*", "the file is UTF-16: save it as plain text"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "//*|/\\**|--*|\\#|*\\*/|\\*", "a comment begins with a semicolon"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\\#*|%^*", "there is no preprocessor: constants are NAME: EQU 5, files come by INCLUDE, conditions by IF"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ".ORG|.EQU|.DB|.DW|.DS|.BYTE|.WORD|.END|.INCLUDE|.IF|.ENDIF|.ELSE|.DEFB|.DEFW|.DEFS|.DEFM|.INCBIN|.ASCII|.TEXT|.BLOCK", "directives have no dot: ORG, EQU, DB, DW, DS, INCLUDE, BINCLUDE, IF"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ".*|*.*:", "a label has no dot, and none is local; it is of letters, digits, ?, @ and _"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "SLL|SLI|SL1|SWAP|MLT|TST|OTIM|IN0|OUT0", "only the published instructions of the Z80 are known"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::rest, "EQU|EQU *|DEFL *|SET *|= *|=*|: *", "labels and names begin in column 1"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "MUL*|DIV*", "the Z80 does not multiply or divide"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BNE|BEQ|BCC|BCS|BMI|BPL|BRA|BSR|JSR|RTS|LDX|LDY|STX|STY|TAX|TXA|CLR|MOVE|LDAA|STAA", "this is of another processor; the Z80 has LD, JP, JR, CALL and RET"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "MOV|MVI|LXI|LDA|STA|LHLD|SHLD|LDAX|STAX|XCHG|INX|DCX|INR|DCR|DAD|ADI|SUI|ANI|ORI|XRI|CPI|CMP|JMP|JNZ|JZ|JNC|JC|CNZ|CZ|CMA|CMC|STC|RAL|RAR|RNZ|RZ|HLT|ANA|ORA|XRA|PCHL|SPHL|XTHL|ACI|SBB|SBI", "this is the spelling of the 8080; here it is that of the Z80, as LD and JP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BYTE|DC.B|FCB|DEFC|ASCII|ASC|TEXT|FCC|STRING|ASCIZ|DEFB*|DB*|DZ", "bytes and strings are DB"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "WORD|DC.W|FDB|ADDR", "words are DW"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BLOCK|SPACE|FILL|RMB|BLKB|RB|DC.S|SKIP|DEFSPACE", "DS 10 leaves ten bytes of 0"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "INCBIN|INSERT|BINARY|LOADBIN", "BINCLUDE NAME takes the bytes of a file"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "IFDEF|IFNDEF", "nothing tells whether a name exists; give it a value by -D NAME=0 or 1 and use IF"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "ELSEIF|ELIF|ELSIF|IFEQ|IFNE|IF1|IF2", "the conditions are IF, ELSE and ENDIF"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "REPT|REPEAT|DUP|LOCAL|ENDR|IRP|EXITM|WHILE|STRUCT", "there are no macros, repetitions and structures"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "ALIGN|PHASE|DEPHASE|SECTION|SEGMENT|CSEG|DSEG|ASEG|PUBLIC|EXTRN|EXTERN|GLOBAL|XDEF|XREF|MODULE|ENDMODULE|DEVICE|OUTPUT|TITLE|PAGE|LIST|CPU|Z80|.Z80|NAME|RADIX", "one run makes one image: nothing is linked, placed or aligned; ORG sets the address"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "=*|:=*|DEFL|DEFINE|ASET|VAR|CONST|EQUS|EQ", "a name gets its one value by NAME: EQU 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ":*", "a label ends with one colon and nothing before it"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "READ|INCL|INC_|LOAD|IMPORT|\\*INCLUDE|GET", "INCLUDE NAME takes another file in"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "*:", "a label is of letters, digits, ?, @ and _, begins in column 1 and ends with its colon"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "*:*|*,*|*(*|*=*|*;*", "blanks stand between the instruction and its operands, and only labels in column 1"},
    // Files.
    {MSG_CANNOT_OPEN, "INCLUDE|BINCLUDE", Subject::rest, "<*>", "the name stands without brackets"},
    {MSG_CANNOT_OPEN, "INCLUDE", Subject::rest, "\"*\"", "here quotes are part of the name: INCLUDE DEFS.KOR"},
    {MSG_CANNOT_OPEN, "INCLUDE|BINCLUDE", Subject::rest, "*", "it is looked for beside this file, then where -I says"},
    // The number of operands.
    {MSG_TOO_MANY_ARGUMENTS, "SUB|AND|XOR|OR|CP", Subject::rest, "A,*", "the accumulator is not written here: %w %2"},
    {MSG_TOO_MANY_ARGUMENTS, "DS|DEFS", Subject::rest, "*", "DS fills with 0; other bytes are DB"},
    {MSG_TOO_MANY_ARGUMENTS, "DM|DEFM", Subject::rest, "*", "%w takes one string; DB takes several operands"},
    {MSG_TOO_MANY_ARGUMENTS, "DJNZ", Subject::rest, "B,*", "B is not written: DJNZ %2"},
    {MSG_TOO_MANY_ARGUMENTS, "END", Subject::rest, "*", "END takes no operand; the start of a .bin is the label EXEC"},
    {MSG_TOO_MANY_ARGUMENTS, "RL*|RR*|SLA|SRA|SRL|BIT|SET|RES", Subject::rest, "*", "the undocumented form that copies to a register is not known"},
    {MSG_ARGUMENT_EXPECTED, "ADC|SBC", Subject::rest, "?*", "the accumulator is written here: %w A,%1"},
    {MSG_ARGUMENT_EXPECTED, "*", Subject::rest, "^ *|^^ *|(*) *", "is a comma missing?"},
    {MSG_ARGUMENT_EXPECTED, "IN|OUT", Subject::rest, "(C)|F,(C)", "write IN F,(C) or OUT (C),F"},
    // Operands that do not fit.
    {MSG_ILLEGAL_ARGUMENT, "EX", Subject::rest, "HL,DE", "the order is EX DE,HL"},
    {MSG_ILLEGAL_ARGUMENT, "EX", Subject::rest, "*,(SP)", "the order is EX (SP),%1"},
    {MSG_ILLEGAL_ARGUMENT, "IN", Subject::rest, "A,*", "a port stands in brackets: IN A,(%2)"},
    {MSG_ILLEGAL_ARGUMENT, "OUT", Subject::rest, "*,A", "a port stands in brackets: OUT (%1),A"},
    {MSG_ILLEGAL_ARGUMENT, "IN|OUT", Subject::rest, "*", "the forms are IN A,(n), IN r,(C), OUT (n),A and OUT (C),r"},
    {MSG_ILLEGAL_ARGUMENT, "PUSH|POP", Subject::rest, "*", "%w takes BC, DE, HL, AF, IX or IY"},
    {MSG_ILLEGAL_ARGUMENT, "JR", Subject::rest, "PO,*|PE,*|P,*|M,*", "JR knows NZ, Z, NC and C only; JP knows all"},
    {MSG_ILLEGAL_ARGUMENT, "JR|JP|CALL", Subject::rest, "(*)|??", "only JP jumps to a register, and it is (HL), (IX) or (IY)"},
    {MSG_ILLEGAL_ARGUMENT, "JR|JP|CALL", Subject::rest, "*", "the form is %w cc,nn or %w nn"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "?*,(BC)|?*,(DE)|(BC),*|(DE),*", "(BC) and (DE) go with A only"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "(HL),(*|(IX*,(*|(IY*,(*", "nothing goes from memory to memory; load A in between"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "BC,^^|DE,^^|HL,^^|IX,^^|IY,^^|SP,^^", "no pair is loaded from a pair, but SP from HL, IX, IY: load its halves, or PUSH and POP"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "?,(*", "of the single registers only A is loaded from an address"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "(*),*", "to an address go A and the pairs; a number goes to (HL) and (IX+d)"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "AF,*|*,AF", "AF goes by PUSH and POP"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "I,*|R,*|*,I|*,R", "I and R go with A only"},
    {MSG_ILLEGAL_ARGUMENT, "ADD|ADC|SBC", Subject::rest, "HL,*|IX,*|IY,*", "%w %1 takes a pair"},
    {MSG_ILLEGAL_ARGUMENT, "ADD|ADC|SBC", Subject::rest, "A,(*)", "of memory %w takes (HL), (IX+d) and (IY+d); load it first"},
    {MSG_ILLEGAL_ARGUMENT, "ADD", Subject::rest, "*", "ADD adds bytes to A, and pairs to HL, IX and IY"},
    {MSG_ILLEGAL_ARGUMENT, "ADC|SBC", Subject::rest, "*", "%w takes bytes for A, and pairs for HL"},
    {MSG_ILLEGAL_ARGUMENT, "SUB|AND|XOR|OR|CP", Subject::rest, "(*)", "of memory %w takes (HL), (IX+d) and (IY+d); load A first, or leave the brackets away"},
    {MSG_ILLEGAL_ARGUMENT, "INC|DEC", Subject::rest, "(*)", "of memory %w takes (HL), (IX+d) and (IY+d)"},
    {MSG_ILLEGAL_ARGUMENT, "RET", Subject::rest, "*", "RET takes a condition: NZ, Z, NC, C, PO, PE, P or M"},
    {MSG_ILLEGAL_ARGUMENT, "RST", Subject::rest, "*", "RST takes 0, 8, 16, 24, 32, 40, 48 or 56"},
    {MSG_ILLEGAL_ARGUMENT, "IM", Subject::rest, "*", "IM takes 0, 1 or 2"},
    {MSG_ILLEGAL_ARGUMENT, "BIT|SET|RES", Subject::rest, "*", "the bit, 0 to 7, comes first: %w 7,A"},
    {MSG_ILLEGAL_ARGUMENT, "DB|DEFB", Subject::concerned, "\"*\"?*|?*\"*\"*", "commas stand between strings and numbers; a double quote in a string is 34"},
    {MSG_ILLEGAL_ARGUMENT, "DW|DEFW", Subject::concerned, "\"*\"", "DW takes numbers; strings are DB"},
    {MSG_ILLEGAL_ARGUMENT, "*", Subject::concerned, "\"*", "the string is not closed"},
    {MSG_ILLEGAL_ARGUMENT, "DM|DEFM", Subject::rest, "*", "%w takes one string; numbers are DB"},
    {MSG_ILLEGAL_ARGUMENT, "*", Subject::concerned, "(*)*(*)", "an operand that begins and ends with a bracket is memory: write 1*(1+2)*(3+4)"},
    {MSG_ILLEGAL_CONDITION, "*", Subject::rest, "*,NZ|*,Z|*,NC|*,C|*,PO|*,PE|*,P|*,M", "the condition comes first: %w %2,%1"},
    {MSG_ILLEGAL_CONDITION, "*", Subject::rest, "*", "the conditions are NZ, Z, NC, C, PO, PE, P and M"},
    // Expressions.
    {MSG_BAD_EXPRESSION, "*", Subject::concerned, "\"\"", "an empty string has no value"},
    {MSG_BAD_EXPRESSION, "*", Subject::concerned, "\"*", "only a string of one character has a value; longer ones are DB"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*/*|* MOD *", "is the divisor 0?"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "&*|*,&*", "hexadecimal is &HFF, $FF or 0FFH"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "%*|*,%*", "after a % come the digits 0 and 1; the remainder is X MOD Y"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*(*)*(*)", "an operand that begins and ends with a bracket is memory: write 1*(1+2)*(3+4)"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*^.^*", "a name has no dots"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*(*=*)*|*(*<*)*|*(*>*)*", "a comparison works outside of brackets: give it a name by EQU"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*? ?*", "is an operator or a comma missing?"},
    {MSG_TOO_COMPLEX, "*", Subject::rest, "*", "an expression has 19 parts at most: give a piece of it a name by EQU"},
    {MSG_BAD_NUMBER, "*", Subject::rest, "*", "a number is 65535 at most; a larger value is computed, as 35000*2"},
    {MSG_GENERAL_FAILURE, "*", Subject::rest, "*", "a number has no digits; B, H and O alone are no names"},
    {MSG_NOT_IMMEDIATE, "*", Subject::rest, "*", "%w needs the value at once: define the name above this line"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*:", "only the definition of a label has a colon"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "A|AF|BC|DE|HL|IX|IY|SP|D|E|L|NZ|Z|NC|PO|PE|P|M", "%c is no value; is a comma missing, or a bracket?"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "#*%*", "the remainder is X MOD Y"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "#*", "is this a number? Hexadecimal ends in H, as 0FFH"},
    {MSG_UNRESOLVED, "*", Subject::rest, "&*|*,&*", "hexadecimal is &HFF, $FF or 0FFH"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*\"*", "a double quote cannot stand in a string: it is the number 34"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*%*", "the remainder is X MOD Y"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*&*", "blanks stand around &"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*.*", "a name has no dots"},
    {MSG_UNRESOLVED, "IF|COND", Subject::rest, "*", "an IF needs the value at once: define the name above, or by -D"},
    // The rest.
    {MSG_NO_LABEL, "*", Subject::rest, "*", "the name begins in column 1: NAME: EQU 5"},
    {MSG_NOT_IMPLEMENTED, "MACRO|MAC_ON|MAC_OFF|PROC|ENDP", Subject::rest, "*", "there are no macros and procedures"},
    {MSG_NOT_IMPLEMENTED, "*", Subject::rest, "*", "write two words with DW, the low one first"},
    {MSG_NOT_IN_MACRO, "*", Subject::rest, "*", "there are no macros"},
    {MSG_OFFSET_TOO_BIG, "DJNZ", Subject::rest, "*", "it reaches 128 bytes: use DEC B and JP NZ"},
    {MSG_OFFSET_TOO_BIG, "*", Subject::rest, "*1B|*0B", "%c is a binary number; there are no numbered labels"},
    {MSG_OFFSET_TOO_BIG, "*", Subject::rest, "*", "it reaches 128 bytes: use JP"},
    {MSG_NOT_BYTE, "DJNZ", Subject::rest, "*", "it reaches 128 bytes: use DEC B and JP NZ"},
    {MSG_NOT_UNSIGNED_BYTE, "DB|DEFB", Subject::rest, "*", "X AND 255 is the low byte; words are DW"},
    {MSG_LINE_TOO_LONG, "*", Subject::rest, "*", "a line has 255 bytes with its comment, and ends with a line feed"},
    {MSG_FILES_TOO_DEEP, "*", Subject::rest, "*", "does the file include itself?"},
    {MSG_CONDITIONS_TOO_DEEP, "*", Subject::rest, "*", "is an ENDIF missing?"},
    {MSG_NOT_IN_CONDITION, "*", Subject::rest, "*", "there is no IF for it"},
    {MSG_ILLEGAL_ELSE, "*", Subject::rest, "*", "an IF has one ELSE"},
    {MSG_LABEL_NOT_ALLOWED, "*", Subject::rest, "*", "give the label a line of its own"},
    {MSG_TEXT_AFTER_STRING, "*", Subject::rest, "*", "DB takes several operands"},
    {MSG_SYSTEM_ERROR, "*", Subject::rest, "*()*", "fill the brackets"},
    {-1, "*", Subject::rest, "*()*", "fill the brackets"},
    {-1, "*", Subject::rest, "*", "a jump to this name is too far: use JP"},
});
// clang-format on

}  // namespace korv
