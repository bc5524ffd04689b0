#!/usr/bin/env bash
# Measures the code coverage of the tests: lines, and branches other than those of exceptions.
#
#   tools/coverage.sh [--list] [--reuse]
#
# --list adds the file and line of each branch that no test takes. --reuse skips the build and the
# tests and reports on the last run. Ends with status 1 if less than 95 % of the branches of a
# folder are covered.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folder=build-coverage
list=
reuse=
for option in "$@"; do
    case $option in
    --list) list=1 ;;
    --reuse) reuse=1 ;;
    *)
        echo "usage: tools/coverage.sh [--list] [--reuse]" >&2
        exit 2
        ;;
    esac
done

if [ -z "$reuse" ]; then
    # Counters of an earlier run would add up.
    if [ -d "$folder" ]; then find "$folder" -name '*.gcda' -delete; fi
    tools/install_packages.sh tool tests
    tools/build.sh coverage
    # The memory limits of one test apply to a program without counters.
    if ! ctest --preset coverage --parallel "$(nproc)" \
        --exclude-regex '^Memory.LimitsOfTheSystem$' >"$folder/test.log" 2>&1; then
        grep -vE '^ +Start +[0-9]+: | \.+ +Passed ' "$folder/test.log" >&2
        exit 1
    fi
fi

# The JSON output of gcov marks branches of exceptions in all functions. Its text output does not
# mark them in functions that never run, so gcovr 5 reports those as branches that no test takes.
python3 - "$PWD" "$folder" "$list" <<'PYTHON'
import collections, json, os, pathlib, subprocess, sys

LIMIT = 95.0
FOLDERS = ("meshrake", "tecio", "tvncommon")
root, build, listed = sys.argv[1:]

# Instances of a template, and objects that include the same header, have the same lines. Their
# counts are added, those of branches by their index within the line.
runs = collections.Counter()
branches = collections.defaultdict(list)
for counters in pathlib.Path(build).rglob("*.gcda"):
    text = subprocess.run(["gcov", "--json-format", "--branch-probabilities", "--stdout", counters],
                          check=True, capture_output=True).stdout
    measured = json.loads(text)
    for file in measured["files"]:
        path = os.path.join(measured["current_working_directory"], file["file"])
        name = os.path.relpath(os.path.realpath(path), root)
        if not name.startswith(tuple(folder + "/" for folder in FOLDERS)):
            continue
        for line in file["lines"]:
            at = name, line["line_number"]
            runs[at] += line["count"]
            counts = [branch["count"] for branch in line["branches"] if not branch["throw"]]
            if len(counts) == 1:  # a call that may throw, which has no alternative
                counts = []
            known = branches[at]
            known += [0] * (len(counts) - len(known))
            for index, count in enumerate(counts):
                known[index] += count

sources = {}
sums = {folder: [0, 0, 0, 0] for folder in FOLDERS}
for at in sorted(runs):
    name, number = at
    if name not in sources:
        sources[name] = pathlib.Path(name).read_text().splitlines()
    source = sources[name][number - 1].strip()
    if source in "{};":  # what the compiler adds at the end of a scope
        continue
    taken = sum(count > 0 for count in branches[at])
    values = (runs[at] > 0, 1, taken, len(branches[at]))
    folder = name.split("/")[0]
    sums[folder] = [old + new for old, new in zip(sums[folder], values)]
    if listed and (taken < len(branches[at]) or runs[at] == 0):
        print(f"{name}:{number}: {taken} of {len(branches[at])}: {source}")

low = []
print(f"{'':12}{'lines':>24}{'branches':>24}")
for folder, (ran, lines, taken, all_branches) in sums.items():
    share = 100 * taken / all_branches
    print(f"{folder:12}{ran:8} of {lines:5} {100 * ran / lines:5.1f} %"
          f"{taken:8} of {all_branches:5} {share:5.1f} %")
    if share < LIMIT:
        low.append(folder)
if low:
    sys.exit(f"Less than {LIMIT:.0f} % of the branches covered: {', '.join(low)}")
PYTHON
