#!/usr/bin/env bash
# Builds two commits and runs both in turn on the same problem, in text and in binary mode. Prints
# the minimum and the median time of each and the ratios of the second to the first.
#
#   bench/compare.sh REV_A REV_B [RUNS [MAKE_PROBLEM_OPTION...]]
#
# RUNS is 9 by default, the problem one of a million nodes with three output times. The builds are
# kept in build-compare. Takes 2 GB in the folder for temporary files. Runs are measured without
# their syncs.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"
if [ $# -lt 2 ]; then
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
fi
revisions=("$(git -C "$root" rev-parse --short "$1^{commit}")"
    "$(git -C "$root" rev-parse --short "$2^{commit}")")
runs=${3:-9}
options=("${@:4}")
[ ${#options[@]} -gt 0 ] || options=(--nx 160 --ny 160 --layers 39 --times 3)

"$root/tools/install_packages.sh" bench
mkdir -p "$root/build-compare"
for revision in "${revisions[@]}"; do
    source=$root/build-compare/$revision
    [ -d "$source" ] || git -C "$root" archive --prefix="$revision/" "$revision" |
        tar -x -C "$root/build-compare"
    "$source/tools/build.sh" bench
done
build=$root/build-compare/${revisions[0]}/build-bench

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
problem=$folder/problem
"$build/examples/make_problem" --prefix large "${options[@]}" "$problem" >/dev/null
(cd "$problem" && "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1)
mv "$problem/large.plot.control" "$folder/text.control"
sed '1i tecplot binary mode' "$folder/text.control" >"$folder/binary.control"
find "$problem" -type f -exec cat {} + >/dev/null

# One run, whose time is added to the file of its mode and revision.
run() {
    local numbers
    rm -f "$problem"/largeo.*.szplt* "$problem"/largeo.*.dat "$problem"/largeo.meshrake.eco
    sync
    cp "$folder/$1.control" "$problem/large.plot.control"
    numbers=$(measured "$problem" env LD_PRELOAD="$build/bench/libsync_times.so" \
        "$root/build-compare/$2/build-bench/meshrake/meshrake")
    [ "$3" -eq 0 ] || echo "${numbers%% *}" >>"$folder/$1.$2"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", b / a }'; }

printf '%-8s %-8s %10s %10s %8s\n' mode measure "${revisions[@]}" ratio
for mode in binary text; do
    for ((i = 0; i <= runs; ++i)); do # the first turn warms up
        for revision in "${revisions[@]}"; do run "$mode" "$revision" "$i"; done
    done
    for measure in minimum median; do
        a=$($measure "$folder/$mode.${revisions[0]}")
        b=$($measure "$folder/$mode.${revisions[1]}")
        printf '%-8s %-8s %10s %10s %8s\n' "$mode" "$measure" "$a" "$b" "$(ratio "$a" "$b")"
    done
done
