#!/usr/bin/env bash
# configure-test.sh LIBRARIES GENERATOR: VANTOR_PINS=real takes libraries with the entry points, and refuses one that
# lacks the call of release 3.
set -euo pipefail
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

configure() { # PIN LIBRARY
    cmake -S "$source_dir" -B "$work/build" -G "$2" -DVANTOR_PINS=real -DBUILD_TESTING=OFF -DVANTOR_BENCH=OFF \
        "-DWIRINGPI_LIBRARY=$1" "-DPIGPIO_LIBRARY=$libraries/libpigpio.so" >"$work/said" 2>&1
}
libraries=$1
if configure "$libraries/libpigpio.so" "$2"; then
    echo "a library without the entry point was taken" >&2
    exit 1
fi
tr -s ' \n' ' ' <"$work/said" | grep -q 'older than release 3' || { cat "$work/said"; exit 1; }
# The same build folder, as after an upgrade of the library.
configure "$libraries/libwiringPi.so" "$2" || { cat "$work/said"; exit 1; }
