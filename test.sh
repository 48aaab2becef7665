#!/usr/bin/env bash
# Builds and runs every test: all of them plain and under the address and undefined-behaviour sanitizers, those with
# real threads under the thread sanitizer. Prints the runner's own summaries, and one line over all at the end.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
export QT_QPA_PLATFORM=offscreen

scripts/setup.sh

# The thread sanitizer's memory layout does not suit every kernel's address randomisation: off, where that is allowed.
fixed_layout=()
if setarch "$(uname -m)" -R true 2>/dev/null; then fixed_layout=(setarch "$(uname -m)" -R); fi

passed=0
failed=0
broken=()
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# run PRESET [WRAPPER...]: configures, builds, tests; adds the runner's figures up.
run() {
    local preset=$1
    shift
    echo "==== $preset"
    if ! "$@" cmake --workflow --preset "$preset" 2>&1 | tee "$log"; then broken+=("$preset"); fi
    local figures
    figures=$(sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests failed out of ([0-9]+).*/\1 \2/p' "$log" | tail -n 1)
    if [ -z "$figures" ]; then
        echo "$preset: no test was run" >&2
        failed=$((failed + 1))
        return
    fi
    failed=$((failed + ${figures% *}))
    passed=$((passed + ${figures#* } - ${figures% *}))
}

run release
run asan
run tsan "${fixed_layout[@]}"

echo
[ ${#broken[@]} -eq 0 ] || echo "failed: ${broken[*]}"
echo "$passed passed, $failed failed"
[ ${#broken[@]} -eq 0 ] && [ "$failed" -eq 0 ]
