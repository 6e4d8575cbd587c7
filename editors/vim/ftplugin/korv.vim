" Korv assembler, .kor
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:; commentstring=;%s
" What a name is made of; an instruction is indented by a tab, and the tools for tags and words agree.
setlocal iskeyword=@,48-57,?,64,_
let b:undo_ftplugin = 'setlocal comments< commentstring< iskeyword<'
