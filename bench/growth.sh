#!/usr/bin/env bash
# Measures how time and memory grow with the nodes and the output times, binary, and with the
# observations of a comparison. Prints the tables of docs/large_problems.md. All input is in the page
# cache; times are without syncs, each the minimum of some runs. Beside each time is that of floor.cpp
# for the same files, which shows what the disk takes. Uses 50 GB in the folder for temporary files
# (TMPDIR).
#
#   bench/growth.sh BUILD_FOLDER [LARGEST]
#
# The build folder needs -DMESHRAKE_BENCH=ON. LARGEST is the number of result values in millions of
# nodes times output times that the largest problem may have; 1000 by default. With 100 the script
# uses 8 GB.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"
build=$(realpath "$1")
largest=${2:-1000}
meshes=("0.1 50 50 37" "1 160 155 39" "10 500 500 39")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
copy=$folder/copy

# make_problem TIMES OPTION...: a problem whose large result files are the same at all output times.
# The time stamps are read from the heads of the surface.
make_problem() {
    local times=$1 file i
    rm -rf "$problem" "$copy"
    "$build/examples/make_problem" --prefix large --times 1 "${@:2}" "$problem" >/dev/null
    if [ "$times" -gt 1 ]; then
        "$build/examples/make_problem" --prefix large --times "$times" "${@:2}" --domains olf \
            --variables head "$folder/times" >/dev/null
        for ((i = 2; i <= times; ++i)); do
            for file in "$problem"/largeo.*.0001; do
                ln "$file" "${file%0001}$(printf %04d "$i")"
            done
        done
        mv -f "$folder/times"/largeo.head_olf.* "$problem"
        rm -r "$folder/times"
    fi
    list_inputs "$problem" >"$folder/inputs"
    find "$problem" -type f -exec cat {} + >/dev/null
}

# run_times CONTROL: the minimum time (s) of `runs` runs with that control file and their peak memory
# (KiB). The floor goes to the file `floors`.
run_times() {
    local elapsed memory i
    rm -f "$folder/seconds" "$folder/memory" "$folder/floors"
    printf '%b' "$1" >"$problem/large.plot.control"
    for ((i = 0; i < runs; ++i)); do
        rm -rf "$copy" "$problem"/largeo.*.szplt* "$problem"/largeo.meshrake.eco
        rm -f "$problem"/largeo.ObsShape.*
        sync
        read -r elapsed _ _ memory <<<"$(measured "$problem" env \
            LD_PRELOAD="$build/bench/libsync_times.so" "$build/meshrake/meshrake")"
        echo "$elapsed" >>"$folder/seconds"
        echo "$memory" >>"$folder/memory"
        run_floor | cut -d ' ' -f 1 >>"$folder/floors"
    done
    echo "$(minimum "$folder/seconds") $(sort -n "$folder/memory" | tail -n 1)"
}

domains='end\nwrite pm domain file\nend\nwrite olf domain file\nend\n'

echo "| Nodes of pm | Output times | Time | Floor | First, or each further time of a million nodes |" \
    "Memory | Over the arrays kept |"
echo "|---|---|---|---|---|---|---|"
for mesh in "${meshes[@]}"; do
    read -r millions nx ny layers <<<"$mesh"
    first=
    for times in 1 10 100; do
        awk -v m="$millions" -v t="$times" -v l="$largest" 'BEGIN { exit m * t > l }' || continue
        runs=$(awk -v m="$millions" -v t="$times" 'BEGIN { print m * t < 1000 ? 4 : 1 }')
        make_problem "$times" --nx "$nx" --ny "$ny" --layers "$layers"
        read -r elapsed memory <<<"$(run_times "tecplot binary mode\n$domains")"
        [ "$times" -gt 1 ] || first=$elapsed
        nodes=$(nodes_of "$problem/largeo.coordinates_pm")
        awk -v n="$nodes" -v times="$times" -v s="$elapsed" -v f="$(minimum "$folder/floors")" \
            -v first="$first" -v m="$memory" -v kept="$(kept_bytes "$problem")" '
            BEGIN {
                each = times == 1 ? s : (s - first) / (times - 1)
                printf "| %d | %d | %.2f s | %.2f s | %.3f s | %d MiB | %d MiB |\n", n, times, s, f,
                    each / n * 1e6, m / 1024, m / 1024 - kept / 1048576
            }'
    done
done

echo
echo "| Observations | Time | Time over that without | Memory |"
echo "|---|---|---|---|"
compare='write pm domain file\ncompare heads 3d domain\n-1e20 1e20\n-1e20 1e20\n-1e20 1e20\nend\n'
runs=4
for observations in 100 1000 10000; do
    make_problem 1 --nx 160 --ny 155 --layers 39 --observations "$observations"
    read -r without _ <<<"$(run_times "tecplot binary mode\nend\nwrite pm domain file\nend\n")"
    read -r elapsed memory <<<"$(run_times "tecplot binary mode\nend\n$compare")"
    awk -v n="$observations" -v s="$elapsed" -v w="$without" -v m="$memory" 'BEGIN {
        printf "| %d | %.3f s | %.3f s | %d MiB |\n", n, s, s - w, m / 1024 }'
done
