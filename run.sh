#!/usr/bin/env bash
# ./run.sh JOB [OPTIONS]  builds and runs a job without a display: progress, a summary, a picture of the tool path.
# ./run.sh                the operator's window, once it is there.
# All options are those of vantor-run (./run.sh --help).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

"$root/scripts/setup.sh"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "building ..." >&2
if ! (cd "$root" && cmake --preset release && cmake --build --preset release --target vantor-run) >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
rm -f "$log"
trap - EXIT

program=$root/build/bin/vantor-run
if [ $# -eq 0 ]; then
    "$program" --help
    printf '\nThe operator'\''s window is not part of this version yet: give the path of a job, such as\n  ./run.sh examples/plate.ngc\n' >&2
    exit 0
fi

# A picture beside the build, unless the call says otherwise or makes none.
picture=(--picture "$root/build/$(basename "${1%.*}").png")
case $1 in -*) picture=() ;; esac
for argument in "$@"; do
    case $argument in --picture | --picture=* | --check | --list-settings | --help | -h | --version) picture=() ;; esac
done
exec "$program" "$@" "${picture[@]}"
