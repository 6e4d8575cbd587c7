" korv always exits with status 0 and prints `/home/me/game.kor(12) : error X33 : text [detail]`.
if exists('current_compiler')
  finish
endif
let current_compiler = 'korv'
let s:saved_cpo = &cpo
set cpo&vim

CompilerSet makeprg=korv\ %:S
" One message has a negative number.
CompilerSet errorformat=%f(%l)\ :\ %trror\ X%n\ :\ %m,%f(%l)\ :\ %trror\ X-%n\ :\ %m,
    \%f(%l)\ :\ %tarning\ X%n\ :\ %m,%-G%.%#

let &cpo = s:saved_cpo
unlet s:saved_cpo
