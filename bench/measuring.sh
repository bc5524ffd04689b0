# shellcheck shell=bash
# shellcheck disable=SC2154 # the variables of the script that reads this
# Runs of the program and of floor.cpp, for the scripts of this folder, which set `build`, `folder`,
# `problem` and `copy`.

# measured FOLDER PROGRAM [ARGUMENT]...: prints the line of run_measured. The program must end with
# status 0.
measured() {
    "$build/bench/run_measured" "$@" 2>"$folder/errors" || {
        cat "$folder/errors" >&2
        return 1
    }
}

# Statistics of a file with one number per line. Other processes only add to a time, and so does
# memory that the host of a virtual machine must provide first, which can double the time of a write.
# The minimum has the least of both.
median() { sort -n "$1" | awk '{ line[NR] = $0 } END { print line[int((NR + 1) / 2)] }'; }
minimum() { sort -n "$1" | head -n 1; }

# list_inputs PROBLEM: the lines of floor.cpp for the files that a run may read.
list_inputs() { find "$1" -type f ! -name '*.control' -printf 'read %p\n' | sort; }

# Measures the floor for the files in `inputs` and the plot files of the last run, which it removes.
run_floor() {
    find "$problem" \( -name '*.szplt' -o -name 'largeo.*.dat' \) -printf 'write %s %p\n' |
        cat "$folder/inputs" - >"$folder/list"
    rm -rf "$copy" "$problem"/largeo.*.szplt "$problem"/largeo.*.dat
    mkdir "$copy"
    sync
    measured "$folder" "$build/bench/floor" "$copy" "$folder/list"
}

nodes_of() { od -An -t d4 -j 4 -N 4 "$1" | tr -d ' '; }

# kept_bytes PROBLEM: the bytes that the program must keep in memory. Coordinates, links, element
# lists and zones have the size of the mesh files plus the coordinates of domains other than pm. An
# array per column has the size of the result files of one output time.
kept_bytes() {
    local bytes file
    bytes=$(cat "$1"/largeo.coordinates_* "$1"/largeo.elements_* "$1"/largeo.*.0001 | wc -c)
    for file in "$1"/largeo.coordinates_*; do
        [ "${file##*_}" != pm ] || continue
        bytes=$((bytes + 24 * $(nodes_of "$file")))
    done
    echo "$bytes"
}
