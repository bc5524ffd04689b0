#!/usr/bin/env bash
# Rewrites the files of tests/expected and the generated pages of docs with the output of the
# current program. Review the difference (git diff) like code before you commit it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tools/install_packages.sh tests
tools/build.sh release

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! MESHRAKE_REWRITE_EXPECTED=1 ctest --preset release --parallel "$(nproc)" \
    --exclude-regex '^(docs\.|number_formats|fuzz\.|installed_library|vtk_reader)' >"$log" 2>&1; then
    grep -vE '^ +Start +[0-9]+: | \.+ +Passed ' "$log" >&2
    echo "Some tests failed; their expected files may be incomplete." >&2
    exit 1
fi
for subject in variables instructions; do
    build/tools/print_$subject >"$log"
    cp "$log" docs/$subject.md
done

git --no-pager diff --stat -- tests/expected docs
