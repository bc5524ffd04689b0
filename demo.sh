#!/usr/bin/env bash
# Builds meshrake, makes a sample problem in demo-problem and turns it into Tecplot text files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

tools/install_packages.sh
tools/build.sh release --target meshrake --target make_problem -DMESHRAKE_TESTS=OFF

# A control file or results of another day would change what the demo shows.
problem=demo-problem
rm -rf "$problem"
made=$(build/examples/make_problem --nx 24 --ny 16 --layers 6 --times 4 \
    --domains olf,dual,frac,chan,well,tile "$problem")
if ! (cd "$problem" && ../build/meshrake/meshrake >screen.txt 2>&1); then
    cat "$problem/screen.txt" >&2
    exit 1
fi

zones() { grep -c '^ZONE ' "$1"; }
variables() { sed -n '/^VARIABLES = /{s/[^,]//g;p;q}' "$1" | wc -c; }
size() { du -h --apparent-size "$1" | cut -f 1; }

echo "In $PWD:"
echo "Problem  $made"
echo "Written, a Tecplot text file for each domain:"
for file in "$problem"/*.dat; do
    printf '  %-34s %6s  %d zones of %d variables\n' \
        "$file" "$(size "$file")" "$(zones "$file")" "$(variables "$file")"
done
cat <<EOM
Log      $problem/catchmento.meshrake.eco
Open     the .dat files with Tecplot ("Load Data"). ParaView ("Tecplot Reader") shows the first
         time of pm, dual, olf and frac: take its first block only, see README.md.
Change   $problem/catchment.plot.control says what is written. Then, in $problem, run
         ../build/meshrake/meshrake. (This script recreates the folder.)
EOM
