#!/usr/bin/env bash
# RUNS (1000) runs of hymedian are killed at random moments. Whatever stands under an output's name must be whole, the
# preferences readable, and the run after the last one must work and leave nothing else behind.
set -euo pipefail
cd "$(dirname "$0")/.."

build=$PWD/build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
mkdir "$work/pictures"
cd "$work/pictures"

"$build/chart" draw clean.png noisy.png
for radius in 1 2; do
    "$build/hymedian" --quiet --radius $radius noisy.png -o "$work/radius$radius.png"
done

# How long a whole run takes, so that kills fall all over it.
start=$(date +%s%N)
"$build/hymedian" --quiet --radius 2 noisy.png -o out.png
whole=$((($(date +%s%N) - start) / 1000))

finished=0
killed=0
for ((run = 0; run < ${RUNS:-1000}; ++run)); do
    "$build/hymedian" --quiet --force --radius $((1 + run % 2)) --jobs $((1 + run % 3)) noisy.png -o out.png &
    pid=$!
    delay=$((RANDOM * 32768 + RANDOM))
    sleep "$(awk -v d=$((delay % (whole * 6 / 5 + 1))) 'BEGIN { printf "%.6f", d / 1e6 }')"
    if kill -9 $pid 2>/dev/null; then killed=$((killed + 1)); else finished=$((finished + 1)); fi
    wait $pid 2>/dev/null || true
    if ! cmp -s out.png "$work/radius1.png" && ! cmp -s out.png "$work/radius2.png"; then
        echo "run $run: out.png is neither of the two results" >&2
        exit 1
    fi
done

"$build/hymedian" --quiet --force --radius 2 noisy.png -o out.png
cmp out.png "$work/radius2.png"
left=$(find . "$HYMEDIAN_PREFERENCES" -type f ! -name clean.png ! -name noisy.png ! -name out.png ! -name WEMBpref)
[ -z "$left" ] || { echo "left over: $left" >&2; exit 1; }
echo "$killed runs killed, $finished ended before; every output whole, nothing left over"
