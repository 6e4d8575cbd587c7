# bash completion for korv-as

_korv_as()
{
    local options="-o -f --format -D -I -M --depfile -l --listing --symbols --symbol-format --debug
        --summary -W -w --line-length --no-reserved --max-errors --max-image --color -h --help -V --version"
    local warnings="late-location truncated continued-comment org-gap number-label register-label register-value escape
        nested-if condition early-end negative-size keyword-label hidden-instruction null-byte carriage-return end-mark
        overlap range open-string empty-operand skipped-line label-without-colon org unused-label symbol-range"
    local current=$2 previous=$3 words= kind= warning

    if [[ $previous == "=" ]]; then # which bash treats as a separate word
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $previous in
        -f | --format) words="com bin hex" ;;
        --symbol-format) words="equ sym noi cspect" ;;
        --summary) # takes an argument only after "="
            case ${COMP_WORDS[COMP_CWORD - 1]}${COMP_WORDS[COMP_CWORD]} in
                *=*) words="text json" ;;
                *) kind=-f ;;
            esac
            ;;
        --color) words="auto always never" ;;
        -W)
            words="error no-error $warnings"
            for warning in $warnings; do
                words+=" no-$warning"
            done
            ;;
        error | no-error) words=$warnings ;;
        -D | --line-length | --max-errors | --max-image) ;;
        -I) kind=-d ;;
        *)
            case $current in
                -*) words=$options ;;
                *) kind=-f ;;
            esac
            ;;
    esac
    if [[ $current == @* ]]; then
        mapfile -t COMPREPLY < <(compgen -P @ -f -- "${current#@}")
    elif [[ -n $kind ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen "$kind" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

complete -F _korv_as korv-as
