#!/usr/bin/env bash
# Runs the program under valgrind on small problems: text with comparisons and surface plots,
# binary, and binary with append in two runs. Ends with status 1 on an error or a leak.
#
#   tools/valgrind.sh [BUILD_FOLDER]
#
# The build folder, "build" by default, must contain meshrake and make_problem without sanitizers.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "${1:-$root/build}")

"$root/tools/install_packages.sh" valgrind
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

make_problem() {
    "$build/examples/make_problem" --nx 6 --ny 5 --layers 3 --times 2 "$@" >/dev/null
}

check() { # NAME, in the current folder
    if ! valgrind --quiet --leak-check=full --show-leak-kinds=all --errors-for-leak-kinds=all \
        --error-exitcode=99 "$build/meshrake/meshrake" >screen.txt 2>valgrind.txt; then
        tail -n 40 screen.txt valgrind.txt >&2
        echo "valgrind: $1: failed" >&2
        exit 1
    fi
    if grep -q 'Unrecognized' screen.txt; then
        grep -A1 'Unrecognized' screen.txt >&2
        exit 1
    fi
    echo "valgrind: $1: no error, no leak, $(ls ./*.dat ./*.szplt 2>/dev/null | wc -l) plot files"
}

everything=(--domains olf,dual,frac,chan,well,tile --variables all --hmc 2
    --species Nitrate,Heat:heat,Calcite:immobile)
whole='-1e20 1e20
-1e20 1e20
-1e20 1e20'

binary_control() {
    echo "$1"
    echo end
    for domain in pm olf dual frac chan well tile; do
        printf 'write %s domain file\nend\n' "$domain"
    done
}

make_problem "${everything[@]}" "$folder/text"
cd "$folder/text"
cat >catchment.plot.control <<CONTROL
tecplot mode
end
write pm domain file
compare heads 3d domain
$whole
compare depth to gw table
end
write olf domain file
compare surface water depth
$whole
end
write dual domain file
truncate dual domain
0 1000
0 1000
-1e20 1e20
end
write frac domain file
end
write chan domain file
end
write well domain file
end
write tile domain file
end
interpolate depth to gw table
plot pm zone isopach structure
plot pm depth below ground surface
CONTROL
check "text with comparisons"

make_problem --observed table "$folder/table"
cd "$folder/table"
cat >catchment.plot.control <<CONTROL
tecplot mode
end
write pm domain file
compare gw table elevation
end
CONTROL
check "text, elevations of the water table"

make_problem "${everything[@]}" --coupling mixed "$folder/binary"
cd "$folder/binary"
binary_control 'tecplot binary mode' >catchment.plot.control
check "binary"

# The second run finds one more output time.
make_problem "${everything[@]}" --times 3 "$folder/append"
cd "$folder/append"
mkdir later
mv ./*.0003 later
binary_control $'tecplot binary mode\ntecplot binary append' >catchment.plot.control
check "binary append, new"
mv later/* .
check "binary append, resumed"
