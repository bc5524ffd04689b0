#!/usr/bin/env bash
# Measures time, memory and disk space of text and binary data sets for a problem of a million
# nodes: for the first output time and for each further one. Prints the table of
# docs/large_problems.md. All input is in the page cache. Uses 4 GB in the folder for temporary
# files.
#
#   bench/large_problem.sh [BUILD_FOLDER]
#
# The build folder needs -DMESHRAKE_BENCH=ON; the preset "bench" is built by default.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build=${1:-}
if [ -z "$build" ]; then
    build=$root/build-bench
    "$root/tools/install_packages.sh" bench
    "$root/tools/build.sh" bench
fi
build=$(realpath "$build")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
repetitions=7
few=1
many=5

# A million nodes in pm, with the default variables.
"$build/examples/make_problem" --prefix large --nx 160 --ny 155 --layers 39 --times "$many" "$problem"
(cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
last_times=$(awk -v few="$few" 'BEGIN { print 3600 * (few - 1) }')
cat "$problem"/* >/dev/null

# control LINES TIMES: a control file that requests these lines and this number of output times.
control() {
    local window=
    [ "$2" = "$many" ] || window=$(printf 'truncate time domain\n0 %s\nend' "$last_times")
    printf '%s\n' "$1" "$window" | cat - "$folder/blocks"
}
sed -n '/^end/,$p' "$problem/large.plot.control" >"$folder/blocks"

# measure LINES TIMES: the minimum time (s), the peak memory (MiB) and the size of the data sets
# (MiB).
measure() {
    local best=1e9 peak=0 elapsed memory i
    for ((i = 0; i <= repetitions; ++i)); do
        rm -f "$problem"/largeo.*.{dat,szplt,szhdr} "$problem"/largeo.tec_append
        sync
        control "$1" "$2" >"$problem/large.plot.control"
        read -r elapsed _ _ memory <<<"$("$build/bench/run_measured" "$problem" \
            "$build/meshrake/meshrake" 2>/dev/null)"
        [ "$i" -gt 0 ] || continue # the first round warms up the caches
        best=$(awk -v a="$best" -v b="$elapsed" 'BEGIN { print a < b ? a : b }')
        [ "$memory" -le "$peak" ] || peak=$memory
    done
    echo "$best $((peak / 1024))" \
        "$(cat "$problem"/largeo.{pm,olf}.{dat,szplt} 2>/dev/null | wc -c | awk '{ print $1 / 1048576 }')"
}

echo "| | First output time | Each further one | Disk, first | Disk, further | Memory |"
echo "|---|---|---|---|---|---|"
while IFS='|' read -r name lines; do
    read -r first _ first_size <<<"$(measure "$(printf '%b' "$lines")" "$few")"
    read -r all memory all_size <<<"$(measure "$(printf '%b' "$lines")" "$many")"
    awk -v name="$name" -v a="$first" -v b="$all" -v p="$first_size" -v q="$all_size" \
        -v n="$((many - few))" -v memory="$memory" 'BEGIN {
        printf "| %s | %.2f s | %.2f s | %.0f MiB | %.0f MiB | %d MiB |\n",
            name, a, (b - a) / n, p, (q - p) / n, memory }'
done <<EOM
text|tecplot mode
binary|tecplot binary mode
binary, \`tecplot binary append\`|tecplot binary mode\ntecplot binary append
EOM
