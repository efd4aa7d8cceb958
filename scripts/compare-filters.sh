#!/usr/bin/env bash
# Compares hymedian with the alternatives that are installed: median filters of the same diameter on the same picture,
# each on one thread. Prints seconds of processor time as Markdown. Install the ones you want to compare with:
# python3-opencv, graphicsmagick, imagemagick, gegl.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null

build=$PWD/build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
export OMP_NUM_THREADS=1 MAGICK_THREAD_LIMIT=1 GEGL_THREADS=1

# 24 megapixels, tiled with the noisy chart.
"$build/chart" draw "$work/chart.png" "$work/noisy.png"
"$build/chart" tile "$work/noisy.png" 6000 4000 "$work/picture.tif"

# The best of three runs; anything that takes over ten seconds only runs once.
seconds() {
    local best='' took
    local TIMEFORMAT='%3U %3S'
    for _ in 1 2 3; do
        took=$({ time "$@" >/dev/null 2>&1 || echo failed; } 2>&1)
        case $took in *failed*) echo failed; return ;; esac
        best=$(awk -v best="$best" '{ s = $1 + $2; if (best != "" && best < s) s = best; printf "%.2f", s }' <<<"$took")
        if awk -v s="$best" 'BEGIN { exit !(s > 10) }'; then break; fi
    done
    echo -n "$best"
}

# Debian's module needs Debian's interpreter.
python=/usr/bin/python3

opencv_seconds() {
    "$python" - "$work/picture.tif" "$1" <<'PYTHON'
import sys, time, cv2
cv2.setNumThreads(1)
picture = cv2.imread(sys.argv[1])
best = None
for _ in range(3):
    start = time.process_time()
    cv2.medianBlur(picture, int(sys.argv[2]))
    took = time.process_time() - start
    best = took if best is None else min(best, took)
print(f"{best:.2f}")
PYTHON
}

echo "| diameter | hymedian, whole run | OpenCV medianBlur, filter alone | GraphicsMagick -median | ImageMagick -statistic Median | GEGL median-blur |"
echo "|---|---|---|---|---|---|"
for radius in 1 2 3 4; do
    diameter=$((2 * radius + 1))
    row="| $diameter | $(seconds "$build/hymedian" --quiet --force --jobs 1 --radius $radius "$work/picture.tif" -o "$work/out.tif")"
    if "$python" -c 'import cv2' 2>/dev/null; then row+=" | $(opencv_seconds $diameter)"; else row+=" | not installed"; fi
    if command -v gm >/dev/null; then
        row+=" | $(seconds gm convert "$work/picture.tif" -median $radius "$work/out.tif")"
    else row+=" | not installed"; fi
    if convert -version 2>/dev/null | grep -q ImageMagick; then
        row+=" | $(seconds convert -limit memory 4GiB "$work/picture.tif" -statistic Median ${diameter}x${diameter} "$work/out.tif")"
    else row+=" | not installed"; fi
    if command -v gegl >/dev/null; then
        row+=" | $(seconds gegl "$work/picture.tif" -o "$work/out.tif" -- median-blur radius=$radius)"
    else row+=" | not installed"; fi
    echo "$row |"
done
