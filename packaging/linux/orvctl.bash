# Completion for orvctl(1) in bash.

_orvctl()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words
    COMPREPLY=()
    if [[ $previous == --simulate ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    if ((COMP_CWORD == 1)); then
        words="thermal bluetooth watch top explain record replay --help --version"
    elif [[ $previous == --format ]]; then
        words="table jsonl csv waybar i3bar"
    elif [[ ${COMP_WORDS[1]} == watch ]]; then
        words="--format --only --simulate --help"
    elif [[ ${COMP_WORDS[1]} == top ]]; then
        words="--simulate --at --ascii --help"
    elif [[ ${COMP_WORDS[1]} == explain ]]; then
        words="--missing --shown --json --simulate --at --help temperatures fans hid bluetooth watch"
    elif [[ ${COMP_WORDS[1]} == record ]]; then
        words="-o --for --every --force --simulate --help"
    elif [[ ${COMP_WORDS[1]} == replay ]]; then
        compopt -o default
        words="--from --to --thermal --bluetooth --help"
    elif [[ ${COMP_WORDS[1]} == thermal ]]; then
        words="--flat --json --simulate --at --help"
    else
        words="--json --simulate --at --help"
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _orvctl orvctl
