#!/usr/bin/env bash
# Prints where the time of whole runs goes, as Markdown: pictures of 1 to 100 megapixels at radius 4, one that is 6000
# pixels wide at every radius, and whole runs of hymedian with one and two jobs compared with the filter alone.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build bench
cmake --preset bench >/dev/null
cmake --build --preset bench >/dev/null

build=$PWD/build/bench
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences

"$build/chart" draw "$work/chart.png" "$work/noisy.png"
picture() { "$build/chart" tile "$work/noisy.png" "$1" "$2" "$work/$1x$2.tif"; }

head=' pixels | reading, s | filtering, s | the filter alone, s | writing, s | filter, ns per pixel | its memory, MB | longest without a question, ms |'
line='---|---|---|---|---|---|---|---|'

echo "Radius 4, uncompressed RGB TIFF of 8 bits"
echo
echo "|$head"
echo "|$line"
for size in "1000 1000" "2000 2000" "4000 2500" "6000 4000" "10000 10000" "100 30000" "30000 100"; do
    # shellcheck disable=SC2086
    picture $size
    "$build/run_bench" "$work/${size/ /x}.tif" "$work/out.tif" 4
done

echo
echo "All radii"
echo
echo "| radius |$head"
echo "|---|$line"
picture 6000 1000
for radius in 1 2 3 4 5 6; do echo "| $radius $("$build/run_bench" "$work/6000x1000.tif" "$work/out.tif" $radius)"; done

# Nanoseconds of a whole run, the best of five.
whole() {
    local best=
    for _ in 1 2 3 4 5; do
        local start took
        start=$(date +%s%N)
        "$build/hymedian" --quiet --force --radius 4 --jobs "$1" "$work/6000x4000.tif" -o "$work/out.tif"
        took=$(($(date +%s%N) - start))
        if [ -z "$best" ] || [ "$took" -lt "$best" ]; then best=$took; fi
    done
    echo "$best"
}
alone=$("$build/run_bench" "$work/6000x4000.tif" "$work/out.tif" 4 | cut -d'|' -f5)
one=$(whole 1)
two=$(whole 2)
echo
awk -v alone="$alone" -v one="$one" -v two="$two" 'BEGIN {
    printf "hymedian over 6000 × 4000 at radius 4: one job %.2f s, %.2f times the filter alone; two jobs %.2f s, %.2f times as fast\n",
        one / 1e9, one / 1e9 / alone, two / 1e9, one / two
}'
