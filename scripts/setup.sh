#!/usr/bin/env bash
# Installs what building and testing need, by package name; does nothing, quickly, when nothing is missing.
# Debian 12, or Raspberry Pi OS of the same age. With --missing it only tells what it would install, a name a line.
set -euo pipefail

packages=(
    cmake ninja-build g++       # the build
    ccache                      # makes a second build quick
    qt6-base-dev                # Core, Concurrent, Gui and their build tools; brings the OpenGL headers that Gui asks for
    libopencv-core-dev libopencv-imgproc-dev        # outlines of texts and pictures
    libopencv-imgcodecs-dev libopencv-videoio-dev   # picture files, the camera
    libgtest-dev                # tests
    libbenchmark-dev            # bench/
    clang-format shellcheck     # the checks of the layout and of the scripts
    clang clang-tidy            # the check of the functions' size
    fonts-dejavu-core           # the one font of pictures and screens
)

if ! command -v dpkg-query >/dev/null; then
    echo "setup: no dpkg on this system; please install what stands for: ${packages[*]}" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0
if [ "${1-}" = --missing ]; then
    printf '%s\n' "${missing[@]}"
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "setup: please install as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "setup: installing ${missing[*]}" >&2
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
