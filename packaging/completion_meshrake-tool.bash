# Completion of meshrake-tool for bash.

# _meshrake_tool_files WORD ENDING: completes a folder, or a file with this ending.
_meshrake_tool_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -d -- "$1"
        compgen -f -X "!*$2" -- "$1"
    )
}

# _meshrake_tool_problems WORD: completes a folder, or the prefix of a problem in it.
_meshrake_tool_problems() {
    local mark
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -d -- "$1"
        compgen -f -X '!*.skiv' -- "$1" | while IFS= read -r mark; do echo "${mark%.skiv}"; done
    )
}

_meshrake_tool() {
    local -r word=$2 previous=$3
    local -r help='-h --help --version'
    local -A options=(
        [check]='--json'
        [print]='--headers'
        [series]='--variable --node --element --point'
        [xdmf]='-o --output'
    )
    local -r command=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" = 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "${!options[*]} $help" -- "$word")
    elif [ -z "${options[$command]-}" ]; then
        return
    elif [[ $previous == -o || $previous == --output ]]; then
        _meshrake_tool_files "$word" .xdmf
    elif [[ $previous == --variable || $previous == --node || $previous == --element ||
        $previous == --point ]]; then
        return # a name or number, which is not completed
    elif [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${options[$command]} $help" -- "$word")
    elif [ "$command" = check ]; then
        _meshrake_tool_problems "$word"
    else
        _meshrake_tool_files "$word" .szplt
    fi
}
complete -F _meshrake_tool meshrake-tool
