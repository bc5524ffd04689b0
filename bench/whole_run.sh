#!/usr/bin/env bash
# Compares a whole run on a problem of about a million nodes and three output times with cp of the
# files that it wrote. All files are in the page cache, and runs and copies alternate. Uses 2 GB in
# the folder for temporary files and ends with status 1 if a limit is missed.
#
#   bench/whole_run.sh [BUILD_FOLDER]
#
# The build folder needs -DMESHRAKE_BENCH=ON; the preset "bench" is built by default.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"

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
copy=$folder/copy

"$build/examples/make_problem" --prefix large --nx 160 --ny 160 --layers 39 --times 3 "$problem"
cat "$problem"/* >/dev/null
sync

# Replacing existing files would add the time in which their pages are freed.
outputs() { ls "$problem"/largeo.*.dat "$problem/largeo.meshrake.eco"; }
remove_outputs() { rm -rf "$copy" "$problem"/largeo.*.dat "$problem"/*.eco "$problem"/*.control; }

repetitions=5
runs=()
copies=()
for ((i = 0; i <= repetitions; ++i)); do
    remove_outputs
    numbers=$(measured "$problem" "$build/meshrake/meshrake")
    read -r run _ <<<"$numbers"
    mkdir "$copy"
    # shellcheck disable=SC2046 # a list of file names without blanks
    numbers=$(measured "$folder" cp $(outputs) "$copy")
    read -r copied _ <<<"$numbers"
    [ "$i" -gt 0 ] || continue # the first round warms up the caches
    runs+=("$run")
    copies+=("$copied")
done

run=$(median <(printf '%s\n' "${runs[@]}"))
copied=$(median <(printf '%s\n' "${copies[@]}"))
mib() { awk -v bytes="$1" 'BEGIN { printf "%.1f", bytes / 1048576 }'; }

# shellcheck disable=SC2046
written=$(wc -c $(outputs) | tail -n 1)
echo "Written: $(mib "${written% *}") MiB. Runs: ${runs[*]} s. Copies: ${copies[*]} s."
table_head
table_row "whole run, against cp" "$run s" "$copied s" "$(ratio "$run" "$copied")" 2.5 1.3
exit "$missed"
