#!/usr/bin/env bash
# Runs all measurements that have a limit and prints their ratios and limits. Takes some minutes and
# ends with status 1 if a limit is missed.
#
#   bench/run.sh
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"

build=$root/build-bench
"$root/tools/install_packages.sh" bench
"$root/tools/build.sh" bench

results=$(mktemp)
trap 'rm -f "$results"' EXIT

# Benchmarks that are compared run alternately, so that other load affects both.
for program in number_formats_bench result_files_bench plot_files_bench locate_points_bench; do
    "$build/bench/$program" --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
        --benchmark_format=csv 2>/dev/null >>"$results"
done

# Median time of a benchmark in milliseconds.
time_of() {
    local time
    time=$(tr -d '"' <"$results" | awk -F, -v name="$1" '
        { sub("/(real|manual)_time_", "_", $1) }
        $1 == name "_median" { printf "%.3f", $3 / ($5 == "ns" ? 1000000 : 1); exit }')
    if [ -z "$time" ]; then
        echo "run.sh: no benchmark is called $1" >&2
        exit 1
    fi
    echo "$time"
}

# compare MEASURE OURS AGAINST MUST AIM: the row of two benchmarks. The ratio is ours / theirs, or
# theirs / ours if MUST begins with ">" ("times faster").
compare() {
    local ours theirs quotient
    ours=$(time_of "$2")
    theirs=$(time_of "$3")
    if [ "${4:0:1}" = ">" ]; then
        quotient=$(ratio "$theirs" "$ours")
    else
        quotient=$(ratio "$ours" "$theirs")
    fi
    table_row "$1" "$ours ms" "$theirs ms" "$quotient" "$4" "$5"
}

table_head
for values in heads saturations bitPatterns; do
    compare "wide real, $values: times faster" realRows/$values toChars/$values ">3" 6
done
compare "real array, heads (64 bits), in W" formatted/heads plain/heads 5 3
compare "real array, velocities (32 bits), in W" formatted/velocities plain/velocities 5 3
compare "connectivity, in W" formatted/connectivity plain/connectivity 3 2
compare "read of a one-component file" readResultFile plainRead 1.3 1.1
compare "points in elements: times faster" elements plainElements ">1000" 2000
compare "nearest nodes: times faster" nodes plainNodes ">1000" 1200
compare "nearest columns: times faster" columns plainColumns ">100" 150
for program in kdtree hash_table grid; do
    echo
    "$build/bench/${program}_bench" || missed=1
done
echo
"$root/bench/whole_run.sh" "$build" || missed=1
echo
"$root/bench/memory.sh" "$build" || missed=1
echo
"$root/bench/binary_whole_run.sh" "$build" || missed=1
echo
"$root/bench/against_floor.sh" "$build" || missed=1
exit "$missed"
