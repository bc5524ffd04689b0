#!/usr/bin/env bash
# Makes the Debian packages in build-package and checks them: with lintian, and by a run of the demo
# with what they install. The plot files must be those of demo.sh, which is run first if its folder
# is missing.
#
#   packaging/check.sh
#
# The packages are unpacked into an empty folder, which needs no root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source_folder=$PWD

tools/install_packages.sh tool package
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# quietly COMMAND...: shows the output only after a failure.
quietly() {
    if ! "$@" >"$folder/log" 2>&1; then
        cat "$folder/log" >&2
        return 1
    fi
}

rm -f build-package/*.deb
quietly cmake --workflow --preset package
packages=(build-package/*.deb)
if tools/install_packages.sh lintian; then
    # The packages are not for Debian itself, which has a bug report for each new package.
    lintian --allow-root --suppress-tags initial-upload-closes-no-bugs --fail-on error,warning \
        "${packages[@]}"
else
    echo "not checked: lintian is not installed"
fi
for package in "${packages[@]}"; do
    dpkg-deb --extract "$package" "$folder/unpacked"
done

[ -d demo-problem ] || ./demo.sh
cp -r demo-problem "$folder/run"
cd "$folder/run"
rm -f ./*.dat ./*.szplt ./*.xdmf ./*.eco scratch_plot
export PATH=$folder/unpacked/usr/bin:$PATH
binary='tecplot binary mode'
sed "s/^$binary/! $binary/" -i catchment.plot.control
quietly meshrake
sed "s/^! $binary/$binary/" -i catchment.plot.control
quietly meshrake
meshrake-tool xdmf -o catchment.xdmf catchmento.*.szplt
# Only the 20 characters of the date of creation may differ.
files=0
for file in *.dat *.szplt *.xdmf; do
    differing=$( (cmp -l "$file" "$source_folder/demo-problem/$file" || true) | wc -l)
    if [ "$(stat -c %s "$file")" != "$(stat -c %s "$source_folder/demo-problem/$file")" ] ||
        [ "$differing" -gt 20 ]; then
        echo "$file differs from that of demo.sh" >&2
        exit 1
    fi
    files=$((files + 1))
done
[ "$files" -gt 10 ]
# Packages of the system are found by its own Python.
PYTHONPATH=$folder/unpacked/usr/lib/python3/dist-packages /usr/bin/python3 -c '
import meshrake_data
assert meshrake_data.__file__.startswith("'"$folder"'")
assert len(meshrake_data.open("catchmento.pm.szplt").times) == 12'
for page in meshrake meshrake-tool; do
    [ -s "$folder/unpacked/usr/share/man/man1/$page.1.gz" ]
    [ -s "$folder/unpacked/usr/share/bash-completion/completions/$page" ]
done

quietly cmake -S "$source_folder/tests/installed_library" -B "$folder/build" \
    -DCMAKE_PREFIX_PATH="$folder/unpacked/usr" -DEXAMPLE="$source_folder/examples/locate_in_mesh.cpp"
quietly cmake --build "$folder/build"
echo 500 500 200 | "$folder/build/locate_in_mesh" catchment 0001 | grep -q '^element [1-9].* head '
