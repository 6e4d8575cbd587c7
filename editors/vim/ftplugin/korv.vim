" Korv assembler, .kor
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:; commentstring=;%s
" The characters of a name, for searches, tags and completion.
setlocal iskeyword=@,48-57,?,64,_
let b:undo_ftplugin = 'setlocal comments< commentstring< iskeyword<'
