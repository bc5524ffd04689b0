#!/usr/bin/env bash
# Applies one deliberate fault after the other to a copy of the source and runs the tests, which
# must detect each of them.
#
#   tools/deliberate_faults/run.sh [NAME...]
#
# Uses all rows of faults.txt, or those with the given names. Prints a line for each and ends with
# status 1 if the tests do not detect one, if one does not build, or if a row no longer matches the
# source. All rows take about half an hour on two cores. The copy and its build are in build-faults.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
apply=$root/tools/deliberate_faults/apply.py

folder=$root/build-faults
source=$folder/source
build=$folder/build
mkdir -p "$source"

build() {
    local settings=()
    if command -v ccache >/dev/null; then
        settings+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    "$source/tools/build.sh" faults --folder "$build" "${settings[@]}" 2>"$folder/build.log"
}

run_ctest() {
    ctest --test-dir "$build" --no-tests=error --stop-on-failure --output-on-failure \
        --parallel "$(nproc)" "$@" >"$folder/test.log" 2>&1
}

# Tests that take more than a second run last.
run_tests() { run_ctest -E "$slow" && run_ctest -R "$slow"; }

first_failure() {
    sed -nE 's/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: ([^ ]+) .*\*\*\*.*/\1/p' \
        "$folder/test.log" | head -n 1
}

"$root/tools/install_packages.sh" tool tests
python3 "$apply" sync "$root" "$source"
stale=0
names=$(python3 "$apply" check "$source" "$@") || stale=1
[ -n "$names" ] || exit 1
if ! build || ! run_ctest; then
    echo "The tests fail without a fault, see $folder/build.log and $folder/test.log." >&2
    exit 1
fi
slow=$(awk '$3 > 1 { printf "%s^%s$", sep, $1; sep = "|" }' \
    "$build/Testing/Temporary/CTestCostData.txt")

detected=0
missed=()
for name in $names; do
    what=$(python3 "$apply" one "$source" "$name")
    if ! build; then
        verdict="NOT BUILT"
    elif run_tests; then
        verdict="NOT DETECTED"
    else
        verdict=detected
    fi
    if [ "$verdict" = detected ]; then
        detected=$((detected + 1))
        printf '%-12s %-34s %s\n' "$verdict" "$name" "$(first_failure)"
    else
        missed+=("$name")
        printf '%-12s %-34s %s\n' "$verdict" "$name" "$what"
    fi
done
python3 "$apply" none "$source"

echo "$detected of $((detected + ${#missed[@]})) detected"
[ ${#missed[@]} -eq 0 ] && [ "$stale" = 0 ]
