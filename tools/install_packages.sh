#!/usr/bin/env bash
# Installs the missing packages of a build, or prints which packages to install.
#
#   tools/install_packages.sh [tool] [tests] [bench] [fuzz] [valgrind] [paraview] [pictures]
#                               [parallel] [xarray] [manual] [reference] [package] [lintian]
#
# Changes nothing if all packages are installed. It installs as root, or with sudo without a
# password. Otherwise it ends with status 1.
set -euo pipefail

has_command() { command -v "$1" >/dev/null 2>&1; }

has_header() { has_command c++ && echo "#include <$1>" | c++ -E -x c++ - >/dev/null 2>&1; }

has_libfuzzer() {
    echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
        clang++ -fsanitize=fuzzer,address,undefined -x c++ - -o /dev/null >/dev/null 2>&1
}

missing_packages() {
    has_command cmake || echo cmake
    has_command ninja || echo ninja-build
    has_command c++ || echo g++
    for group in "$@"; do
        case $group in
        tool)
            has_header CLI/CLI.hpp || echo libcli11-dev
            has_header nlohmann/json.hpp || echo nlohmann-json3-dev
            ;;
        tests)
            has_header gtest/gtest.h || echo libgtest-dev
            has_header gmock/gmock.h || echo libgmock-dev
            /usr/bin/python3 -c 'import numpy' 2>/dev/null || echo python3-numpy
            ;;
        bench)
            has_header benchmark/benchmark.h || echo libbenchmark-dev
            has_header nanoflann.hpp || echo libnanoflann-dev
            ;;
        fuzz)
            if ! has_command clang++; then
                echo clang
            elif ! has_libfuzzer; then
                # Each version has its own package of run-time libraries.
                echo "libclang-rt-$(clang++ -dumpversion | cut -d. -f1)-dev"
            fi
            ;;
        paraview)
            has_command pvbatch || echo paraview
            # pvbatch starts without its Python modules, but cannot run a script.
            [ -d /usr/lib/python3/dist-packages/paraview ] || echo python3-paraview
            ;;
        parallel) has_command parallel || echo parallel ;;
        pictures)
            has_command Xvfb || echo xvfb
            /usr/bin/python3 -c 'import matplotlib' 2>/dev/null || echo python3-matplotlib
            ;;
        xarray) /usr/bin/python3 -c 'import xarray' 2>/dev/null || echo python3-xarray ;;
        valgrind) has_command valgrind || echo valgrind ;;
        manual)
            has_command mandoc || echo mandoc
            has_command groff || echo groff-base
            ;;
        reference) has_command doxygen || echo doxygen ;;
        package)
            has_command dpkg-shlibdeps || echo dpkg-dev
            has_command file || echo file
            has_command gzip || echo gzip
            ;;
        lintian) has_command lintian || echo lintian ;;
        *)
            echo "install_packages.sh: no group of packages \"$group\"" >&2
            exit 2
            ;;
        esac
    done
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo -n "$@"
    fi
}

# The lists of packages can be missing or out of date. The installation is then repeated with
# current lists.
install() {
    local -r apt=(as_root env DEBIAN_FRONTEND=noninteractive apt-get -y -q)
    "${apt[@]}" install --no-install-recommends "$@" && return
    "${apt[@]}" update && "${apt[@]}" install --no-install-recommends "$@"
}

packages=$(missing_packages "$@")
[ -n "$packages" ] || exit 0
packages=${packages//$'\n'/ }

if has_command apt-get && as_root true 2>/dev/null; then
    echo "Installing $packages ..."
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    # shellcheck disable=SC2086 # a list of words
    if install $packages >"$log" 2>&1 && [ -z "$(missing_packages "$@")" ]; then exit 0; fi
    cat "$log" >&2
    echo "These packages could not be installed: $packages" >&2
else
    echo "These packages are missing: $packages" >&2
    echo "Install them and start again, on Debian with: sudo apt-get install $packages" >&2
fi
exit 1
