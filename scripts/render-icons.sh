#!/usr/bin/env bash
# Renders src/res/svg/*.svg to the PNG files of the program, src/res/*.png. Needed only after a drawing has changed:
# the PNG files are part of the tree. Wants rsvg-convert (Debian: librsvg2-bin).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../src/res"
if ! command -v rsvg-convert >/dev/null; then
    echo "render-icons: please install librsvg2-bin" >&2
    exit 1
fi
for drawing in svg/*.svg; do
    rsvg-convert --output "$(basename "$drawing" .svg).png" "$drawing"
done
