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
    std::string_view example;  ///< what gives it, "|" ending a line; empty: a long text does
};

// clang-format off
inline constexpr auto hintTable = std::to_array<HintRow>({
    // Whatever the number: spellings of other assemblers.
    {anyNumber, "*", Subject::rest, "* //*|* /\\**", "a comment begins with a semicolon", " LD A,5 // five"},
    {anyNumber, "*", Subject::rest, "*\xE2\x80*|*\xC2\xA0*", "quotes, dashes and blanks are those of ASCII: write them anew", " DB \xE2\x80\x9C" "A\xE2\x80\x9D"},
    {anyNumber, "EX", Subject::rest, "*AF*,*AF*", "the one form is EX AF,AF'", " EX AF,AF'X"},
    {anyNumber, "*", Subject::concerned, "0X*", "hexadecimal is 0FFH, $FF or #FF", " LD A,0x12"},
    {anyNumber, "*", Subject::rest, "0X#*|*,0X*|*(0X*|*+0X*|*-0X*|* 0X*", "hexadecimal is 0FFH, $FF or #FF", " LD HL,0x1234"},
    {anyNumber, "*", Subject::rest, "0B#*|*,0B#*|*(0B#*|*+0B#*", "binary is 101B or &B101", " LD A,0b101"},
    {anyNumber, "*", Subject::rest, "'*|*,'*|*('*|*+'*|*-'*|* '*|*='*", "characters and strings stand in double quotes, also a single one", " LD A,'A'"},
    {anyNumber, "*", Subject::rest, "*[*]*", "memory stands in round brackets: (HL)", " LD A,[HL]"},
    {anyNumber, "*", Subject::rest, "*!=*|*<>*|* NE *", "there is no \"not equal\": X-Y is true when they differ", " IF X!=5|X: NOP|ENDIF"},
    {anyNumber, "*", Subject::rest, "*==*", "\"equal\" is a single =", "X: EQU 5| IF X==5| ENDIF"},
    {anyNumber, "*", Subject::rest, "*<<*|*>>*", "shifts are SHL and SHR: 1 SHL 4", " LD A,X>>8|X: NOP"},
    {anyNumber, "*", Subject::rest, "*&&*|*\\|\\|*", "combine conditions by AND and OR, each in a name of its own", "X: EQU 5| IF X=5 && X>2| ENDIF"},
    {anyNumber, "*", Subject::rest, "* EQ *|* GT *|* LT *|* GE *|* LE *", "comparisons are = < > <= >=", "X: EQU 5| IF X EQ 5| ENDIF"},
    {anyNumber, "*", Subject::rest, "HIGH*|*,HIGH*|LOW *|*,LOW *|*(HIGH*|*(LOW *|LOW(*|*,LOW(*", "the high byte of X is X SHR 8, the low byte X AND 255", " LD A,HIGH X|X: NOP"},
    {anyNumber, "*", Subject::rest, "NOT *|*,NOT *|* NOT *|*(NOT *", "every bit turned is !X; \"X is 0\" is X=0", "X: EQU 5| IF NOT X| ENDIF"},
    {anyNumber, "*", Subject::rest, "*DEFINED*", "nothing tells whether a name exists; give it a value by -D NAME=0 or 1", " IF DEFINED(X)| ENDIF"},
    {anyNumber, "*", Subject::operand, "IXH|IXL|IYH|IYL|HX|LX|HY|LY|XH|XL|YH|YL", "the halves of IX and IY are no registers here", " LD A,IXH"},
    {anyNumber, "*", Subject::operand, "(IX)|(IY)", "write the displacement: (IX+0)", " LD A,(IX)"},
    {anyNumber, "*", Subject::operand, "( *)", "a register in brackets has no blanks beside it: (HL)", " LD A,( HL )"},
    {anyNumber, "LD", Subject::rest, "(HL+)*|*,(HL+)|(HL-)*|*,(HL-)|(HLI)*|*,(HLI)", "that is of another processor; here INC HL follows", " LD A,(HL+)"},
    // Words that are no instruction.
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\xEF\xBB\xBF*", "the file begins with a byte order mark: save it without", "\xEF\xBB\xBF NOP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\xFF\xFE*|\xFE\xFF*", "the file is UTF-16: save it as plain text", "\xFF\xFE"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "//*|/\\**|--*|\\#|*\\*/|\\*", "a comment begins with a semicolon", "// comment"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "\\#*|%^*", "there is no preprocessor: constants are NAME: EQU 5, files come by INCLUDE, conditions by IF", "#define X 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ".ORG|.EQU|.DB|.DW|.DS|.BYTE|.WORD|.END|.INCLUDE|.IF|.ENDIF|.ELSE|.DEFB|.DEFW|.DEFS|.DEFM|.INCBIN|.ASCII|.TEXT|.BLOCK", "directives have no dot: ORG, EQU, DB, DW, DS, INCLUDE, BINCLUDE, IF", " .db 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ".*|*.*:", "a label has no dot, and none is local; it is of letters, digits, ?, @ and _", ".loop: NOP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "SLL|SLI|SL1|SWAP|MLT|TST|OTIM|IN0|OUT0", "only the published instructions of the Z80 are known", " SLL A"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::rest, "EQU|EQU *|DEFL *|SET *|= *|=*|: *", "labels and names begin in column 1", " X EQU 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "MUL*|DIV*", "the Z80 does not multiply or divide", " MULT A,B"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BNE|BEQ|BCC|BCS|BMI|BPL|BRA|BSR|JSR|RTS|LDX|LDY|STX|STY|TAX|TXA|CLR|MOVE|LDAA|STAA", "this is of another processor; the Z80 has LD, JP, JR, CALL and RET", "loop: bne loop"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "MOV|MVI|LXI|LDA|STA|LHLD|SHLD|LDAX|STAX|XCHG|INX|DCX|INR|DCR|DAD|ADI|SUI|ANI|ORI|XRI|CPI|CMP|JMP|JNZ|JZ|JNC|JC|CNZ|CZ|CMA|CMC|STC|RAL|RAR|RNZ|RZ|HLT|ANA|ORA|XRA|PCHL|SPHL|XTHL|ACI|SBB|SBI", "this is the spelling of the 8080; here it is that of the Z80, as LD and JP", " JMP LOOP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BYTE|DC.B|FCB|DEFC|ASCII|ASC|TEXT|FCC|STRING|ASCIZ|DEFB*|DB*|DZ", "bytes and strings are DB", " BYTE 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "WORD|DC.W|FDB|ADDR", "words are DW", " WORD 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "BLOCK|SPACE|FILL|RMB|BLKB|RB|DC.S|SKIP|DEFSPACE", "DS 10 leaves ten bytes of 0", " FILL 10"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "INCBIN|INSERT|BINARY|LOADBIN", "BINCLUDE NAME takes the bytes of a file", " INCBIN tiles.dat"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "IFDEF|IFNDEF", "nothing tells whether a name exists; give it a value by -D NAME=0 or 1 and use IF", " IFDEF X| ENDIF"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "ELSEIF|ELIF|ELSIF|IFEQ|IFNE|IF1|IF2", "the conditions are IF, ELSE and ENDIF", " IFEQ 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "REPT|REPEAT|DUP|LOCAL|ENDR|IRP|EXITM|WHILE|STRUCT", "there are no macros, repetitions and structures", " REPT 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "ALIGN|PHASE|DEPHASE|SECTION|SEGMENT|CSEG|DSEG|ASEG|PUBLIC|EXTRN|EXTERN|GLOBAL|XDEF|XREF|MODULE|ENDMODULE|DEVICE|OUTPUT|TITLE|PAGE|LIST|CPU|Z80|.Z80|NAME|RADIX", "one run makes one image: nothing is linked, placed or aligned; ORG sets the address", " ALIGN 256"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "=*|:=*|DEFL|DEFINE|ASET|VAR|CONST|EQUS|EQ", "a name gets its one value by NAME: EQU 5", "X = 5"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, ":*", "a label ends with one colon and nothing before it", ":foo NOP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "READ|INCL|INC_|LOAD|IMPORT|\\*INCLUDE|GET", "INCLUDE NAME takes another file in", " READ a.kor"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "*:", "a label is of letters, digits, ?, @ and _, begins in column 1 and ends with its colon", "FOO.BAR: NOP"},
    {MSG_UNKNOWN_INSTRUCTION, "*", Subject::concerned, "*:*|*,*|*(*|*=*|*;*", "blanks stand between the instruction and its operands, and only labels in column 1", " LDA,5"},
    // Files.
    {MSG_CANNOT_OPEN, "INCLUDE|BINCLUDE", Subject::rest, "<*>", "the name stands without brackets", " INCLUDE <defs.kor>"},
    {MSG_CANNOT_OPEN, "INCLUDE", Subject::rest, "\"*\"", "here quotes are part of the name: INCLUDE DEFS.KOR", " INCLUDE \"none.kor\""},
    {MSG_CANNOT_OPEN, "INCLUDE|BINCLUDE", Subject::rest, "*", "it is looked for beside this file, then where -I says", " INCLUDE nodefs.kor"},
    // The number of operands.
    {MSG_TOO_MANY_ARGUMENTS, "*", Subject::rest, "//*|/\\**|\\#*", "a comment begins with a semicolon", " NOP // wait"},
    {MSG_TOO_MANY_ARGUMENTS, "*", Subject::rest, "* : *|* \\\\ *", "a line holds one instruction", " LD A,5 : LD B,6"},
    {MSG_TOO_MANY_ARGUMENTS, "SUB|AND|XOR|OR|CP", Subject::rest, "A,*", "the accumulator is not written here: %w %2", " SUB A,B"},
    {MSG_TOO_MANY_ARGUMENTS, "DS|DEFS", Subject::rest, "*", "DS fills with 0; other bytes are DB", " DS 10,255"},
    {MSG_TOO_MANY_ARGUMENTS, "DM|DEFM", Subject::rest, "*", "%w takes one string; DB takes several operands", " DM \"a\",\"b\""},
    {MSG_TOO_MANY_ARGUMENTS, "DJNZ", Subject::rest, "B,*", "B is not written: DJNZ %2", " DJNZ B,X|X: NOP"},
    {MSG_TOO_MANY_ARGUMENTS, "END", Subject::rest, "*", "END takes no operand; the start of a .bin is the label EXEC", " END START"},
    {MSG_TOO_MANY_ARGUMENTS, "RL|RLC|RR|RRC|SLA|SRA|SRL|BIT|SET|RES", Subject::rest, "*", "the undocumented form that copies to a register is not known", " RL A,B"},
    {MSG_ARGUMENT_EXPECTED, "ADC|SBC", Subject::rest, "?*", "the accumulator is written here: %w A,%1", " ADC B"},
    {MSG_ARGUMENT_EXPECTED, "*", Subject::rest, "^ *|^^ *|(*) *", "is a comma missing?", " LD A B"},
    {MSG_ARGUMENT_EXPECTED, "IN|OUT", Subject::rest, "(C)|F,(C)", "write IN F,(C) or OUT (C),F", " IN (C)"},
    // Operands that do not fit.
    {MSG_ILLEGAL_ARGUMENT, "EX", Subject::rest, "HL,DE", "the order is EX DE,HL", " EX HL,DE"},
    {MSG_ILLEGAL_ARGUMENT, "EX", Subject::rest, "*,(SP)", "the order is EX (SP),%1", " EX HL,(SP)"},
    {MSG_ILLEGAL_ARGUMENT, "EX", Subject::rest, "*", "the forms are EX DE,HL, EX AF,AF' and EX (SP),HL", " EX BC,DE"},
    {MSG_ILLEGAL_ARGUMENT, "IN", Subject::rest, "A,*", "a port stands in brackets: IN A,(%2)", " IN A,5"},
    {MSG_ILLEGAL_ARGUMENT, "OUT", Subject::rest, "*,A", "a port stands in brackets: OUT (%1),A", " OUT 5,A"},
    {MSG_ILLEGAL_ARGUMENT, "IN|OUT", Subject::rest, "*", "the forms are IN A,(n), IN r,(C), OUT (n),A and OUT (C),r", " OUT (C),5"},
    {MSG_ILLEGAL_ARGUMENT, "PUSH|POP", Subject::rest, "*", "%w takes BC, DE, HL, AF, IX or IY", " PUSH A"},
    {MSG_ILLEGAL_ARGUMENT, "JR", Subject::rest, "PO,*|PE,*|P,*|M,*", "JR knows NZ, Z, NC and C only; JP knows all", " JR PO,X|X: NOP"},
    {MSG_ILLEGAL_ARGUMENT, "JR|JP|CALL", Subject::rest, "(*)|??", "only JP jumps to a register, and it is (HL), (IX) or (IY)", " JP (BC)"},
    {MSG_ILLEGAL_ARGUMENT, "JR|JP|CALL", Subject::rest, "*", "the form is %w cc,nn or %w nn", " CALL X,NZ|X: NOP"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "?*,(BC)|?*,(DE)|(BC),*|(DE),*", "(BC) and (DE) go with A only", " LD (HL),(DE)"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "(HL),(*|(IX*,(*|(IY*,(*", "nothing goes from memory to memory; load A in between", " LD (HL),(IX+1)"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "BC,^^|DE,^^|HL,^^|IX,^^|IY,^^|SP,^^", "no pair is loaded from a pair, but SP from HL, IX, IY: load its halves, or PUSH and POP", " LD HL,DE"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "?,(*", "of the single registers only A is loaded from an address", " LD B,(1234)"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "(*),*", "to an address go A and the pairs; a number goes to (HL) and (IX+d)", " LD (1234),5"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "AF,*|*,AF", "AF goes by PUSH and POP", " LD AF,5"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "I,*|R,*|*,I|*,R", "I and R go with A only", " LD I,5"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "^^,?", "a pair takes no single register: load its halves", " LD HL, A"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "?,BC|?,DE|?,HL|?,SP|?,IX|?,IY", "a single register takes no pair: take one of its halves", " LD A,HL"},
    {MSG_ILLEGAL_ARGUMENT, "LD", Subject::rest, "^^,(*)", "a pair is loaded from an address only; by a register its halves, as LD E,(HL)", " LD DE,(HL)"},
    {MSG_ILLEGAL_ARGUMENT, "ADD", Subject::rest, "HL,*|IX,*|IY,*", "ADD %1 takes BC, DE, SP and %1", " ADD HL,5"},
    {MSG_ILLEGAL_ARGUMENT, "ADC|SBC", Subject::rest, "HL,*", "%w HL takes BC, DE, HL and SP", " SBC HL, IX"},
    {MSG_ILLEGAL_ARGUMENT, "ADD|ADC|SBC", Subject::rest, "A,(*)", "of memory %w takes (HL), (IX+d) and (IY+d); load it first", " ADD A,(1234)"},
    {MSG_ILLEGAL_ARGUMENT, "ADD", Subject::rest, "*", "ADD adds bytes to A, and pairs to HL, IX and IY", " ADD A,HL"},
    {MSG_ILLEGAL_ARGUMENT, "ADC|SBC", Subject::rest, "*", "%w takes bytes for A, and pairs for HL", " ADC B,C"},
    {MSG_ILLEGAL_ARGUMENT, "SUB|AND|XOR|OR|CP", Subject::rest, "(*)", "of memory %w takes (HL), (IX+d) and (IY+d); load A first, or leave the brackets away", " CP (5)"},
    {MSG_ILLEGAL_ARGUMENT, "INC|DEC", Subject::rest, "(*)", "of memory %w takes (HL), (IX+d) and (IY+d)", " INC (1234)"},
    {MSG_ILLEGAL_ARGUMENT, "INC|DEC", Subject::rest, "*", "%w takes a register from A to L, BC, DE, HL, SP, IX, IY or (HL), (IX+d), (IY+d)", " DEC AF"},
    {MSG_ILLEGAL_ARGUMENT, "RET", Subject::rest, "*", "RET takes a condition: NZ, Z, NC, C, PO, PE, P or M", " RET X|X: NOP"},
    {MSG_ILLEGAL_ARGUMENT, "RST", Subject::rest, "*", "RST takes 0, 8, 16, 24, 32, 40, 48 or 56", " RST 7"},
    {MSG_ILLEGAL_ARGUMENT, "IM", Subject::rest, "*", "IM takes 0, 1 or 2", " IM 3"},
    {MSG_ILLEGAL_ARGUMENT, "BIT|SET|RES", Subject::rest, "*", "the bit, 0 to 7, comes first: %w 7,A", " BIT 8,A"},
    {MSG_ILLEGAL_ARGUMENT, "DB|DEFB|DW|DEFW|DS|DEFS|IF|COND", Subject::concerned, "?|AF|BC|DE|HL|SP|IX|IY|NZ|NC|PO|PE", "%c is a register or condition; its name in a sum, as %c+0, is a label", "P: NOP| DW P"},
    {MSG_ILLEGAL_ARGUMENT, "DB|DEFB", Subject::concerned, "\"*\"?*|?*\"*\"*", "commas stand between strings and numbers; a double quote in a string is 34", " DB \"abc\" 13"},
    {MSG_ILLEGAL_ARGUMENT, "DW|DEFW", Subject::concerned, "\"*\"", "DW takes numbers; strings are DB", " DEFW \"AB\""},
    {MSG_ILLEGAL_ARGUMENT, "*", Subject::concerned, "\"*", "the string is not closed", " DB \"abc"},
    {MSG_ILLEGAL_ARGUMENT, "DB|DEFB", Subject::concerned, "*%*", "the remainder is X MOD Y", " DB 5 % 2"},
    {MSG_ILLEGAL_ARGUMENT, "DB|DEFB", Subject::concerned, "*? ?*", "is an operator or a comma missing?", " DB 1 2 3"},
    {MSG_ILLEGAL_ARGUMENT, "DM|DEFM", Subject::rest, "*", "%w takes one string; numbers are DB", " DM 5"},
    {MSG_ILLEGAL_ARGUMENT, "*", Subject::concerned, "(*)*(*)", "an operand that begins and ends with a bracket is memory: write 1*(1+2)*(3+4)", " LD HL,(1+2)*(3+4)"},
    {MSG_ILLEGAL_CONDITION, "*", Subject::rest, "*,NZ|*,Z|*,NC|*,C|*,PO|*,PE|*,P|*,M", "the condition comes first: %w %2,%1", " JP X,NZ"},
    {MSG_ILLEGAL_CONDITION, "*", Subject::rest, "*", "the conditions are NZ, Z, NC, C, PO, PE, P and M", " JP A,X"},
    // Expressions.
    {MSG_BAD_EXPRESSION, "*", Subject::concerned, "\"\"", "an empty string has no value", " LD A,\"\""},
    {MSG_BAD_EXPRESSION, "*", Subject::concerned, "\"*", "only a string of one character has a value; longer ones are DB", " LD A,\"ab\""},
    {MSG_BAD_EXPRESSION, "*", Subject::operand, "<*|>*", "the high byte of X is X SHR 8, the low byte X AND 255", " LD A, <X|X: NOP"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*/*|* MOD *", "is the divisor 0?", " LD A,5/0"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "&*|*,&*", "hexadecimal is &HFF, $FF or 0FFH", " LD A,&FF"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "%*|*,%*", "after a % come the digits 0 and 1; the remainder is X MOD Y", " LD A,%102"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*(*)*(*)", "an operand that begins and ends with a bracket is memory: write 1*(1+2)*(3+4)", " LD HL,(1+2)*(3+4)"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*^.^*", "a name has no dots", " LD HL,FOO.BAR|FOO: NOP"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*(*=*)*|*(*<*)*|*(*>*)*", "a comparison works outside of brackets: give it a name by EQU", "X: EQU 1| LD A,1+(X=1)"},
    {MSG_BAD_EXPRESSION, "*", Subject::rest, "*? ?*", "is an operator or a comma missing?", " LD A,1 2"},
    {MSG_TOO_COMPLEX, "*", Subject::rest, "*", "an expression has 19 parts at most: give a piece of it a name by EQU", " LD HL,1+1+1+1+1+1+1+1+1+1+1+1"},
    {MSG_BAD_NUMBER, "*", Subject::rest, "*", "a number is 65535 at most; a larger value is computed, as 35000*2", " LD HL,70000"},
    {MSG_GENERAL_FAILURE, "*", Subject::rest, "*", "a number has no digits; B, H and O alone are no names", " LD HL,#"},
    {MSG_NOT_IMMEDIATE, "*", Subject::rest, "*", "%w needs the value at once: define the name above this line", " DS SIZE|SIZE: EQU 5"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*:", "only the definition of a label has a colon", " LD HL,LABEL:|LABEL: NOP"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "A|AF|BC|DE|HL|IX|IY|SP|D|E|L|NZ|Z|NC|PO|PE|P|M", "%c is no value; is a comma missing, or a bracket?", " JP NZ LOOP|LOOP: NOP"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "#*%*", "the remainder is X MOD Y", " LD A,5%2"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "#*", "is this a number? Hexadecimal ends in H, as 0FFH", " JR 1f"},
    {MSG_UNRESOLVED, "*", Subject::rest, "&*|*,&*", "hexadecimal is &HFF, $FF or 0FFH", " LD A,&FF"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*\"*", "a double quote cannot stand in a string: it is the number 34", " DB \"a\"b\""},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*%*", "the remainder is X MOD Y", " LD A,5%2"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*&*", "blanks stand around &", " DB FOO&BAR"},
    {MSG_UNRESOLVED, "*", Subject::concerned, "*.*", "a name has no dots", " LD HL,FOO.BAR|FOO: NOP"},
    {MSG_UNRESOLVED, "IF|COND", Subject::rest, "*", "an IF needs the value at once: define the name above, or by -D", " IF SIZE| ENDIF|SIZE: EQU 5"},
    // The rest.
    {MSG_NO_LABEL, "*", Subject::rest, "*", "the name begins in column 1: NAME: EQU 5", " EQU 5"},
    {MSG_NOT_IMPLEMENTED, "MACRO|MAC_ON|MAC_OFF|PROC|ENDP", Subject::rest, "*", "there are no macros and procedures", "FOO MACRO"},
    {MSG_NOT_IMPLEMENTED, "*", Subject::rest, "*", "write two words with DW, the low one first", " DD 5"},
    {MSG_NOT_IN_MACRO, "*", Subject::rest, "*", "there are no macros", " ENDM"},
    {MSG_OFFSET_TOO_BIG, "DJNZ", Subject::rest, "*", "it reaches 128 bytes: use DEC B and JP NZ", "LOOP: DS 200| DJNZ LOOP"},
    {MSG_OFFSET_TOO_BIG, "*", Subject::rest, "*1B|*0B", "%c is a binary number; there are no numbered labels", " JR 1b"},
    {MSG_OFFSET_TOO_BIG, "*", Subject::rest, "*", "it reaches 128 bytes: use JP", " JR FAR| DS 200|FAR: NOP"},
    {MSG_NOT_BYTE, "DJNZ", Subject::rest, "*", "it reaches 128 bytes: use DEC B and JP NZ", " DJNZ FAR| DS 200|FAR: NOP"},
    {MSG_NOT_UNSIGNED_BYTE, "DB|DEFB", Subject::rest, "*", "X AND 255 is the low byte; words are DW", " DB 256"},
    {MSG_LINE_TOO_LONG, "*", Subject::rest, "*", "a line has 255 bytes with its comment, and ends with a line feed", ""},
    {MSG_FILES_TOO_DEEP, "*", Subject::rest, "*", "does the file include itself?", " INCLUDE a.kor"},
    {MSG_CONDITIONS_TOO_DEEP, "*", Subject::rest, "*", "is an ENDIF missing?", ""},
    {MSG_NOT_IN_CONDITION, "*", Subject::rest, "*", "there is no IF for it", " ELSE"},
    {MSG_ILLEGAL_ELSE, "*", Subject::rest, "*", "an IF has one ELSE", " IF 1| ELSE| ELSE| ENDIF"},
    {MSG_LABEL_NOT_ALLOWED, "*", Subject::rest, "*", "give the label a line of its own", "X: IF 1| ENDIF"},
    {MSG_TEXT_AFTER_STRING, "*", Subject::rest, "*", "DB takes several operands", " DM \"a\"b\""},
    {MSG_SYSTEM_ERROR, "*", Subject::rest, "*()*", "fill the brackets", " LD A,()"},
    {-1, "*", Subject::rest, "*()*", "fill the brackets", " DB (),1"},
    {-1, "*", Subject::rest, "*", "a jump to this name is too far: use JP", " JR X| DS 200|X: EQU Y|Y: NOP"},
});
// clang-format on

}  // namespace korv
