# fish completion for korv-as

set -l warnings late-location truncated continued-comment org-gap number-label register-label register-value escape \
    nested-if condition early-end negative-size keyword-label hidden-instruction null-byte carriage-return end-mark \
    overlap range open-string empty-operand skipped-line label-without-colon org unused-label symbol-range
set -l words error no-error $warnings no-$warnings error=$warnings no-error=$warnings

complete -c korv-as -s o -r -F -d 'Write the image to FILE'
complete -c korv-as -s f -l format -x -a 'com bin hex' -d 'Format of the image'
complete -c korv-as -s D -x -d 'Define a name before the first line'
complete -c korv-as -s I -x -a '(__fish_complete_directories)' -d 'Also search DIR for included files'
complete -c korv-as -s M -l depfile -r -F -d 'Write the dependencies for make and ninja'
complete -c korv-as -s l -l listing -r -F -d 'Write a listing'
complete -c korv-as -l symbols -r -F -d 'Write names and values'
complete -c korv-as -l symbol-format -x -a 'equ sym noi cspect' -d 'Format of the symbol file'
complete -c korv-as -l debug -r -F -d 'Write source-level debugging data'
complete -c korv-as -l summary -f -a 'text json' -d 'Print the sizes and T-states of the program'
complete -c korv-as -s W -x -a "$words" -d 'Turn a warning on or off, or make it an error'
complete -c korv-as -s w -d 'Print no warnings'
complete -c korv-as -l line-length -x -d 'Maximum length of a line in bytes'
complete -c korv-as -l no-reserved -d 'Allow reserved words as labels'
complete -c korv-as -l max-errors -x -d 'Print at most N errors'
complete -c korv-as -l max-image -x -d 'Maximum size of the image in bytes'
complete -c korv-as -l color -x -a 'auto always never' -d 'When to colour messages'
complete -c korv-as -s h -l help -d 'Print the options'
complete -c korv-as -s V -l version -d 'Print the version'
