#!/usr/bin/env bash
# Measures a whole run in binary mode on a problem of about a million nodes with three output times
# against cp of the files that it wrote. All files are in the page cache; runs and copies take
# turns. Takes 2 GB in the folder for temporary files and ends with status 1 where the limit is
# missed.
#
#   bench/binary_whole_run.sh BUILD_FOLDER [MAKE_PROBLEM_OPTION...]
#
# The build folder needs -DMESHRAKE_BENCH=ON. The options make another problem.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
missed=0

build=$(realpath "$1")
options=("${@:2}")
[ ${#options[@]} -gt 0 ] || options=(--nx 160 --ny 160 --layers 39 --times 3)

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
copy=$folder/copy

"$build/examples/make_problem" --prefix large "${options[@]}" "$problem"
(cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
sed -i '1i tecplot binary mode' "$problem/large.plot.control"
cat "$problem"/* >/dev/null
sync

measured() {
    "$build/bench/run_measured" "$@" 2>"$folder/errors" || {
        cat "$folder/errors" >&2
        return 1
    }
}

repetitions=5
runs=()
copies=()
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

median() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }
run=$(median "${runs[@]}")
copied=$(median "${copies[@]}")
written=$(cat "$problem"/largeo.*.szplt | wc -c)
awk -v bytes="$written" -v runs="${runs[*]}" -v copies="${copies[*]}" 'BEGIN {
    printf "Written: %.1f MiB. Runs: %s s. Copies: %s s.\n", bytes / 1048576, runs, copies }'
table_head
table_row "whole run in binary mode, against cp" "$run s" "$copied s" "$(ratio "$run" "$copied")" 1.5 1.2
exit "$missed"
