" Korv assembler, .kor
if exists('b:current_syntax')
  finish
endif

syntax case ignore
syntax iskeyword @,48-57,?,64,_

" A word in column 1 is a label, even if it is an instruction, so it is shown as a label.
syntax match korvLabel /^[0-9A-Za-z?@_]\+:\=/ nextgroup=korvInstruction,korvDirective,korvReserved skipwhite
syntax match korvIndent /^\s\+/ nextgroup=korvInstruction,korvDirective,korvReserved

syntax keyword korvInstruction contained ADC ADD AND BIT CALL CCF CP CPD CPDR CPI CPIR CPL DAA DEC DI DJNZ
syntax keyword korvInstruction contained EI EX EXX HALT IM IN INC IND INDR INI INIR JP JR LD LDD LDDR LDI LDIR
syntax keyword korvInstruction contained NEG NOP OR OTDR OTIR OUT OUTD OUTI POP PUSH RES RET RETI RETN RL RLA
syntax keyword korvInstruction contained RLC RLCA RLD RR RRA RRC RRCA RRD RST SBC SCF SET SLA SRA SRL SUB XOR
syntax keyword korvDirective contained BINCLUDE COND DB DEFB DEFM DEFS DEFW DM DS DW ELSE END ENDC ENDIF EQU IF
syntax keyword korvDirective contained INCLUDE ORG
" Reserved words that only cause an error.
syntax keyword korvReserved contained DD DEFD ENDM ENDP MACRO MAC_OFF MAC_ON PROC

syntax keyword korvRegister A B C D E H L I R F FLAGS AF BC DE HL IX IY SP
syntax keyword korvCondition M NC NZ P PE PO Z
syntax keyword korvOperator AND EXP MOD OR SHL SHR XOR
syntax keyword korvSystem KORV KORV_BUILD KORV_LOW KORV_VER

" Anything that can be read as a number is a number, for example EACH.
syntax match korvNumber /\<\x[0-9A-F?@_]*H\>\|\<[01.]\+B\>\|\<\o\+O\>\|\<\d\+\>/
syntax match korvNumber /[$#]\x\+\>\|%[01][01.]*\|&H\x\+\>\|&B[01.]\+\>\|&O\o\+\>\|&D\d\+\>/
syntax match korvHere /\$\(\x\)\@!/
syntax region korvString start=/"/ end=/"/ oneline
syntax match korvContinued /\\\s*$/
syntax match korvTodo /\<\(TODO\|FIXME\|XXX\)\>/ contained
syntax match korvComment /;.*$/ contains=korvTodo,korvContinued
syntax match korvComment /\%1l^\*.*$/

highlight default link korvLabel Label
highlight default link korvInstruction Statement
highlight default link korvDirective PreProc
highlight default link korvReserved Error
highlight default link korvRegister Type
highlight default link korvCondition Type
highlight default link korvOperator Operator
highlight default link korvSystem Constant
highlight default link korvNumber Number
highlight default link korvHere Special
highlight default link korvString String
highlight default link korvContinued Special
highlight default link korvTodo Todo
highlight default link korvComment Comment

let b:current_syntax = 'korv'
