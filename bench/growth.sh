#!/usr/bin/env bash
# Measures how time and memory grow with the nodes and the output times, binary, and with the
# observations of a comparison. Prints the tables of docs/large_problems.md. All input is in the page
# cache; times are without syncs, each the minimum of some runs. Uses 12 GB in the folder for
# temporary files (TMPDIR).
#
#   bench/growth.sh BUILD_FOLDER [SMALLEST]
#
# The build folder needs -DMESHRAKE_BENCH=ON. SMALLEST omits the problem of 10 million nodes.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"
build=$(realpath "$1")
meshes=("50 50 37" "160 155 39" "500 500 39")
[ $# -eq 1 ] || meshes=("${meshes[@]:0:2}")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem

# run_times CONTROL: the minimum time (s) and the peak memory (MiB) of runs with that control file.
run_times() {
    local elapsed memory i
    rm -f "$folder/seconds" "$folder/memory"
    printf '%b' "$1" >"$problem/large.plot.control"
    for ((i = 0; i < 4; ++i)); do
        rm -f "$problem"/largeo.*.szplt* "$problem"/largeo.meshrake.eco "$problem"/largeo.ObsShape.*
        sync
        read -r elapsed _ _ memory <<<"$(measured "$problem" env \
            LD_PRELOAD="$build/bench/libsync_times.so" "$build/meshrake/meshrake")"
        echo "$elapsed" >>"$folder/seconds"
        echo "$((memory / 1024))" >>"$folder/memory"
    done
    echo "$(minimum "$folder/seconds") $(sort -n "$folder/memory" | tail -n 1)"
}

nodes() { od -An -t d4 -j 4 -N 4 "$problem/largeo.coordinates_pm" | tr -d ' '; }
domains='end\nwrite pm domain file\nend\nwrite olf domain file\nend\n'

echo "| Nodes of pm | Output times | Time | First, or each further time of a million nodes | Memory |"
echo "|---|---|---|---|---|"
for mesh in "${meshes[@]}"; do
    read -r nx ny layers <<<"$mesh"
    first=
    for times in 1 10 100; do
        # 100 output times of 10 million nodes take 70 GB.
        if [ "$nx" = 500 ] && [ "$times" = 100 ]; then continue; fi
        rm -rf "$problem"
        "$build/examples/make_problem" --prefix large --nx "$nx" --ny "$ny" --layers "$layers" \
            --times "$times" "$problem" >/dev/null
        find "$problem" -type f -exec cat {} + >/dev/null
        read -r elapsed memory <<<"$(run_times "tecplot binary mode\n$domains")"
        [ "$times" -gt 1 ] || first=$elapsed
        awk -v n="$(nodes)" -v times="$times" -v s="$elapsed" -v first="$first" -v m="$memory" '
            BEGIN {
                each = times == 1 ? s : (s - first) / (times - 1)
                printf "| %d | %d | %.2f s | %.3f s | %d MiB |\n", n, times, s, each / n * 1e6, m
            }'
    done
done

echo
echo "| Observations | Time | Time over that without | Memory |"
echo "|---|---|---|---|"
compare='write pm domain file\ncompare heads 3d domain\n-1e20 1e20\n-1e20 1e20\n-1e20 1e20\nend\n'
for observations in 100 1000 10000; do
    rm -rf "$problem"
    "$build/examples/make_problem" --prefix large --nx 160 --ny 155 --layers 39 --times 1 \
        --observations "$observations" "$problem" >/dev/null
    read -r without _ <<<"$(run_times "tecplot binary mode\nend\nwrite pm domain file\nend\n")"
    read -r elapsed memory <<<"$(run_times "tecplot binary mode\nend\n$compare")"
    awk -v n="$observations" -v s="$elapsed" -v w="$without" -v m="$memory" 'BEGIN {
        printf "| %d | %.3f s | %.3f s | %d MiB |\n", n, s, s - w, m }'
done
