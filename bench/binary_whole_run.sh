#!/usr/bin/env bash
# Measures a whole run in binary mode on problems of about a million nodes, with few output times and
# with more, against cp of the files that it wrote. All files are in the page cache; runs and copies
# take turns. Takes 4 GB in the folder for temporary files and ends with status 1 where the limit is
# missed.
#
#   bench/binary_whole_run.sh BUILD_FOLDER [MAKE_PROBLEM_OPTION...]
#
# The build folder needs -DMESHRAKE_BENCH=ON. The options make one other problem.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
missed=0

build=$(realpath "$1")
options=("${@:2}")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
copy=$folder/copy

measured() {
    "$build/bench/run_measured" "$@" 2>"$folder/errors" || {
        cat "$folder/errors" >&2
        return 1
    }
}

median() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }

# measure MEASURE MAKE_PROBLEM_OPTION...: one row of the table.
measure() {
    local numbers run copied runs=() copies=() repetitions=5 i
    rm -rf "$problem" "$copy"
    "$build/examples/make_problem" --prefix large "${@:2}" "$problem" >/dev/null
    (cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
    sed -i '1i tecplot binary mode' "$problem/large.plot.control"
    cat "$problem"/* >/dev/null
    sync
    for ((i = 0; i <= repetitions; ++i)); do
        # A run that meets its own files would first have to take their pages apart.
        rm -rf "$copy" "$problem"/largeo.*.szplt
        numbers=$(measured "$problem" "$build/meshrake/meshrake")
        read -r run _ <<<"$numbers"
        mkdir "$copy"
        numbers=$(measured "$folder" cp "$problem"/largeo.*.szplt "$copy")
        read -r copied _ <<<"$numbers"
        [ "$i" -gt 0 ] || continue # the first turn warms up
        runs+=("$run")
        copies+=("$copied")
    done
    run=$(median "${runs[@]}")
    copied=$(median "${copies[@]}")
    table_row "$1" "$run s" "$copied s" "$(ratio "$run" "$copied")" 1.5 1.2
}

table_head
if [ ${#options[@]} -gt 0 ]; then
    measure "whole binary run, against cp" "${options[@]}"
else
    for times in 3 24; do
        measure "whole binary run, $times times, against cp" --nx 160 --ny 160 --layers 39 \
            --times "$times"
    done
fi
exit "$missed"
