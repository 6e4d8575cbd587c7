/// Mnemonics and directives of other assemblers, with what to write instead. Every row has an
/// example that produces its note; note_table.h explains the templates.
#pragma once

#include <array>
#include <string_view>

namespace korv {

/// A mnemonic or directive that is not in the vocabulary. The first row that matches is used.
struct WordRow {
    std::string_view words;  ///< separated by blanks; also after ".", "#", "!" or "%"
    std::string_view fix;    ///< replaces the statement; empty: no proposal
    std::string_view note;
    std::string_view example;
    int operands = -1;  ///< number of operands that it needs; -1: any
};

// clang-format off
inline constexpr auto wordTable = std::to_array<WordRow>({
    {"TEXT BSS DATA", "", "remove the line: one run makes one image and nothing is linked", " .TEXT", 0},
    // With the same meaning.
    {"EQUB EQUS BYTE DC.B FCB ASCII ASC TEXT FCC STRING DEFT DTEXT STR DATA", "DB %r", "", " BYTE 5"},
    {"ASCIIZ ASCIZ DZ STRINGZ TEXTZ DEFZ", "DB %r,0", "", " ASCIIZ \"abc\""},
    {"DC", "DB %b1", "", " DC \"abc\"", 1},
    {"DC", "DB %r", "", " DC 1,2"},
    {"EQUW WORD HWORD SHORT DC.W FDB ADDR DA DEFA", "DW %r", "", " WORD 5"},
    {"BLOCK SPACE FILL ZERO RMB BLKB RB DC.S SKIP DEFSPACE RES.B ZMB BSS RESB DSB", "DS %r", "", " FILL 10", 1},
    {"BLOCK SPACE FILL SKIP ZERO DSB", "", "write the bytes with DB: DS fills with 0 only", " FILL 10,255"},
    {"RESW RW BLKW DSW DEFWS RMW", "DS 2*%r", "", " RESW 10", 1},
    {"INCBIN INSERT BINARY LOADBIN IBIN", "BINCLUDE %1", "", " INCBIN defs.kor", 1},
    {"INCBIN INSERT BINARY LOADBIN IBIN", "", "cut the part out of the file: BINCLUDE takes a whole file", " INCBIN defs.kor,1"},
    {"INCL READ GET COPY REQUIRE *INCLUDE *INCL $INCLUDE INC_", "INCLUDE %n1", "", " READ defs.kor", 1},
    {"ENDIF. EIF ENDCOND", "ENDIF", "", " IF 1| EIF", 0},
    {"ELSEIF ELIF ELSIF ELSEIFDEF", "", "write ENDIF and an IF that is false where the first is true: conditions do not nest", " IF 0| ELIF 1| ENDIF"},
    {"LOAD MOVE MOVEA", "LD %r", "", " LOAD A,5", 2},
    {"RETURN RTS", "RET", "", " RETURN", 0},
    {"RETURN", "RET %r", "", " RETURN Z", 1},
    {"ENT ENTRY RUN START", "", "define the label EXEC: it is the start of a .bin", " ENT $"},
    // Conditions and names.
    {"IFDEF IFNDEF IFUSED IFNUSED", "", "use IF with a name that EQU or -D gives a value: a name cannot be tested", " IFDEF X| ENDIF"},
    {"IFEQ IFE IFZ", "IF %1=0", "", " IFE 5| ENDIF", 1},
    {"IFNE IFNZ", "IF %1", "", " IFNE 5| ENDIF", 1},
    {"IFEQ", "IF %1=%2", "", " IFEQ 5,5| ENDIF", 2},
    {"IFNE", "IF %1 XOR %2", "", " IFNE 5,6| ENDIF", 2},
    {"IFN UNLESS WHEN IFB IFNB IFIDN IFDIF IFEXIST IFT IFF IFTRUE IFFALSE IFGT IFLT IFGE IFLE", "", "use IF, ELSE and ENDIF: there are no other conditions", " UNLESS"},
    {"DEFL DEFC LET DEFINE XDEFINE UNDEF UNDEFINE", "", "define a constant with NAME: EQU 5", " DEFINE X"},
    // Without a counterpart.
    {"ALIGN BALIGN P2ALIGN EVEN", "", "write DS N-1-($-1 AND N-1) to fill up to a multiple of N: DS 255-($-1 AND 255) for 256", " ALIGN 256"},
    {"LUA ENUM FUNC FUNCTION SELECT SWITCH CASE REPT REPEAT TIMES DUP EDUP ENDR IRP IRPC EXITM WHILE WEND FOR NEXT LOCAL STRUCT STRUC ENDS ENDSTRUCT UNION MACEND MEND ENDMACRO MAC M_ARG", "", "write the lines out, or INCLUDE them from a file: there are no macros, repetitions or structures", " REPT 5"},
    {"PHASE DISP", "", "write ORG %r, and a second ORG where the block ends: ORG changes addresses and leaves no gap", " DISP 8000H", 1},
    {"DEPHASE UNPHASE", "", "write ORG with the address that the code after it is to have", " DEPHASE"},
    {"SECTION SEGMENT CSEG DSEG ASEG PUBLIC EXTRN EXTERN EXTERNAL GLOBAL GLOBL XDEF XREF EXPORT ENTRYPOINT AREA CODE BSEG USEG COMMON EXTRA GLB EXT LIB XLIB IMPORT TYPE WEAK IDENT", "", "remove the line: one run makes one image and nothing is linked; INCLUDE joins files", " CSEG"},
    {"COMMENT", "", "begin each line of the comment with a semicolon", " COMMENT * text *"},
    {"MODULE ENDMODULE ENDMOD NAMESPACE SCOPE ENDSCOPE", "", "remove the line and choose names that are unique: all labels are global", " MODULE x"},
    {"DEVICE OUTPUT OUTBIN SAVEBIN SAVESNA SAVETAP SAVE EMPTYTAP EMPTYTRD TAPOUT OUTEND OBJECT SIZE BANK PAGE_ SLOT MMU MEMORYMAP ROMBANKMAP", "", "remove the line: the option -o names the output and -f its format", " SAVEBIN \"x\",1,2"},
    {"TITLE TTL SUBTTL PAGE LIST NOLIST LST LSTON LSTOFF EJECT EJ NAME WIDTH SBTTL XLIST LALL SALL", "", "remove the line: the option -l makes a listing", " TITLE x"},
    {"CPU Z80 .Z80 .8080 Z180 PROCESSOR OPT OPTION RADIX ARCH MODEL ENCODING CHARSET SYNTAX ASSUME RELAXED DIALECT ZILOG", "", "remove the line: the source is always for the Z80 and numbers are decimal", " .Z80"},
    {"ASSERT ERROR ERR WARN WARNING ECHO DISPLAY MESSAGE PRINTX PRINT FAIL FATAL OUTINF ERRMSG PRAGMA", "", "remove the line: there is no directive that prints or checks", " ASSERT 1"},
    {"FLOAT DOUBLE DEFF DF LONG DWORD DDW DQ DT QUAD DL INT_ BIGW DEF3 D24 DEFD_", "", "write the bytes with DB or DW: there are no wider data", " DWORD 5"},
    {"DEFG DG DH HEX DEFH", "", "write the bytes with DB, as in DB 3CH,42H", " HEX 3C42"},
    // Instructions of this processor in another spelling.
    {"NOT COM", "CPL %r", "", " NOT A"},
    {"SHL ASL LSL", "SLA %1", "", " SHL A"},
    {"SHR LSR", "SRL %1", "", " LSR A"},
    {"ASR SAR", "SRA %1", "", " ASR A"},
    {"ROL ROR RCL RCR", "", "write RLCA or RRCA, or RLA or RRA to rotate through the carry", " ROR", 0},
    {"ROL ROR RCL RCR", "", "write RLC or RRC, or RL or RR to rotate through the carry", " ROL A"},
    {"CLR", "LD %m1,0", "", " CLR A", 1},
    {"TST TEST", "", "write OR A to test the accumulator, BIT for one bit, AND for several", " TST A"},
    {"SLL SLI SL1 SLS", "", "use SLA and then SET 0: only the published instructions are in the vocabulary", " SLL A"},
    {"LDIRX LDDRX LDIX SWAP MLT OTIM IN0 OUT0 TSTIO SLP OTDM OTDMR OTIMR MULUB MULUW SWAPNIB NEXTREG MIRROR", "", "use the published instructions of the Z80: this one is of a later processor", " SWAP A"},
    {"MUL MULT MULU MULS DIV DIVU DIVS IMUL IDIV MOD", "", "call a routine: the Z80 does not multiply or divide", " MULT A,B"},
    {"JMPR JPR JUMPR BRA", "JR %r", "", "X: JMPR X", 1},
    {"JRNZ JRZ JRNC JRC", "JR %k,%r", "", "X: JRNZ X", 1},
    {"EXAF EXA", "EX AF,AF'", "", " EXAF", 0},
    {"DBNZ LOOP DJZ DNJZ JDNZ", "DJNZ %1", "", "X: LOOP X", 1},
    // The 8080.
    {"MOV", "LD %m1,%m2", "", " MOV A,M", 2},
    {"MVI", "LD %m1,%2", "", " MVI M,5", 2},
    {"LXI", "LD %p1,%2", "", " LXI H,5", 2},
    {"LDA#", "LD A,%m1", "", " LDA #5", 1},
    {"CMP#", "CP %m1", "", " CMP #5", 1},
    {"ORA#", "OR %m1", "", " ORA #5", 1},
    {"EOR#", "XOR %m1", "", " EOR #5", 1},
    {"LDA LDAA", "LD A,(%r)", "", " LDA 1234H", 1},
    {"STA STAA", "LD (%r),A", "", " STA 1234H", 1},
    {"LHLD", "LD HL,(%r)", "", " LHLD 1234H", 1},
    {"SHLD", "LD (%r),HL", "", " SHLD 1234H", 1},
    {"LDAX", "LD A,(%p1)", "", " LDAX B", 1},
    {"STAX", "LD (%p1),A", "", " STAX D", 1},
    {"XCHG", "EX DE,HL", "", " XCHG", 0},
    {"XCHG XCH", "EX %r", "", " XCHG DE,HL", 2},
    {"INX", "INC %p1", "", " INX H", 1},
    {"DCX", "DEC %p1", "", " DCX SP", 1},
    {"INR", "INC %m1", "", " INR M", 1},
    {"DCR", "DEC %m1", "", " DCR B", 1},
    {"DAD", "ADD HL,%p1", "", " DAD D", 1},
    {"ADI", "ADD A,%r", "", " ADI 5", 1},
    {"ACI", "ADC A,%r", "", " ACI 5", 1},
    {"SUI", "SUB %r", "", " SUI 5", 1},
    {"SBI", "SBC A,%r", "", " SBI 5", 1},
    {"SBB", "SBC A,%m1", "", " SBB M", 1},
    {"ANI", "AND %r", "", " ANI 5", 1},
    {"ORI", "OR %r", "", " ORI 5", 1},
    {"XRI", "XOR %r", "", " XRI 5", 1},
    {"ANA", "AND %m1", "", " ANA M", 1},
    {"ORA", "OR %m1", "", " ORA B", 1},
    {"XRA EOR", "XOR %m1", "", " XRA A", 1},
    {"CMP", "CP %m1", "", " CMP M", 1},
    {"CMP", "CP %m2", "", " CMP A,B", 2},
    {"CMA", "CPL", "", " CMA", 0},
    {"CMC", "CCF", "", " CMC", 0},
    {"STC SEC", "SCF", "", " STC", 0},
    {"RAL", "RLA", "", " RAL", 0},
    {"RAR", "RRA", "", " RAR", 0},
    {"HLT STOP", "HALT", "", " HLT", 0},
    {"PCHL", "JP (HL)", "", " PCHL", 0},
    {"SPHL", "LD SP,HL", "", " SPHL", 0},
    {"XTHL", "EX (SP),HL", "", " XTHL", 0},
    {"GOTO B", "JP %r", "", "X: GOTO X", 1},
    {"GOSUB BL JSR BSR", "CALL %r", "", "X: GOSUB X"},
    {"JMP BRL", "JP %r", "", "X: JMP X"},
    {"JNZ JZ JNC JC JPO JPE JM JPNZ JPZ JPNC JPC JPPO JPPE JPM", "JP %k,%r", "", "X: JNZ X", 1},
    {"CNZ CZ CNC CC CPO CPE CM CALLNZ CALLZ CALLNC CALLC CALLPO CALLPE CALLP CALLM", "CALL %k,%r", "", "X: CPO X", 1},
    {"RNZ RZ RNC RC RPO RPE RP RM RETNZ RETZ RETNC RETC RETPO RETPE RETP RETM", "RET %k", "", " RC", 0},
    {"JNE", "JP NZ,%r", "", "X: JNE X", 1},
    {"JE", "JP Z,%r", "", "X: JE X", 1},
    {"JAE JNB", "JP NC,%r", "", "X: JAE X", 1},
    {"JB JNAE", "JP C,%r", "", "X: JB X", 1},
    // Other processors.
    {"BNE BNZ", "JR NZ,%r", "", "X: BNE X", 1},
    {"BEQ BZ", "JR Z,%r", "", "X: BEQ X", 1},
    {"BCC BHS BGE BNC", "JR NC,%r", "", "X: BCC X", 1},
    {"BCS BLO BLT", "JR C,%r", "", "X: BCS X", 1},
    {"BMI", "JP M,%r", "", "X: BMI X", 1},
    {"BPL", "JP P,%r", "", "X: BPL X", 1},
    {"RTI IRET", "RETI", "", " RTI", 0},
    {"SEI CLI_", "DI", "", " SEI", 0},
    {"STI", "EI", "", " STI", 0},
    {"CLC", "AND A", "", " CLC", 0},
    {"PHA PUSHA PUSHAF", "PUSH AF", "", " PHA", 0},
    {"PLA POPA PUL", "POP AF", "", " PLA", 0},
    {"LDH LDHL INX DCX INR DCR LDX LDY LDA STA STX STY TAX TXA TAY TYA TXS TSX DEX DEY INY BVC BVS CPX CPY ADDA LDAB CLI SED CLD CLV BRK LEA LDS LDU STS STU REP REPE REPZ REPNE REPNZ INT XLAT CMPA BLS BHI BGT BLE LDD_ PSHS PULS", "", "use the instructions of the Z80: this one is of another processor", " LDX 5,X"},
});
// clang-format on

}  // namespace korv
