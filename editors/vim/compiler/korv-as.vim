" The program korv-as, which prints `game.kor:12:9: error: text: detail [X33]`, the line and a caret below it.
if exists('current_compiler')
  finish
endif
let current_compiler = 'korv-as'
let s:saved_cpo = &cpo
set cpo&vim

" A Makefile knows better how the program is built.
if filereadable('Makefile') || filereadable('makefile') || filereadable('GNUmakefile')
  CompilerSet makeprg=make
else
  CompilerSet makeprg=korv-as\ %:S
endif
" make's own lines tell where the names count from.
CompilerSet errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%f:%l:%c:\ %tote:\ %m,
    \korv-as:\ %trror:\ %m,
    \%D%*\\a[%*\\d]:\ Entering\ directory\ %*[`']%f',%X%*\\a[%*\\d]:\ Leaving\ directory\ %*[`']%f',
    \%D%*\\a:\ Entering\ directory\ %*[`']%f',%X%*\\a:\ Leaving\ directory\ %*[`']%f',%-G%.%#

let &cpo = s:saved_cpo
unlet s:saved_cpo
