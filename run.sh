#!/usr/bin/env bash
# ./run.sh JOB [OPTIONS]  builds and runs a job without a display: progress, a summary, a picture of the tool path.
# ./run.sh                the operator's window: on a Pi with its pin libraries on the machine, elsewhere on a virtual one.
# All options are those of vantor-run (./run.sh --help).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

"$root/scripts/setup.sh"
target=vantor-run
if [ $# -eq 0 ]; then
    target=vantor-bench
    libraries=$(/sbin/ldconfig -p)
    if [[ $libraries == *libwiringPi.so* && $libraries == *libpigpio.so* ]]; then target=vantor; fi
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "building ..." >&2
if ! (cd "$root" && cmake --preset release && cmake --build --preset release --target $target) >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
rm -f "$log"
trap - EXIT

program=$root/build/bin/$target
if [ $# -eq 0 ]; then
    if [ "$target" = vantor-bench ] && [ -z "${DISPLAY-}${WAYLAND_DISPLAY-}${QT_QPA_PLATFORM-}" ]; then
        printf 'There is no display here for the operator'\''s window. A job runs without one:\n  ./run.sh examples/plate.ngc\n' >&2
        exit 2
    fi
    exec "$program"
fi

# A picture beside the build, unless the call says otherwise or makes none.
picture=(--picture "$root/build/$(basename "${1%.*}").png")
case $1 in -*) picture=() ;; esac
for argument in "$@"; do
    case $argument in --picture | --picture=* | --check | --list-settings | --help | -h | --version) picture=() ;; esac
done
exec "$program" "$@" "${picture[@]}"
