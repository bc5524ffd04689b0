#!/usr/bin/env bash
# Configures and builds, without a word while all goes well.
#
#   tools/build.sh FOLDER [-DNAME=VALUE | --target NAME]...
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

folder=$1
shift
settings=()
build=(--parallel "$(nproc)")
while [ $# -gt 0 ]; do
    case $1 in
    -D*) settings+=("$1") ;;
    --target)
        build+=(--target "$2")
        shift
        ;;
    *)
        echo "build.sh: what is \"$1\"?" >&2
        exit 2
        ;;
    esac
    shift
done

# A folder that is configured keeps its generator.
if [ ! -e "$folder/CMakeCache.txt" ] && command -v ninja >/dev/null; then settings+=(-G Ninja); fi

mkdir -p "$folder"
log=$folder/build.log
if ! { cmake -S "$root" -B "$folder" "${settings[@]}" && cmake --build "$folder" "${build[@]}"; } \
    >"$log" 2>&1; then
    cat "$log" >&2
    echo "The build failed; the text above is also in $log." >&2
    exit 1
fi
