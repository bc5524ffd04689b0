#!/usr/bin/env bash
# Configures and builds a preset of CMakePresets.json. Prints the output only on failure.
#
#   tools/build.sh PRESET [--folder FOLDER] [-DNAME=VALUE | --target NAME]...
#
# FOLDER replaces the build folder of the preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=$1
shift
settings=()
build=(--parallel "$(nproc)")
folder=
while [ $# -gt 0 ]; do
    case $1 in
    -D*) settings+=("$1") ;;
    --target)
        build+=(--target "$2")
        shift
        ;;
    --folder)
        folder=$2
        settings+=(-B "$2")
        shift
        ;;
    *)
        echo "build.sh: unknown argument \"$1\"" >&2
        exit 2
        ;;
    esac
    shift
done
if [ -n "$folder" ]; then tree=("$folder"); else tree=(--preset "$preset"); fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake --preset "$preset" "${settings[@]}" && cmake --build "${tree[@]}" "${build[@]}"; } \
    >"$log" 2>&1; then
    cat "$log" >&2
    echo "The build of the preset \"$preset\" failed." >&2
    exit 1
fi
