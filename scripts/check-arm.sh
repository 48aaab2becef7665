#!/usr/bin/env bash
# Builds the system for 64-bit ARM on a computer of another kind, and shows that it does there what it does here.
#   scripts/check-arm.sh [--keep DIR] [--jobs N] [--also FOLDER]... [--only WORD]
# Unpacks the Debian of the computer's own apt sources for ARM into a private folder, and beside it a cross compiler and
# an emulator where the computer has none. Builds every program, runs the core and end-to-end tests emulated, and
# compares the runs of scripts/compare-runs (moves, edges, written programs, all else that a run leaves) with those of
# the computer's own release build, byte for byte. Nothing is installed, and apt's own state is not touched.
#   --keep DIR     works in DIR and leaves all there: a second call downloads and builds only what is new
#   --jobs N       that many compilers and tests at a time; otherwise one for each core
#   --also FOLDER  runs on the files of FOLDER too, as compare-runs does
#   --only WORD    only the runs whose name holds WORD, as compare-runs does
# Wants 300 MB from the network, 3 GB of disk, an hour or more on two cores. Exit status: 0 all the same, 1 a test failed or
# something differs, 2 it could not be tried.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export LC_ALL=C.UTF-8

refuse() {
    printf 'check-arm: %s\n' "$1" >&2
    exit 2
}
usage() {
    sed -n '2,/^set/ { /^#/ s/^# \{0,1\}//p }' "${BASH_SOURCE[0]}"
    exit "$1"
}

keep=
jobs=$(nproc)
compare=()
while [ $# -gt 0 ]; do
    case $1 in
        --keep | --jobs | --also | --only) [ $# -ge 2 ] || refuse "$1 needs a value" ;;&
        --keep) keep=$2 ;;
        --jobs) jobs=$2 ;;
        --also | --only) compare+=("$1" "$2") ;;
        -h | --help) usage 0 ;;
        *) usage 2 >&2 ;;
    esac
    shift 2
done
[[ $jobs =~ ^[1-9][0-9]*$ ]] || refuse "--jobs wants a number from 1 on, not $jobs"
for program in apt-get dpkg; do
    command -v $program >/dev/null || refuse "no $program here: it takes the ARM system from Debian's packages"
done
own=$(dpkg --print-architecture)
[ "$own" != arm64 ] || refuse "this computer is 64-bit ARM itself: ./test.sh tries all of it"
missing=$("$root/scripts/setup.sh" --missing)
[ -z "$missing" ] || refuse "please run scripts/setup.sh first: no ${missing//$'\n'/, }"

if [ -n "$keep" ]; then
    mkdir -p "$keep"
    work=$(cd "$keep" && pwd)
