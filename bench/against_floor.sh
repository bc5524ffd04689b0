#!/usr/bin/env bash
# Measures whole runs against the least that any program must do for the same files (floor.cpp), on
# a large mesh with few output times and on a small one with many. All files are in the page cache;
# runs and floor take turns. As the floor makes no syncs, the run is measured without its own; the
# line below a row is a run with them. Takes up to 40 GB in the folder
# for temporary files (TMPDIR) and ends with status 1 where a limit is missed.
#
#   bench/against_floor.sh BUILD_FOLDER [ROW]...
#
# The build folder needs -DMESHRAKE_BENCH=ON. The rows are large-binary, small-binary-600,
# small-binary-100, small-text-600, small-text-100 and large-text; all but small-text-100 unless
# named.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"

build=$(realpath "$1")
shift
if [ $# -gt 0 ]; then rows=("$@"); else
    rows=(large-binary small-binary-600 small-binary-100 small-text-600 large-text)
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
copy=$folder/copy
problem_options=

# make_problem OPTION...: keeps a problem of the same options.
make_problem() {
    [ "$problem_options" != "$*" ] || return 0
    problem_options=$*
    rm -rf "$problem"
    "$build/examples/make_problem" --prefix large "$@" "$problem" >/dev/null
    (cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
    mv "$problem/large.plot.control" "$folder/template"
    rm -f "$problem/largeo.meshrake.eco"
    list_inputs "$problem" >"$folder/inputs"
    find "$problem" -type f -exec cat {} + >/dev/null
    sync
}

# run_meshrake MODE [NAME=VALUE]...: a run of which no file is left from the last.
run_meshrake() {
    rm -rf "$copy" "$problem"/largeo.*.szplt* "$problem"/largeo.*.dat "$problem"/largeo.meshrake.eco
    sync # pages that wait to be written slow down the writing of others
    if [ "$1" = binary ]; then
        sed '1i tecplot binary mode' "$folder/template" >"$problem/large.plot.control"
    else
        cp "$folder/template" "$problem/large.plot.control"
    fi
    measured "$problem" env "${@:2}" "$build/meshrake/meshrake"
}

# measure TEXT MODE REPETITIONS MUST AIM MAKE_PROBLEM_OPTION...
measure() {
    local text=$1 mode=$2 repetitions=$3 must=$4 aim=$5 numbers run floor i
    shift 5
    make_problem "$@"
    rm -f "$folder"/*.seconds
    for ((i = 0; i <= repetitions; ++i)); do
        numbers=$(run_meshrake "$mode")
        [ "$i" -eq 0 ] || echo "${numbers%% *}" >>"$folder/synced.seconds"
        numbers=$(run_meshrake "$mode" LD_PRELOAD="$build/bench/libsync_times.so")
        [ "$i" -eq 0 ] || echo "${numbers%% *}" >>"$folder/run.seconds"
        numbers=$(run_floor)
        [ "$i" -eq 0 ] || echo "${numbers%% *}" >>"$folder/floor.seconds"
    done
    run=$(minimum "$folder/run.seconds")
    floor=$(minimum "$folder/floor.seconds")
    table_row "$text" "$run s" "$floor s" "$(ratio "$run" "$floor")" "$must" "$aim"
    run=$(minimum "$folder/synced.seconds")
    printf '%-42s %12s %12s %8s\n' "  with its syncs" "$run s" "" "$(ratio "$run" "$floor")"
}

large=(--nx 160 --ny 160 --layers 39 --times 3)
small=(--nx 24 --ny 24 --layers 15 --variables all --species 6)

table_head
for row in "${rows[@]}"; do
    case $row in
    large-binary)
        measure "binary, 1 million nodes, 3 times" binary 15 1.8 1.5 "${large[@]}" ;;
    small-binary-600)
        measure "binary, small files, 600 times" binary 3 1.6 1.3 "${small[@]}" --times 600 ;;
    small-binary-100)
        measure "binary, small files, 100 times" binary 11 1.3 1.15 "${small[@]}" --times 100 ;;
    small-text-600)
        measure "text, small files, 600 times" text 2 1.7 1.5 "${small[@]}" --times 600 ;;
    small-text-100)
        measure "text, small files, 100 times" text 5 1.7 1.5 "${small[@]}" --times 100 ;;
    large-text)
        measure "text, 1 million nodes, 3 times" text 7 3.5 3.0 "${large[@]}" ;;
    *)
        echo "against_floor.sh: no row is called $row" >&2
        exit 2 ;;
    esac
done
exit "$missed"
