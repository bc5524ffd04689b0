#!/usr/bin/env bash
# Measures a whole run in binary mode on problems of about a million nodes, with few output times and
# with more, against cp of the files that it wrote, which syncs nothing: the times of the run are
# without its syncs, which have a line of their own. Then the same with append, whose CPU time, again
# without the syncs, is held against that of the run without it. All files are in the page cache;
# runs and copies take turns. Takes 4 GB in the folder for temporary files and ends with status 1
# where a limit is missed.
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

# Numbers are kept in files, one to a line.
median() { sort -n "$1" | awk '{ line[NR] = $0 } END { print line[int((NR + 1) / 2)] }'; }
least() { sort -n "$1" | head -n 1; }

# run_without_syncs KIND: a run with the control file of plain or append. Adds its time by the clock
# and its CPU time, both without the syncs, and their time to KIND.run, KIND.cpu and KIND.sync.
run_without_syncs() {
    local numbers elapsed user kernel calls sync_elapsed sync_cpu
    # A run that meets its own files would first have to take their pages apart.
    rm -rf "$copy" "$problem"/largeo.*.szplt* "$problem/largeo.tec_append"
    cp "$folder/$1.control" "$problem/large.plot.control"
    numbers=$(measured "$problem" env LD_PRELOAD="$build/bench/libsync_times.so" \
        MESHRAKE_SYNC_TIMES="$folder/syncs" "$build/meshrake/meshrake")
    read -r elapsed user kernel _ <<<"$numbers"
    read -r calls sync_elapsed sync_cpu <"$folder/syncs"
    if [ "$calls" -eq 0 ]; then
        echo "binary_whole_run.sh: the run made no sync that sync_times.cpp replaces" >&2
        return 1
    fi
    awk -v a="$elapsed" -v b="$sync_elapsed" 'BEGIN { printf "%.4f\n", a - b }' >>"$folder/$1.run"
    awk -v a="$user" -v b="$kernel" -v c="$sync_cpu" 'BEGIN { printf "%.4f\n", a + b - c }' >>"$folder/$1.cpu"
    echo "$sync_elapsed" >>"$folder/$1.sync"
    echo "$calls" >"$folder/$1.calls"
}

# table_rows MEASURE KIND: against cp, and the syncs.
table_rows() {
    local run copied
    run=$(median "$folder/$2.run")
    copied=$(median "$folder/copy.run")
    table_row "$1" "$run s" "$copied s" "$(ratio "$run" "$copied")" 1.5 1.2
    echo "  without its syncs: $(<"$folder/$2.calls") calls, $(median "$folder/$2.sync") s"
}

# measure MEASURE MAKE_PROBLEM_OPTION...: the rows of one problem.
measure() {
    local numbers append plain repetitions=7 i
    rm -rf "$problem"
    "$build/examples/make_problem" --prefix large "${@:2}" "$problem" >/dev/null
    (cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
    sed '1i tecplot binary mode' "$problem/large.plot.control" >"$folder/plain.control"
    sed '1i tecplot binary append' "$folder/plain.control" >"$folder/append.control"
    cat "$problem"/* >/dev/null
    sync
    for ((i = 0; i <= repetitions; ++i)); do
        # The first turn warms up.
        [ "$i" -ne 1 ] || rm "$folder"/*.{run,cpu,sync}
        run_without_syncs append
        run_without_syncs plain
        mkdir "$copy"
        numbers=$(measured "$folder" cp "$problem"/largeo.*.szplt "$copy")
        echo "${numbers%% *}" >>"$folder/copy.run"
    done
    table_rows "$1, against cp" plain
    table_rows "$1, append, against cp" append
    # What else runs only adds to a CPU time.
    append=$(least "$folder/append.cpu")
    plain=$(least "$folder/plain.cpu")
    table_row "  CPU time, append against without" "$append s" "$plain s" \
        "$(awk -v a="$append" -v b="$plain" 'BEGIN { printf "%.3f", a / b }')" 1.02 1.01
}

table_head
if [ ${#options[@]} -gt 0 ]; then
    measure "whole binary run" "${options[@]}"
else
    for times in 3 24; do
        measure "binary run, $times times" --nx 160 --ny 160 --layers 39 \
            --times "$times"
    done
fi
exit "$missed"
