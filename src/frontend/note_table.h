/// Tables of notes about tokens that are not part of the language, and about operands that match no
/// form. Almost every row has an example that produces it; if the row proposes a change, the
/// example must assemble with that change.
#pragma once

#include <array>
#include <string_view>

#include "diagnostics/message_numbers.h"

namespace korv {

/// Templates: %w is the mnemonic, %r all operands, %k the condition at the end of the mnemonic, %f
/// the statement with the change, and %1 to %9 an operand or, in a token row, a matched token. A
/// letter before the number changes the text: %m1 turns M into (HL), or drops a #; see `Shown` for
/// the others. An empty note means "write %f". In an example, "|" ends a line.

/// Adjacent tokens of one operand. The terms are separated by blanks. "%" and the letter of a kind
/// match a token of that kind; a pattern after them must match its text too. Any other term is a
/// pattern for the text of a token. "^" is the start of the operand, ";" its end. If there is an
/// "@", the part to report and to replace begins after it. Kinds: n number, e number without
/// digits, l too large, s string, u open string, i name, d name that begins with a digit, r
/// register, c condition, x other, v anything but an operator.
struct TokenRow {
    std::string_view words;  ///< mnemonics; "*" for all, "=RL" for those with the forms of RL
    std::string_view tokens;
    std::string_view fix;  ///< replaces these tokens; empty: no proposal
    std::string_view note;
    std::string_view example;
};

/// Operands that do not fit.
struct OperandRow {
    std::string_view numbers;  ///< of messages, separated by blanks; "*" for all errors
    std::string_view words;    ///< as for `TokenRow`
    std::string_view shapes;   ///< as for `HasShape`; "*" for all
    std::string_view fix;      ///< replaces the statement; empty: no proposal
    std::string_view note;
    std::string_view example;
};

// clang-format off
inline constexpr auto tokenTable = std::to_array<TokenRow>({
    {"*", "/ /", "; ", "begin the comment with a semicolon", " LD A,5 // five"},
    {"*", "/ \\*", "; ", "begin the comment with a semicolon", " LD A,5 /* five */"},
    {"JP JR CALL DB DEFB DW DEFW", "^ %iNEAR|FAR|SHORT|OFFSET|PTR|ADDR %v", "%2", "", "X: EQU 200| CALL NEAR X"},
    {"LD", "^ %iPTR|OFFSET|ADDR %v", "%2", "", "X: LD HL,OFFSET X"},
    {"*", "^ %iBYTE|WORD %iPTR %v", "(%3)", "", "X: LD HL,WORD PTR X"},
    {"*", "^ %iBYTE|WORD %iPTR", " ", "", " LD A,BYTE PTR (HL)"},
    {"*", "%rIX|IY \\( %v \\)", "(%1+%3)", "", " LD A,IX(5)"},
    {"RET", "^ %iIF %c ;", "%2", "", " RET IF Z"},
    {"JP", "^ %iIF %c ;", "%2", "", "X: JP IF Z,X"},
    {"JP JR CALL", "^ %v %iIF %c ;", "%3,%1", "", "X: JP X IF Z"},
    {"JP JR CALL", "^ %v %iIF %rC ;", "%3,%1", "", "X: JP X IF C"},
    {"SUB AND XOR OR CP", "^ %rA %r ;", "%2", "", " AND A B"},
    {"*", "^ - %v \\( %rIX|IY \\)", "(%4-%2)", "", " LD A,-5(IX)"},
    {"*", "%v \\( %rIX|IY \\)", "(%3+%1)", "", " LD A,5(IX)"},
    {"*", "%i \\( \\)", "%1", "write %f: a name has no brackets after it", "X: CALL X()"},
    {"JP JR CALL", "%i @ \\(", "", "put the arguments into registers: a routine takes none in brackets", "X: CALL X(5)"},
    {"*", "\\( %iBYTE|WORD|PTR %v \\)", "(%3)", "", "X: LD (WORD X),HL"},
    {"*", "^ %iBYTE|WORD|PTR \\(", "(", "", " INC BYTE (IX+1)"},
    {"*", "%i @ \\( %r \\) ;", "", "compute the address first: no register is added to one here", "X: NOP| LD A,X(HL)"},
    {"BIT SET RES", "%v @ <|SHL", "", "write the number of the bit, from 0 to 7: it is no mask", " BIT 1<<7,A"},
    {"*", "^ \\( %rHL|DE|BC \\) @ +|- ;", "", "step with INC %2 or DEC %2 after it: this form is of another processor", " LD A,(HL)+"},
    {"*", "^ \\( %rHL|DE|BC \\) @ + + ;", "", "step with INC %2 after it: this form is of another processor", " LD A,(HL)++"},
    {"*", "^ \\* %rHL|DE|BC ;", "(%2)", "", " LD A,*HL"},
    {"*", "^ %i@HL|@DE|@BC ;", "(%x1)", "", " LD A,@HL"},
    {"PUSH POP INC DEC", "%r @ %r", "", "write one instruction for each operand", " PUSH BC DE"},
    {"INC DEC =RL", "^ %rIX|IY +|- %v ;", "(%1%2%3)", "", " INC IX+1"},
    {"BIT SET RES", "^ %rIX|IY +|- %v ;", "(%1%2%3)", "", " BIT 1,IX+1"},
    {"INC DEC", "^ %r +|- +|- ;", "%1", "", " INC HL++"},
    {"INC DEC", "^ %r @ +|- %n", "", "remove it, repeat the instruction or use ADD: %w steps by 1", " INC HL+1"},
    {"*", "^ = %v", "%2", "", " LD HL,=5"},
    {"*", "%v @ %iDIV", "/", "", " DB 7 DIV 2"},
    {"*", "%v %iX %v", "%1*%3", "", " DB 7 X 2"},
    {"RST", "^ %n10|18|20|28|30|38 ;", "%1H", "write %f: the addresses are hexadecimal", " RST 38"},
    {"DB DEFB DW DEFW", "^ %i\\? ;", "0", "write %f: each value is written out", " DB ?"},
    {"*", ":|\\\\ %i", "", "write one instruction in a line; a comment begins with a semicolon", " LD A,5 : load"},
    {"IF COND", "%iDEFINED", "", "give the name a value by -D NAME=0 or -D NAME=1: a name cannot be tested", " IF DEFINED(X)| ENDIF"},
    {"IF COND", "%iTHEN ;", " ", "remove THEN", "X: EQU 5| IF X THEN| ENDIF"},
    {"ELSE", "^ %iIF", "", "write ENDIF and an IF that is false where the first is true: conditions do not nest", " IF 1| ELSE IF 2| ENDIF"},
    {"*", "! =", " XOR ", "write %f: it is 0 only if both are equal", "X: EQU 3| IF X!=5| ENDIF"},
    {"*", "< >", " XOR ", "write %f: it is 0 only if both are equal", "X: EQU 3| IF X<>5| ENDIF"},
    {"*", "%v @ %iNE", "XOR", "write %f: it is 0 only if both are equal", "X: EQU 3| IF X NE 5| ENDIF"},
    {"*", "= =", "=", "", "X: EQU 5| IF X==5| ENDIF"},
    {"*", "= >", ">=", "", "X: EQU 5| IF X=>5| ENDIF"},
    {"*", "= <", "<=", "", "X: EQU 5| IF X=<5| ENDIF"},
    {"*", "%v @ %iEQ", "=", "", "X: EQU 5| IF X EQ 5| ENDIF"},
    {"*", "%v @ %iGT", ">", "", "X: EQU 5| IF X GT 5| ENDIF"},
    {"*", "%v @ %iLT", "<", "", "X: EQU 5| IF X LT 5| ENDIF"},
    {"*", "%v @ %iGE", ">=", "", "X: EQU 5| IF X GE 5| ENDIF"},
    {"*", "%v @ %iLE", "<=", "", "X: EQU 5| IF X LE 5| ENDIF"},
    {"*", "< <", " SHL ", "", "X: EQU 5| LD A,X<<2"},
    {"*", "> >", " SHR ", "", "X: EQU 500| LD A,X>>8"},
    {"*", "\\* \\*", "", "write the multiplications out: there is no power operator, and EXP is e to the power", " LD A,2**3"},
    {"*", "^ %v & & %v ;", "%1 AND %4", "", "X: EQU 5| IF X && X| ENDIF"},
    {"*", "^ %v \\| \\| %v ;", "%1 OR %4", "", ""},
    {"*", "%v @ - > %v", "", "add the distance from the start of the data: there are no structures", "X: NOP| LD HL,X->Y"},
    {"*", "%iDUP", "", "write DS for bytes of 0, or the values one by one: there is no DUP", " DB 10 DUP(0)"},
    {"*", "& &", "", "combine names only: give each comparison a name by EQU and write X AND Y", "X: EQU 5| IF X=5 && X>2| ENDIF"},
    {"*", "\\| \\|", "", "combine names only: give each comparison a name by EQU and write X OR Y", ""},
    {"IF COND", "^ %iNOT %v ;", "%2=0", "", "X: EQU 5| IF NOT X| ENDIF"},
    {"IF COND", "%iNOT", "", "write X=0 for NOT X: ! turns every bit", "X: EQU 5| IF NOT (X+1)| ENDIF"},
    {"JP JR CALL", "^ !|NOT Z|C ;", "N%2", "", "X: JP !Z,X"},
    {"RET", "^ !|NOT Z|C ;", "N%2", "", " RET !Z"},
    {"*", "%iNOT %v", "!%2", "", "X: EQU 5| DW NOT X"},
    {"*", "%iNOT", "!", "", "X: EQU 5| DW NOT (X)+1"},
    {"JP JR CALL", "^ %v %c ;", "%2,%1", "", "X: JP X NZ"},
    {"JP JR CALL", "^ %v %rC ;", "%2,%1", "", "X: JP X C"},
    {"*", "^ %iHIGH|HI|MSB \\( %v \\) ;", "%3 SHR 8", "", "X: EQU 500| LD A,HIGH(X)"},
    {"*", "^ %iLOW|LO|LSB \\( %v \\) ;", "%3 AND 255", "", "X: EQU 500| LD A,LOW(X)"},
    {"*", "^ %iHIGH|HI|MSB %v ;", "%2 SHR 8", "", "X: EQU 500| LD A,HIGH X"},
    {"*", "^ %iLOW|LO|LSB %v ;", "%2 AND 255", "", "X: EQU 500| LD A,LOW X"},
    {"*", "%iHIGH|LOW \\(", "", "write X SHR 8 for the high byte of X, and X AND 255 for the low one", "X: EQU 500| LD A,HIGH(X+1)"},
    {"*", "^ %iHIGH|LOW %v", "", "write X SHR 8 for the high byte of X, and X AND 255 for the low one", "X: EQU 500| LD A,HIGH X+1"},
    {"*", "^ < %rHL|BC|DE > ;", "(%2)", "", " LD A,<HL>"},
    {"*", "^ > %v ;", "%2 SHR 8", "", "X: EQU 500| LD A,>X"},
    {"*", "^ < %v ;", "%2 AND 255", "", "X: EQU 500| LD A,<X"},
    {"*", "^ %e\\# > %v ;", "%3 SHR 8", "", "X: EQU 500| LD A,#>X"},
    {"*", "^ %e\\# < %v ;", "%3 AND 255", "", "X: EQU 500| LD A,#<X"},
    {"*", "%iSIZEOF %v", "", "put a label after the data and subtract the one before it", "X: NOP| LD A,SIZEOF X"},
    {"*", "%iSIZEOF|LENGTH|STRLEN \\(", "", "put a label after the data and subtract the one before it", "X: NOP| LD A,SIZEOF(X)"},
    {"*", "%e% %v", " MOD %2", "", " LD A,5 % 3"},
    {"EQU ORG DW DEFW DS DEFS JP JR CALL DJNZ", "^ \\* ;", "$", "", "X: EQU *"},
    {"*", "^ \\* +|-", "$%2", "", " JR *+2"},
    {"*", "%x.", "$", "", " JR .+2"},
    {"*", "^ \\( %rIX|IY +|- @ %rA|B|C|D|E|H|L|BC|DE|HL|IX|IY", "", "use a number: a displacement is no register", " LD A,(IX+A)"},
    {"*", "\\( %rIX|IY \\*|/ %v \\)", "(%2+%4)", "", " LD A,(IX*5)"},
    {"*", "\\( %v + %rIX|IY \\)", "(%4+%2)", "", " LD A,(5+IX)"},
    {"*", "\\( - %v + %rIX|IY \\)", "(%5-%3)", "", " LD A,(-5+IX)"},
    {"LD", "^ \\( %rHL|DE|BC +|- +|- \\)", "", "write (%2), then INC %2 or DEC %2: this form is of another processor", " LD A,(HL++)"},
    {"*", "^ \\( %rIX|IY \\) +|- %v ;", "(%2%4%5)", "", " LD A,(IX)+5"},
    {"LD", "^ \\( %rHL|DE|BC +|- \\)", "", "write (%2), then INC %2 or DEC %2: this form is of another processor", " LD A,(HL+)"},
    {"LD", "^ \\( %iHLI|HLD \\)", "", "write (HL), then INC HL or DEC HL: this form is of another processor", " LD A,(HLI)"},
    {"*", "^ \\( \\( %rHL|BC|DE \\) \\) ;", "(%3)", "", " LD A,((HL))"},
    {"*", "^ \\( \\( SP \\) \\) ;", "(%3)", "", " EX ((SP)),HL"},
    {"*", "^ \\( \\( C \\) \\) ;", "(%3)", "", " IN A,((C))"},
    {"*", "^ \\( %rHL|BC|DE + @ %r", "", "compute the address first: no register is added to one here", " LD A,(HL+B)"},
    {"JP", "^ \\( %rHL +|- %v", "", "compute the address first: JP (HL) takes no displacement", " JP (HL+1)"},
    {"*", "^ \\( @ %rHL|BC|DE|SP|A|B|C|D|E|H|L|I|R +|-", "", "use IX or IY: no other register has a displacement", " LD A,(HL+1)"},
    {"*", "^ & %iX* ;", "", "write hexadecimal as 0FFH, $FF or &HFF", " LD A,&XFF"},
});

inline constexpr auto operandTable = std::to_array<OperandRow>({
    // The number of operands.
    {"13", "SUB AND XOR OR CP", "A,s", "%w %2", "", " SUB A,B"},
    {"13", "SUB", "HL,dd", "AND A\n\tSBC HL,%2", "subtract pairs with AND A, then SBC HL,%2", " SUB HL,DE"},
    {"13", "CP", "HL,dd", "", "compare pairs with AND A, SBC HL,%2 and ADD HL,%2: CP takes bytes", " CP HL,DE"},
    {"13", "SUB AND XOR OR CP", "*", "", "use the accumulator: %w takes one operand, a byte", " AND B,C"},
    {"13", "DS DEFS", "any,0 any,00H any,$00 any,0H any,$0 any,#00", "%w %1", "", " DS 10,0"},
    {"13", "DS DEFS", "*", "", "write the bytes with DB: %w fills with 0 only", " DS 10,255"},
    {"13", "DM DEFM", "*", "DB %r", "", " DM \"a\",\"b\""},
    {"13", "DJNZ", "reg,any", "DJNZ %2", "", "X: DJNZ B,X"},
    {"13", "END", "*", "END", "remove the operand: the start of a .bin is the label EXEC", " END 100H"},
    {"13", "=RL", "m,1", "%w %1", "", " SLA A,1"},
    {"13", "=RL", "m,n", "", "write %w %1 once for each bit", " SLA A,2"},
    {"13", "=RL", "gp,n", "", "shift the halves through the carry, once for each bit: %w takes a byte", " SLA HL,1"},
    {"13", "=RL", "*", "", "use the published form: the result is not copied to a register", " RL (IX+1),B"},
    {"13", "BIT SET RES", "*", "", "use the published form: the result is not copied to a register", " SET 0,(IX+1),B"},
    {"13", "LDI", "A,(HL) (HL),A", "LD %r\n\tINC HL", "write LD %r and INC HL: LDI takes no operands", " LDI A,(HL)"},
    {"13", "LDI", "A,(DE) (DE),A", "LD %r\n\tINC DE", "write LD %r and INC DE: LDI takes no operands", " LDI A,(DE)"},
    {"13", "LDD", "A,(HL) (HL),A", "LD %r\n\tDEC HL", "write LD %r, and DEC HL if that is meant: LDD takes no operands", " LDD A,(HL)"},
    {"13", "LDI LDD", "r,s A,(nn) A,I A,R I,A R,A (HL),r (HL),n (xy+d),r (nn),A dd,nn xy,nn", "LD %r", "did you mean LD? %w takes no operands", " LDD B,5"},
    {"13", "CPI", "v", "CP %r", "", " CPI 5"},
    {"13", "NEG CPL DAA RLCA RRCA RLA RRA", "A", "%w", "", " NEG A"},
    {"13", "RLCA RRCA RLA RRA", "any", "", "use RLC, RRC, RL or RR for other registers: %w rotates the accumulator", " RLA B"},
    {"13", "NEG CPL DAA", "any", "", "use the accumulator: %w takes no operand", " NEG B"},
    {"13", "INC DEC", "any,1", "%w %1", "", " INC HL,1"},
    {"13", "INC DEC", "any,n", "", "repeat the instruction, or use ADD: %w steps by 1", " INC HL,2"},
    {"13", "INC DEC", "any,any any,any,any any,any,any,any", "", "write one instruction for each operand", " INC A,B"},
    {"13", "PUSH POP", "pair,any pair,any,any pair,any,any,any", "", "write one instruction for each operand", " PUSH BC,DE"},
    {"13", "INCLUDE BINCLUDE", "*", "", "remove the rest, or write one line for each file", " BINCLUDE defs.kor,1"},
    {"13", "EXX", "DE,HL (SP),HL (SP),xy", "EX %r", "did you mean EX? EXX takes no operands", " EXX DE,HL"},
    {"13", "LDI LDD CPI INI IND OUTI OUTD EXX RETI RETN", "*", "", "check the mnemonic: %w takes no operands", " RETI B"},
    {"13", "RLD", "m", "RL %1", "did you mean RL? RLD takes no operands", " RLD D"},
    {"13", "RRD", "m", "RR %1", "did you mean RR? RRD takes no operands", " RRD D"},
    {"13", "LDIR LDDR CPIR CPDR CPD HALT NOP EI DI SCF CCF INIR INDR OTIR OTDR RLD RRD", "*", "%w", "remove the operands: %w takes none, and a comment begins with a semicolon", " LDIR 5"},
    {"13", "IF COND", "*", "", "combine the conditions with AND or OR: %w takes one operand", " IF 1,1| ENDIF"},
    {"13", "ELSE", "*", "%w", "remove the operand, or begin it with a semicolon if it is a comment", " IF 1| ELSE X| ENDIF"},
    {"13", "ENDIF ENDC", "*", "%w", "remove the operand, or begin it with a semicolon if it is a comment", " IF 1| ENDIF X"},
    // ADD reports three operands as too few.
    {"14", "ADD", "any,any,any", "", "remove one operand: %w takes two", " ADD A,B,C"},
    {"14", "ADC SBC", "A", "%w A,A", "write %f, or add the second operand", " ADC A"},
    {"14", "ADC SBC", "s", "%w A,%m1", "", " ADC B"},
    {"14", "IN", "(C)", "IN A,(C)", "add the register, as in %f", " IN (C)"},
    {"14", "OUT", "(C)", "OUT (C),A", "add the register, as in %f", " OUT (C)"},
    {"14", "IN", "n (n)", "IN A,(%i1)", "", " IN (5)"},
    {"14", "OUT", "n (n)", "OUT (%i1),A", "", " OUT 5"},
    {"14 16", "EX", "AF AF' AF,reg reg,AF AF',any", "EX AF,AF'", "", " EX AF,BC"},
    {"14 16", "EX", "DE HL HL,DE", "EX DE,HL", "", " EX DE"},
    {"14", "RLC RRC RL RR", "", "", "add the operand: RLCA, RRCA, RLA and RRA rotate the accumulator", " RLC"},
    {"14", "JP JR CALL DJNZ", "", "", "add the address to go to", " JP"},
    {"14", "IF COND", "", "", "add the condition", " IF"},
    {"14", "EQU ORG DS DEFS DB DEFB DW DEFW DM DEFM", "", "", "add the value", "X: EQU"},
    {"14", "INCLUDE BINCLUDE", "", "", "add the name of the file", " INCLUDE"},
    // Exchange, ports, stack.
    {"16", "EX", "SP,HL SP,xy", "EX (SP),%2", "", " EX SP,HL"},
    {"16", "EX", "HL,(SP) xy,(SP)", "EX (SP),%1", "", " EX HL,(SP)"},
    {"16", "IN", "A,n", "IN A,(%2)", "", " IN A,5"},
    {"16", "IN", "r,C r,(BC) F,(BC)", "IN %1,(C)", "", " IN A,C"},
    {"16", "IN", "r,(n) r,n", "IN A,(%i2)\n\tLD %1,A", "use A: only IN A,(n) takes a port number", " IN B,(5)"},
    {"16", "OUT", "n,A", "OUT (%1),A", "", " OUT 5,A"},
    {"16", "OUT", "C,r (BC),r", "OUT (C),%2", "", " OUT C,A"},
    {"16", "OUT", "(n),r (n),n", "LD A,%2\n\tOUT %1,A", "load A first: only OUT (n),A takes a port number", " OUT (5),B"},
    {"16", "OUT", "A,(n) A,n", "OUT (%i2),A", "", " OUT A,(5)"},
    {"16", "OUT", "r,(C) A,C", "OUT (C),%1", "", " OUT A,(C)"},
    {"16", "IN", "(n),A (C),r", "IN %2,%1", "", " IN (5),A"},
    {"16", "PUSH POP", "r", "%w %q1", "push and pop pairs only: %f", " PUSH A"},
    {"16", "PUSH POP", "PSW", "%w AF", "", " PUSH PSW"},
    {"16", "PUSH", "n", "LD HL,%1\n\tPUSH HL", "load a pair first: PUSH takes no number", " PUSH 5"},
    // Jumps.
    {"16", "JP", "HL xy", "JP (%1)", "", " JP HL"},
    {"16", "JP", "cc,HL cc,(HL) cc,(xy) cc,xy", "", "jump around it: JP (HL) takes no condition", " JP Z,(HL)"},
    {"16", "JP JR CALL", "cc", "", "add the address: %w %1,nn", " JP NZ"},
    {"16", "RET", "v", "", "use NZ, Z, NC, C, PO, PE, P or M, or begin the comment with a semicolon", " RET done"},
    {"16", "JR", "PO,any PE,any P,any M,any", "JP %1,%2", "write %f: JR takes NZ, Z, NC and C only", "X: JR PO,X"},
    {"16", "CALL", "HL (HL) (xy) xy (xy+d) cc,(HL) cc,(xy) cc,HL", "", "call a label in front of a JP (HL): CALL takes an address", " CALL (HL)"},
    {"54", "JP", "(HL),any (xy),any", "JP %1", "", " JP (HL),A"},
    {"16 54", "JP JR CALL", "v,cc", "%w %2,%1", "", "X: JP X,NZ"},
    {"54", "JP", "*", "", "use NZ, Z, NC, C, PO, PE, P or M as the condition", "X: JP A,X"},
    {"16", "CALL JR", "v,v v,r", "", "remove %2, or write a condition for %1: NZ, Z, NC, C (or with CALL PO, PE, P, M)", " CALL 5,6"},
    {"16", "CALL JR", "r,v", "", "use NZ, Z, NC, C (or with CALL PO, PE, P, M) as the condition", "X: CALL A,X"},
    // Loads.
    {"16", "LD", "any,F F,any AF,any any,AF", "", "use PUSH AF and POP AF: neither F nor AF is loaded", " LD A,F"},
    {"16", "LD", "HL,SP xy,SP", "LD %1,0\n\tADD %1,SP", "write LD %1,0 and ADD %1,SP", " LD HL,SP"},
    {"16", "LD", "gp,gp", "LD %h1,%h2\n\tLD %l1,%l2", "load the halves: LD %h1,%h2 and LD %l1,%l2", " LD HL,DE"},
    {"16", "LD", "gp,xy xy,gp xy,xy", "PUSH %2\n\tPOP %1", "write PUSH %2 and POP %1", " LD HL,IX"},
    {"16", "LD", "HL,r BC,A DE,A", "", "write LD (%1),%2 to store it, or load the halves: LD %l1,%2 and LD %h1,0", " LD HL,A"},
    {"16", "LD", "gp,r", "LD %l1,%2\n\tLD %h1,0", "load the halves: LD %l1,%2 and LD %h1,0", " LD DE,B"},
    {"16", "LD", "r,HL A,BC A,DE", "", "write (%2) for the byte in memory, or load one half: LD %1,%l2 for the low byte", " LD A,HL"},
    {"16", "LD", "r,gp", "LD %1,%l2", "load one half: %f for the low byte", " LD B,DE"},
    {"16", "LD", "HL,(HL)", "LD A,(HL)\n\tINC HL\n\tLD H,(HL)\n\tLD L,A", "write LD A,(HL), INC HL, LD H,(HL) and LD L,A", " LD HL,(HL)"},
    {"16", "LD", "gp,(HL)", "LD %l1,(HL)\n\tINC HL\n\tLD %h1,(HL)", "load the halves: LD %l1,(HL), INC HL, LD %h1,(HL)", " LD DE,(HL)"},
    {"16", "LD", "gp,(SP) xy,(SP)", "POP %1\n\tPUSH %1", "write POP %1 and PUSH %1", " LD DE,(SP)"},
    {"16", "LD", "gp,(xy+d)", "", "load the halves: LD %l1,%2 and LD %h1 from the next byte", " LD DE,(IX+1)"},
    {"16", "LD", "(HL),HL", "", "copy HL to DE first and store the halves: LD (HL),E, INC HL, LD (HL),D", " LD (HL),HL"},
    {"16", "LD", "(HL),gp", "LD (HL),%l2\n\tINC HL\n\tLD (HL),%h2", "store the halves: LD (HL),%l2, INC HL, LD (HL),%h2", " LD (HL),DE"},
    {"16", "LD", "r,(BC) r,(DE) r,(n)", "LD A,%2\n\tLD %1,A", "use A: no other single register is loaded from %2", " LD B,(DE)"},
    {"16", "LD", "(BC),r (BC),n (DE),r (DE),n (n),r", "LD A,%2\n\tLD %1,A", "use A: no other single register is stored to %1", " LD (DE),B"},
    {"16", "LD", "(HL),(BC) (HL),(DE) (HL),(n) (xy+d),(n) (HL),(HL) (xy+d),(HL) (xy+d),(xy+d) (HL),(xy+d)", "LD A,%2\n\tLD %1,A", "use A: nothing is copied from memory to memory", " LD (HL),(IX+1)"},
    {"16", "LD", "r,(C) (C),r", "", "use IN and OUT for ports, and (HL) or (BC) for memory", " LD A,(C)"},
    {"16", "LD", "(n),n", "LD A,%2\n\tLD %1,A", "load A first: a number is stored to (HL) and (IX+d) only", " LD (1234),5"},
    {"16", "LD", "(n),(any)", "", "load a register first: nothing is copied from memory to memory", " LD (1234),(HL)"},
    {"16", "LD", "n,any", "LD (%1),%2", "write %f to store to memory, or put the target first", " LD 1234,A"},
    {"16", "LD", "I,any R,any", "LD A,%2\n\tLD %1,A", "use A: only A is loaded to %1", " LD I,5"},
    {"16", "LD", "any,I any,R", "LD A,%2\n\tLD %1,A", "use A: %2 is loaded to A only", " LD B,I"},
    // Arithmetic.
    {"16", "ADD ADC SBC", "HL,xy", "PUSH %2\n\tPOP DE\n\t%w HL,DE", "copy it to DE first: PUSH %2 and POP DE", " ADD HL,IX"},
    {"16", "ADD", "BC DE SP", "ADD HL,%1", "", " ADD DE"},
    {"16", "ADD", "HL xy", "", "add the pair that is to be added: ADD %1,DE", " ADD HL"},
    {"16", "ADD ADC SBC", "A,pair", "", "use HL as the target, or one half of %2: the accumulator takes bytes", " ADD A,HL"},
    {"16", "ADD", "BC,any DE,any SP,any", "", "add to HL, IX or IY: other pairs take no sum", " ADD DE,HL"},
    {"16", "ADD ADC SBC", "n,A", "%w A,%1", "", " ADD 5,A"},
    {"16", "ADD", "n,pair", "", "use HL, IX or IY as the target: pairs are added to pairs", " ADD X,DE"},
    {"16", "ADC SBC", "n,pair", "", "use HL as the target: pairs are added to pairs", " SBC X,DE"},
    {"16", "ADD ADC SBC", "n,any (n),any (HL),any (xy+d),any", "", "add to A and store the result", " ADD (HL),5"},
    {"16", "ADD ADC SBC", "A,(n)", "LD HL,%i2\n\t%w A,(HL)", "load HL with the address and write %w A,(HL)", " ADD A,(1234)"},
    {"16", "ADD ADC SBC", "L,gp H,gp", "%w HL,%2", "", " ADD L,BC"},
    {"16", "ADD ADC SBC", "B,any C,any D,any E,any H,any L,any", "", "use A: bytes are added to the accumulator only", " ADD B,5"},
    {"16", "ADD SUB AND XOR OR CP INC DEC", "M", "%w (HL)", "", " SUB M"},
    {"16", "SUB AND XOR OR CP", "(n)", "LD HL,%i1\n\t%w (HL)", "load HL with the address and write %w (HL), or leave out the brackets for a number", " CP (5)"},
    {"16", "SUB CP", "HL", "", "use AND A and SBC HL,DE: %w takes a byte", " SUB HL"},
    {"16", "SUB", "BC DE SP", "AND A\n\tSBC HL,%1", "subtract pairs with AND A, then SBC HL,%1", " SUB DE"},
    {"16", "CP", "BC DE SP", "", "compare pairs with AND A, then SBC HL,%1", " CP DE"},
    {"16", "INC DEC", "(n)", "LD HL,%i1\n\t%w (HL)", "load HL with the address and write %w (HL)", " INC (1234)"},
    {"16", "INC DEC", "n", "LD HL,%1\n\t%w (HL)", "load HL with the address and write %w (HL)", " INC 1234"},
    {"16", "SRL SRA RR", "gp", "%w %h1\n\tRR %l1", "shift the halves through the carry: %w %h1 and RR %l1", " SRL HL"},
    {"16", "RL SLA", "gp", "%w %l1\n\tRL %h1", "shift the halves through the carry: %w %l1 and RL %h1", " RL DE"},
    {"16", "BIT SET RES", "r,n m,n", "%w %2,%1", "", " BIT A,7"},
});
// clang-format on

}  // namespace korv
