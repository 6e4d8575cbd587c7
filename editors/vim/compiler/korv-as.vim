" korv-as prints `game.kor:12:9: error: text: 'detail' [X33]`, then the source line and a caret.
if exists('current_compiler')
  finish
endif
let current_compiler = 'korv-as'
let s:saved_cpo = &cpo
set cpo&vim

" If there is a Makefile, it determines how the program is built.
if filereadable('Makefile') || filereadable('makefile') || filereadable('GNUmakefile')
  CompilerSet makeprg=make
else
  CompilerSet makeprg=korv-as\ %:S
endif
" make reports which directory the file names are relative to.
CompilerSet errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%f:%l:%c:\ %tote:\ %m,
    \korv-as:\ %trror:\ %m,
    \%D%*\\a[%*\\d]:\ Entering\ directory\ %*[`']%f',%X%*\\a[%*\\d]:\ Leaving\ directory\ %*[`']%f',
    \%D%*\\a:\ Entering\ directory\ %*[`']%f',%X%*\\a:\ Leaving\ directory\ %*[`']%f',%-G%.%#

let &cpo = s:saved_cpo
unlet s:saved_cpo
