#!/usr/bin/env bash
# Fuzzes the targets, one after the other, from the corpus and the inputs that earlier runs found.
#
#   fuzz/run.sh MINUTES [TARGET]...   MINUTES for each TARGET, by default for all targets
#   fuzz/run.sh merge [TARGET]...     adds the inputs that reach further edges to the corpus
#
# It prints the executions, the reached edges and the findings of each target, and ends with status
# 1 if there is a finding. The inputs of findings are in build-fuzz/findings. Add such an input to
# the corpus under a descriptive name: a merge keeps it, while it can drop inputs named by a hash.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build-fuzz
maximum_findings=10

if [[ $# -lt 1 || ! $1 =~ ^([0-9]+|merge)$ ]]; then
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
fi
minutes=$1
shift
if [ $# -gt 0 ]; then targets=("$@"); else mapfile -t targets < <(ls "$root/fuzz/corpus"); fi

"$root/tools/install_packages.sh" fuzz
"$root/tools/build.sh" fuzz

# Words of the control file, from a template with all instructions, and names of files.
make_dictionaries() {
    cd "$build/fuzz/problem"
    find . -type f -printf '"%P"\n' >"$build/damaged_problem.dict"
    "$build/meshrake/meshrake" --make_plot_control >/dev/null 2>&1
    { sed -n 's/^\(! \)\{0,1\}\([a-z].*\)/\2/p' t.plot.control; printf 'include \n1e20\n'; } |
        sort -u | sed 's/.*/"&"/' >"$build/control_file.dict"
    rm t.plot.control to.meshrake.eco
}
(make_dictionaries)

merge() {
    local -r target=$1 corpus=$root/fuzz/corpus/$1
    local merged
    merged=$(mktemp -d "$build/merged.XXXX")
    "$build/fuzz/fuzz_$target" -merge=1 -use_counters=0 -rss_limit_mb=1024 "$merged" \
        "$build/corpus/$target" "$corpus" >"$build/merge_$target.log" 2>&1
    find "$corpus" -regextype egrep -type f ! -regex '.*/[0-9a-f]{40}' -exec mv -t "$merged" {} +
    rm -rf "$corpus"
    mv "$merged" "$corpus"
    chmod 755 "$corpus"
    printf '%-18s %5d inputs, %6d bytes\n' "$target" "$(find "$corpus" -type f | wc -l)" \
        "$(find "$corpus" -type f -printf '%s\n' | awk '{ n += $1 } END { print n + 0 }')"
}

# Short stack traces of allocations and a small quarantine of freed blocks make runs faster.
export ASAN_OPTIONS=malloc_context_size=2:quarantine_size_mb=16

# A finding ends a run of the fuzzer, and the loop starts the next one. All of them write to one
# log.
fuzz() {
    local -r target=$1 log=$build/fuzz_$1.log findings=$build/findings/$1
    local -r end=$((SECONDS + 60 * minutes))
    local options=(-max_len=4096 -timeout=10 -malloc_limit_mb=128 -rss_limit_mb=1024
        -print_final_stats=1 "-artifact_prefix=$findings/")
    local -r dictionary=$build/$target.dict
    [ ! -e "$dictionary" ] || options+=("-dict=$dictionary")
    mkdir -p "$build/corpus/$target" "$findings"
    : >"$log"
    local before
    before=$(find "$findings" -type f | wc -l)
    local found=0
    while [ $SECONDS -lt $end ] && [ $found -lt $maximum_findings ]; do
        "$build/fuzz/fuzz_$target" "${options[@]}" -max_total_time=$((end - SECONDS)) \
            "$build/corpus/$target" "$root/fuzz/corpus/$target" >>"$log" 2>&1 || true
        found=$(($(find "$findings" -type f | wc -l) - before))
    done
    local executions
    executions=$(sed -n 's/^stat::number_of_executed_units: //p' "$log" |
        awk '{ n += $1 } END { print n + 0 }')
    printf '%-18s %10d executions %6d edges %3d findings\n' "$target" "$executions" \
        "$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' "$log" | sort -n | tail -1)" "$found"
    # A target that does not start has no findings, but is a failure.
    [ $found -eq 0 ] && [ "$executions" -gt 0 ]
}

status=0
for target in "${targets[@]}"; do
    if [ "$minutes" = merge ]; then merge "$target"; else fuzz "$target" || status=1; fi
done
[ $status -eq 0 ] || echo "The inputs of the findings are in $build/findings."
exit $status
