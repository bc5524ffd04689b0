#!/usr/bin/env bash
# Measures the peak memory of runs on problems of about one and two million nodes, and how much of it
# is over the arrays that the program must keep. Uses 4 GB in the folder for temporary files and ends
# with status 1 if a limit is missed.
#
#   bench/memory.sh BUILD_FOLDER
#
# The build folder needs -DMESHRAKE_BENCH=ON.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=bench/table.sh
source "$root/bench/table.sh"
# shellcheck source=bench/measuring.sh
source "$root/bench/measuring.sh"
build=$(realpath "$1")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mib() { awk -v bytes="$1" 'BEGIN { printf "%.1f", bytes / 1048576 }'; }

# bytes_over FORM LAYERS: sets `peak`, `kept` and `over` (bytes) and `nodes`.
bytes_over() {
    problem=$folder/$2
    if [ ! -d "$problem" ]; then
        "$build/examples/make_problem" --prefix large --nx 160 --ny 160 --layers "$2" --times 2 \
            "$problem" >/dev/null
    fi
    printf '%s\n' "tecplot $1 mode" end "write pm domain file" end "write olf domain file" end |
        sed 's/ text//' >"$problem/large.plot.control"
    read -r _ _ _ peak <<<"$(measured "$problem" "$build/meshrake/meshrake")"
    rm "$problem"/largeo.pm.*t*
    peak=$((peak * 1024))
    kept=$(kept_bytes "$problem")
    over=$((peak - kept))
    nodes=$(nodes_of "$problem/largeo.coordinates_pm")
}

table_head
for form in text binary; do
    bytes_over "$form" 39
    table_row "$form, MiB over the arrays kept" "$(mib "$peak")" "$(mib "$kept")" "$(mib "$over")" 64 32
    first=$over first_nodes=$nodes
    bytes_over "$form" 79
    table_row "  bytes for each further node" "$((peak / nodes))" "$((kept / nodes))" \
        "$(((over - first) / (nodes - first_nodes)))" 40 24
done
exit "$missed"
