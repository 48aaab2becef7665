#!/usr/bin/env bash
# Makes the pictures of every screen anew, into docs/screens. Needs no display: the screens' own tests draw them.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

"$root/scripts/setup.sh"
cmake --preset release >/dev/null
cmake --build --preset release --target screen_tests
pictures=$(mktemp -d)
trap 'rm -rf "$pictures"' EXIT
QT_QPA_PLATFORM=offscreen VANTOR_SCREENS=$pictures ./build/bin/screen_tests --gtest_brief=1
mkdir -p docs/screens
rm -f docs/screens/*.png
cp "$pictures"/*.png docs/screens/
echo "$(find docs/screens -name '*.png' | wc -l) pictures in docs/screens"
