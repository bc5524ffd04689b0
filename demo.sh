#!/usr/bin/env bash
# Builds meshrake, makes a sample problem in demo-problem and writes its plot files: as text, then as
# binary data sets, with an index for ParaView and comparisons with observations. A storm of seven
# hours raises the stream and washes nitrate off a field; the plume moves down to the stream, which
# carries it to the outlet.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

tools/install_packages.sh tool
tools/build.sh release --target meshrake --target meshrake_tool --target make_problem \
    -DMESHRAKE_TESTS=OFF

# A control file or results of another day would change what the demo shows.
problem=demo-problem
rm -rf "$problem"
made=$(build/examples/make_problem --nx 36 --ny 24 --layers 8 --times 12 --step 7200 --storm \
    --species Nitrate --variables default,flow_rate --sites nodes \
    --domains olf,dual,frac,chan,well,tile "$problem")

run() {
    if ! (cd "$problem" && ../build/meshrake/meshrake >screen.txt 2>&1); then
        cat "$problem/screen.txt" >&2
        exit 1
    fi
}

# request INSTRUCTION LINES: the template of the control file has it as a comment, with its values on
# as many lines.
request() { sed -i "/^! $1\$/,+$2s/^! //" "$problem/catchment.plot.control"; }

run
request 'tecplot binary mode' 0
request 'compare heads 3d domain' 3
request 'compare depth to gw table' 0
request 'compare surface water depth' 3
run
build/companion/meshrake-tool xdmf -o "$problem/catchment.xdmf" "$problem"/catchmento.*.szplt

zones() { grep -c '^ZONE ' "$1"; }
variables() { sed -n '/^VARIABLES = /{s/[^,]//g;p;q}' "$1" | wc -c; }
size() { du -h --apparent-size "$1" | cut -f 1; }

echo "In $PWD:"
echo "Problem  $made"
echo "Written  for each domain, as text (.dat) and binary (.szplt):"
for binary in "$problem"/catchmento.*.szplt; do
    text=${binary%.szplt}.dat
    printf '  %-31s.dat %5s  .szplt %5s  %d zones of %d variables\n' "${binary%.szplt}" \
        "$(size "$text")" "$(size "$binary")" "$(zones "$text")" "$(variables "$text")"
done
echo "Compared with observations, coefficient of determination:"
for file in "$problem"/catchmento.compare_*.dat; do
    sed -n "s|.*R<sup>2</sup> = *\([-0-9.]*\)\".*|  $file  \1|p" "$file"
done
cat <<EOM
Log      $problem/catchmento.meshrake.eco
Change   $problem/catchment.plot.control says what is written. Then, in $problem, run
         ../build/meshrake/meshrake. (This script recreates the folder.)
Open     $problem/catchment.xdmf in ParaView ("XDMF Reader"): all domains at all times.
         Tecplot opens the .dat files ("Load Data").
EOM
