#!/bin/sh
# Makes the moving picture at the top of README.md: a demonstration, played in no time. Needs ImageMagick
# (Debian: imagemagick) and the program of the gallery: cmake --build build/release --target gallery
set -eu
cd "$(dirname "$0")/.."
FRAMES=$(mktemp -d)
trap 'rm -rf "$FRAMES"' EXIT
build/release/bin/gallery --frames "$FRAMES"
find "$FRAMES" -name 'frame-*.png' | sort | awk 'NR % 6 == 1' |
    convert -delay 40 -loop 0 @- -resize 720x +dither -colors 64 -layers OptimizeTransparency docs/run.gif
SIZE=$(stat -c %s docs/run.gif)
echo "docs/run.gif: $SIZE bytes"
test "$SIZE" -lt 1000000