else
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
fi
case $work in *[[:space:]\;\"]*) refuse "the folder's name must be free of blanks, semicolons and quotes: $work" ;; esac

begin() { printf '==== %s\n' "$1"; }
# try WHAT LOG COMMAND...: shows what was written only where the command fails.
try() {
    local what=$1 log=$2
    shift 2
    if "$@" >"$log" 2>&1; then return 0; fi
    tail -n 40 "$log" >&2
    refuse "$what failed"
}

# ---- systems unpacked from packages -------------------------------------------------------------------------------------

# private_apt NAME ARCHITECTURE STATUS: WORK/NAME.apt, where apt keeps what is its own; STATUS lists what is installed.
private_apt() {
    local state=$work/$1.apt
    mkdir -p "$state/lists/partial" "$state/archives/partial"
    cp "$3" "$state/status"
    # Read behind the computer's own configuration. What that hooks to an update is meant for the computer.
    cat >"$state/apt.conf" <<END
#clear APT::Architectures;
#clear APT::Update;
APT::Architecture "$2";
APT::Architectures { "$2"; };
APT::Install-Recommends "false";
APT::Install-Suggests "false";
APT::Sandbox::User "$(id -un)";
Dir::State "$state";
Dir::State::lists "$state/lists";
Dir::State::status "$state/status";
Dir::State::extended_states "$state/extended_states";
Dir::Cache "$state";
Dir::Cache::archives "$state/archives";
Dir::Cache::pkgcache "";
Dir::Cache::srcpkgcache "";
Dir::Log "$state";
END
}

# download NAME PACKAGE...: those, and all that they need and STATUS has not.
download() {
    local state=$work/$1.apt
    local apt=(apt-get -q -y -c "$state/apt.conf")
    shift
    try "reading the package lists" "$state/update.log" "${apt[@]}" update
    try "clearing old packages away" "$state/autoclean.log" "${apt[@]}" autoclean
    try "downloading $*" "$state/download.log" "${apt[@]}" --download-only --no-remove install "$@"
}

# unpack NAME [WITHOUT]: the packages of WORK/NAME.apt into WORK/NAME, but those whose name the pattern WITHOUT fits.
unpack() {
    local to=$work/$1 package packages=()
    for package in "$work/$1.apt/archives/"*.deb; do
        # shellcheck disable=SC2053  # a pattern
        [[ ${package##*/} == ${2-} ]] || packages+=("$package")
    done
    [ -f "$work/$1.unpacked" ] && [ "$(cat "$work/$1.unpacked")" = "${packages[*]}" ] && return 0
    rm -rf "$to" "$work/$1.unpacked"
    mkdir -p "$to"
    for package in "${packages[@]}"; do
        dpkg -x "$package" "$to" || refuse "$package can't be unpacked"
    done
    # Links from the root of a system lead to that of this computer.
    local link target
    while IFS=$'\t' read -r link target; do
        ln -sfn "$to$target" "$link"
    done < <(find "$to" -type l -lname '/*' -printf '%p\t%l\n')
    printf '%s' "${packages[*]}" >"$work/$1.unpacked"
}

begin "ARM system"
: >"$work/nothing"
private_apt sys arm64 "$work/nothing"
download sys libc6-dev qt6-base-dev libopencv-{core,imgproc,imgcodecs,videoio}-dev libgtest-dev fonts-dejavu-core
unpack sys
system=$work/sys
[ -e "$system/lib" ] || ln -s usr/lib "$system/lib"
# These two links are made by scripts of the packages, which are not run.
for library in blas lapack; do
    ln -sfn "$library/lib$library.so.3" "$system/usr/lib/aarch64-linux-gnu/lib$library.so.3"
done

begin "cross compiler, emulator"
compiler=$(command -v aarch64-linux-gnu-g++ || true)
emulator=$(command -v qemu-aarch64-static || true)
libraries=
if [ -z "$compiler" ] || [ -z "$emulator" ]; then
    wanted=()
    [ -n "$compiler" ] || wanted+=(g++-aarch64-linux-gnu)
    [ -n "$emulator" ] || wanted+=(qemu-user-static)
    private_apt tools "$own" /var/lib/dpkg/status
    download tools "${wanted[@]}"
    # Without the C library that comes with the compiler: that of the ARM system is what the programs will meet.
    unpack tools '@(libc6|linux-libc)-*'
    : "${compiler:=$work/tools/usr/bin/aarch64-linux-gnu-g++}" "${emulator:=$work/tools/usr/bin/qemu-aarch64-static}"
    libraries=$(dirname "$(find "$work/tools" -name 'libopcodes-*arm64.so' -print -quit)")
fi
for program in "$compiler" "$emulator"; do [ -x "$program" ] || refuse "no $program"; done

# The translators of forms and headers are the computer's own; they must be of the release that they translate for.
tools=$(find /usr/lib -path '*/cmake/Qt6CoreTools/Qt6CoreToolsConfig.cmake' -print -quit)
tools=${tools%/Qt6CoreTools/*}
release_of() { sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' "$1/Qt6/Qt6ConfigVersionImpl.cmake"; }
here=$(release_of "$tools")
there=$(release_of "$system/usr/lib/aarch64-linux-gnu/cmake")
[ "$here" = "$there" ] || refuse "Qt is $here here and $there for ARM: please upgrade this computer's packages"

# ---- both builds --------------------------------------------------------------------------------------------------------

begin "this computer's own build"
cd "$root"
try "configuring" "$work/own.log" cmake --preset release
try "this computer's own build" "$work/own.log" cmake --build --preset release --parallel "$jobs" --target vantor-run

begin "build for ARM: every program"
build=$work/build
arm() { LD_LIBRARY_PATH=$libraries${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} "$@"; }
try "configuring for ARM" "$work/configure.log" arm cmake -S "$root" -B "$build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release -DVANTOR_WERROR=ON -DVANTOR_BENCH=OFF -DVANTOR_PINS=virtual \
    -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_SYSROOT="$system" -DCMAKE_FIND_ROOT_PATH="$system" -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER \
    -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY \
    -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY -DCMAKE_CROSSCOMPILING_EMULATOR="$emulator;-L;$system" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$tools"
if ! arm cmake --build "$build" --parallel "$jobs" >"$work/build.log" 2>&1; then
    grep -A 8 -E '^FAILED|error:' "$work/build.log" | head -n 60
    echo "check-arm: it does not build for ARM"
    exit 1
fi

# Tests, and whoever compares, call these by name: a script in their place emulates them.
emulate() {
    local name program=$build/bin/$1
    name=$(basename "$program")
    mkdir -p "$build/bin/emulated"
    if [ "$(head -c 2 "$program")" != '#!' ]; then mv -f "$program" "$build/bin/emulated/$name"; fi
    [ "$(od -An -tx1 -j18 -N2 "$build/bin/emulated/$name")" = " b7 00" ] || refuse "$name was not built for ARM"
    printf '#!/bin/sh\nexec %s -L %s %s "$@"\n' "$emulator" "$system" "$build/bin/emulated/$name" >"$program"
    chmod +x "$program"
}
emulate vantor-run
emulate vantor_selftest_virtual

# ---- what they do -------------------------------------------------------------------------------------------------------

begin "core and end-to-end tests, emulated"
mkdir -p "$work/tests"
# As the build lists them, with ten times as long for each: emulation is slow.
sed 's/\( TIMEOUT [0-9]*\)/\10/' "$build/tests/"{core,e2e}_tests*_tests.cmake >"$work/tests/CTestTestfile.cmake"
tests=0
ctest --test-dir "$work/tests" --parallel "$jobs" --output-on-failure --no-tests=error >"$work/tests.log" 2>&1 || tests=1
grep -E '^[[:space:]]*[0-9]+ - |tests passed|Total Test time' "$work/tests.log" || true
[ $tests -eq 0 ] || echo "output of the failed tests: $work/tests.log"

begin "runs, compared with this computer's own"
mkdir -p "$work/tree/build"
ln -sfn "$root/examples" "$work/tree/examples"
ln -sfn "$build/bin" "$work/tree/build/bin"
same=0
"$root/scripts/compare-runs" "$root" "$work/tree" "${compare[@]}" >"$work/runs.log" || same=$?
grep -vE '^ *same\b' "$work/runs.log" || true

cat <<END
==== not tried
Screens and windows (screen_tests) and the programs on stand-in pins (pi_tests): built only.
Real pins, camera, display: none of a Pi's hardware is here.
How late pulses are, and speed: an emulator's times tell nothing. On the Pi: vantor-selftest.
Races that show only where a processor orders memory more freely than this one does. On the Pi: ./test.sh.
Benches and sanitizers; 32-bit ARM; other releases of the C library than the two compared:
$(dpkg-query -W -f '${Version}' libc6 2>/dev/null || echo unknown) here, $(cd "$work/sys.apt/archives" && echo libc6_*) there.
END
[ $tests -eq 0 ] && [ $same -eq 0 ]
