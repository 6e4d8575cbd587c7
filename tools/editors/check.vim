" Called by tools/test_editors: checks what Vim receives from korv-ls through ALE for main.kor, which includes lib.kor.
set nocompatible nomore hidden
let g:ale_linters = {'korv': ['korv-ls']}
let g:ale_lint_delay = 50
let g:ale_hover_to_preview = 1
packadd! ale
call ale#linter#Define('korv', {'name': 'korv-ls', 'lsp': 'stdio', 'executable': $KORV_LS, 'command': '%e',
    \ 'project_root': {buffer -> getcwd()}})
runtime plugin/ale.vim
filetype plugin on
syntax on

" Waits until an expression is true.
function! Expect(what, condition) abort
  for i in range(200)
    if eval(a:condition)
      verbose echo 'Vim: ' . a:what
      return
    endif
    sleep 50m
  endfor
  verbose echo 'Vim: ' . a:what . ': not seen'
  cquit
endfunction

edit main.kor
let s:buffer = bufnr('')
call setline(2, '        LD   A,LIMITS')
ALELint
call Expect('a message for an unsaved change',
    \ "len(filter(copy(ale#engine#GetLoclist(s:buffer)), 'v:val.text =~ \"LIMITS\" && v:val.lnum == 2')) == 1")
call setline(2, '        LD   A,LIMIT')
ALELint
call Expect('no message after it is mended', 'empty(ale#engine#GetLoclist(s:buffer))')
call cursor(1, 15)
ALEHover
call Expect('hover', "join(getbufline('ALEPreviewWindow', 1, '$')) =~ 'prints a text'")
ALEGoToDefinition
call Expect('definition', "expand('%:t') ==# 'lib.kor' && line('.') == 3")
qall!
