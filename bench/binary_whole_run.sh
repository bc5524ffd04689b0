#!/usr/bin/env bash
# Compares a whole run in binary mode with the least that any program must do for the same files
# (floor.cpp), for a million nodes and 3 or 24 output times. The floor makes no syncs, so the run is
# measured without its syncs. Another run gives their number and time. The same is done with append,
# whose CPU time is compared with that of the run without it. All files are in the page cache, and
# runs and floor alternate.
#
#   bench/binary_whole_run.sh BUILD_FOLDER [MAKE_PROBLEM_OPTION...]
#
# Uses 4 GB in the folder for temporary files and ends with status 1 if a limit is missed. The build
# folder needs -DMESHRAKE_BENCH=ON. The options select another problem instead.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"
missed=0

build=$(realpath "$1")
options=("${@:2}")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
copy=$folder/copy

# run_meshrake KIND [NAME=VALUE]: a run with the control file of KIND (plain or append) and with
# sync_times.cpp. Prints the line of run_measured.
run_meshrake() {
    # Replacing existing files would add the time in which their pages are freed.
    rm -rf "$copy" "$problem"/largeo.*.szplt* "$problem/largeo.tec_append"
    sync # pages that are not yet on the disk slow down further writes
    cp "$folder/$1.control" "$problem/large.plot.control"
    measured "$problem" env LD_PRELOAD="$build/bench/libsync_times.so" "${@:2}" \
        "$build/meshrake/meshrake"
}

# run_with_syncs KIND: adds the time of the syncs to KIND.sync.
run_with_syncs() {
    local elapsed calls
    run_meshrake "$1" MESHRAKE_SYNC_TIMES="$folder/syncs" >/dev/null
    read -r calls elapsed <"$folder/syncs"
    if [ "$calls" -eq 0 ]; then
        echo "binary_whole_run.sh: the run made no sync that sync_times.cpp replaces" >&2
        return 1
    fi
    echo "$calls" >"$folder/$1.calls"
    echo "$elapsed" >>"$folder/$1.sync"
}

# run_without_syncs KIND: adds the elapsed and the CPU time to KIND.run and KIND.cpu.
run_without_syncs() {
    local numbers elapsed user kernel
    numbers=$(run_meshrake "$1")
    read -r elapsed user kernel _ <<<"$numbers"
    echo "$elapsed" >>"$folder/$1.run"
    awk -v a="$user" -v b="$kernel" 'BEGIN { printf "%.4f\n", a + b }' >>"$folder/$1.cpu"
}

# table_rows MEASURE KIND: the row of the run against the floor, and a line about its syncs.
table_rows() {
    local run floor
    run=$(minimum "$folder/$2.run")
    floor=$(minimum "$folder/floor.run")
    table_row "$1" "$run s" "$floor s" "$(ratio "$run" "$floor")" 1.8 1.5
    echo "  without its syncs: $(<"$folder/$2.calls") calls, $(median "$folder/$2.sync") s"
}

# measure MEASURE MAKE_PROBLEM_OPTION...: the rows of one problem.
measure() {
    local numbers append plain kind repetitions=9 i
    rm -rf "$problem"
    "$build/examples/make_problem" --prefix large "${@:2}" "$problem" >/dev/null
    (cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
    sed '1i tecplot binary mode' "$problem/large.plot.control" >"$folder/plain.control"
    sed '1i tecplot binary append' "$folder/plain.control" >"$folder/append.control"
    list_inputs "$problem" >"$folder/inputs"
    cat "$problem"/* >/dev/null
    sync
    rm -f "$folder"/*.{run,cpu,sync}
    for kind in append plain; do run_without_syncs "$kind"; done # warms up the caches
    rm "$folder"/*.{run,cpu}
    for ((i = 0; i < repetitions; ++i)); do
        for kind in append plain; do run_with_syncs "$kind"; done
    done
    # In turn, so that all find the memory of the page cache in the same state.
    for ((i = 0; i < 3 * repetitions; ++i)); do
        for kind in append plain; do run_without_syncs "$kind"; done
        numbers=$(run_floor)
        echo "${numbers%% *}" >>"$folder/floor.run"
    done
    table_rows "$1, against the floor" plain
    table_rows "$1, append, against floor" append
    # Other load can only increase a CPU time, so the minimum is the best estimate.
    append=$(minimum "$folder/append.cpu")
    plain=$(minimum "$folder/plain.cpu")
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
