#!/usr/bin/env bash
# Draws the pictures of README.md from the demo problem: a cut block with heads, a section with
# saturations, and a hydrograph.
#
#   docs/make_pictures.sh [FOLDER]
#
# FOLDER is docs/pictures by default. Needs ParaView, Xvfb and matplotlib, which it installs like the
# other packages.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mkdir -p "${1:-$root/docs/pictures}"
folder=$(cd "${1:-$root/docs/pictures}" && pwd)
cd "$root"

tools/install_packages.sh paraview pictures
./demo.sh >/dev/null

# The views need a display, but no graphics card. The server takes a free display and writes its
# number when it is ready.
temporary=$(mktemp -d)
Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp >"$temporary/display" 2>/dev/null &
server=$!
trap 'kill "$server" 2>/dev/null; rm -rf "$temporary"' EXIT
for ((i = 0; i < 100; ++i)); do
    [ ! -s "$temporary/display" ] || break
    sleep 0.1
done
# ParaView ends with status 0 after some errors.
log=$temporary/log
if ! DISPLAY=:$(<"$temporary/display") \
    pvbatch docs/pictures/views.py demo-problem/catchment.xdmf "$folder" >"$log" 2>&1 ||
    grep -q Traceback "$log"; then
    cat "$log" >&2
    exit 1
fi
# Packages of the system are found by its own Python.
PYTHONPATH=python /usr/bin/python3 docs/pictures/hydrograph.py \
    demo-problem/catchmento.olf.szplt "$folder/hydrograph.png"
/usr/bin/python3 - "$folder"/{block,section,hydrograph}.png <<'EOM'
import sys
from PIL import Image
for file in sys.argv[1:]:
    Image.open(file).convert("RGB").quantize(256, dither=0).save(file, optimize=True)
EOM
ls -l "$folder"/{block,section,hydrograph}.png
