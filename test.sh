#!/usr/bin/env bash
# Builds meshrake with its tests and runs them; shows what fails and the sum.
#
#   ./test.sh [FOLDER] [-DNAME=VALUE]...
#
# FOLDER is the build folder, "build" unless named; -D goes to CMake.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

folder=$root/build
if [[ $# -gt 0 && $1 != -* ]]; then
    folder=$(realpath -m "$1")
    shift
fi

"$root/tools/install_packages.sh" tests
"$root/tools/build.sh" "$folder" -DMESHRAKE_TESTS=ON "$@"

log=$folder/test.log
if ! ctest --test-dir "$folder" --output-on-failure --no-tests=error --parallel "$(nproc)" \
    >"$log" 2>&1; then
    grep -vE '^ +Start +[0-9]+: | \.+ +Passed ' "$log" >&2
    exit 1
fi
sed -n '/tests passed/,$p' "$log"
