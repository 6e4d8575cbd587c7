autocmd BufNewFile,BufRead *.kor setfiletype korv
