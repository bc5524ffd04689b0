#!/usr/bin/env bash
# Checks the completion for bash and the manual page of meshrake-tool against the program's help, the
# instructions in the manual page of meshrake against the page of instructions, and the completion of
# files.
#
#   completion_test.sh SOURCE_FOLDER MESHRAKE_TOOL
set -euo pipefail

source=$1
tool=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

for name in meshrake meshrake-tool; do
    # shellcheck source=/dev/null
    source "$source/packaging/completion_$name.bash"
done

# completed FUNCTION WORD...: prints the sorted candidates for the last word.
completed() {
    local -r complete_word=$1
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    "$complete_word" "$1" "${COMP_WORDS[-1]}" "${COMP_WORDS[-2]}"
    printf '%s\n' "${COMPREPLY[@]}" | sort
}

# expect WHAT EXPECTED ACTUAL: the two lists are equal and not empty.
expect() {
    if [ -z "$2" ] || [ "$2" != "$3" ]; then
        printf '%s\nexpected:\n%s\nfound:\n%s\n' "$1" "$2" "$3" >&2
        failures=$((failures + 1))
    fi
}

lines() { printf '%s\n' "$@" | sort; }

# options_of [SUBCOMMAND]: the options in the help.
options_of() { "$tool" "$@" --help | grep -oE '^ +-[-a-z,]+' | tr -d ' ' | tr ',' '\n' | sort; }

# The manual page writes options and subcommands as macros.
page=$(sed -E 's/\\&|Fl Fl /--/g; s/Fl /-/g' "$source/docs/man/meshrake-tool.1")

subcommands=$("$tool" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
expect "subcommands" "$(lines "$subcommands" "$(options_of)")" \
    "$(completed _meshrake_tool x '')"
for subcommand in $subcommands; do
    expect "options of $subcommand" "$(options_of "$subcommand")" \
        "$(completed _meshrake_tool x "$subcommand" -)"
    for name in "Cm $subcommand" $(options_of "$subcommand"); do
        grep -qE -e "(^|[ .])$name( |\$)" <<<"$page" || expect "manual page" "$name" ""
    done
done

instructions=$(sed -n '/^\.Ss Control file/,/^\.Sh/s/^\.It Cm //p' "$source/docs/man/meshrake.1" | grep .)
while IFS= read -r instruction; do
    grep -qF "| \`$instruction\` |" "$source/docs/instructions.md" ||
        expect "manual page of meshrake" "$instruction" ""
done <<<"$instructions"
expect "option of meshrake" --make_plot_control "$(completed _meshrake x --)"

cd "$folder"
mkdir sub
touch a.szplt 'b c.szplt' a.dat a.xdmf a.skiv
expect "data sets" "$(lines a.szplt "b c.szplt" sub)" "$(completed _meshrake_tool x print "")"
expect "several data sets" "$(lines a.szplt)" "$(completed _meshrake_tool x xdmf sub/c.szplt a)"
expect "index" "$(lines a.xdmf sub)" "$(completed _meshrake_tool x xdmf -o '')"
expect "problems" "$(lines a sub)" "$(completed _meshrake_tool x check '')"
expect "no file for a number" "$(lines '' end)" \
    "$(lines "$(completed _meshrake_tool x series --node '')" end)"
exit $((failures > 0))
