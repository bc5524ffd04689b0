#!/usr/bin/env bash
# Builds meshrake with its tests and runs them; shows the tests that fail and the totals.
#
#   ./test.sh [PRESET] [-DNAME=VALUE]...
#
# PRESET is one of CMakePresets.json that has tests, "release" by default; -D is passed to CMake.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

preset=release
if [[ $# -gt 0 && $1 != -* ]]; then
    preset=$1
    shift
fi

tools/install_packages.sh tool tests
tools/build.sh "$preset" "$@"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! ctest --preset "$preset" --parallel "$(nproc)" >"$log" 2>&1; then
    grep -vE '^ +Start +[0-9]+: | \.+ +Passed ' "$log" >&2
    exit 1
fi
sed -n '/tests passed/,$p' "$log"
