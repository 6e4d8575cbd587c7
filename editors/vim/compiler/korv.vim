" The program korv, which ends with status 0 and prints `/home/me/game.kor(12) : error X33 : text [detail]`.
if exists('current_compiler')
  finish
endif
let current_compiler = 'korv'

CompilerSet makeprg=korv\ %:S
CompilerSet errorformat=%f(%l)\ :\ %trror\ X%n\ :\ %m,%f(%l)\ :\ %tarning\ X%n\ :\ %m,%-G%.%#
