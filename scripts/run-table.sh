#!/usr/bin/env bash
# Prints where the time of whole runs goes, as Markdown: pictures of 1 to 100 megapixels at radius 4, one that is 6000
# pixels wide at every radius, and whole runs of hymedian over four formats compared with their parts.
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

# Seconds of a whole run of JOBS over FORMAT at RADIUS, the best of five; WebP takes so long that one is enough.
whole() {
    local best= start took repeats="1 2 3 4 5"
    [ "$2" != webp ] || repeats=1
    for _ in $repeats; do
        start=$(date +%s%N)
        "$build/hymedian" --quiet --force --radius "$3" --jobs "$1" "$work/6000x4000.$2" -o "$work/out.$2"
        took=$(($(date +%s%N) - start))
        if [ -z "$best" ] || [ "$took" -lt "$best" ]; then best=$took; fi
    done
    awk -v took="$best" 'BEGIN { printf "%.3f", took / 1e9 }'
}

echo
echo "hymedian over 6000 × 4000. \"Bound\" is the longest of reading, writing and half of filtering; \"all work\" is half"
echo "of the sum of the three, which two processors cannot go below."
echo
echo "| format | radius | reading, s | filtering, s | writing, s | one job, s | two jobs, s | of one | of the bound | of all work |"
echo "|---|---|---|---|---|---|---|---|---|---|"
for format in tif png jpg webp; do
    [ $format = tif ] || "$build/hymedian" --quiet --radius 1 "$work/6000x4000.tif" -o "$work/6000x4000.$format"
    for radius in 2 4; do
        row=$("$build/run_bench" "$work/6000x4000.$format" "$work/out.$format" $radius)
        one=$(whole 1 $format $radius)
        two=$(whole 2 $format $radius)
        awk -F'|' -v format=$format -v radius=$radius -v one="$one" -v two="$two" -v row="$row" 'BEGIN {
            split(row, part, "|"); reading = part[3]; filtering = part[4]; writing = part[6]
            bound = filtering / 2
            if (reading > bound) bound = reading
            if (writing > bound) bound = writing
            printf "| %s | %d | %.2f | %.2f | %.2f | %.2f | %.2f | 1 / %.2f | %.2f | %.2f |\n", format, radius, reading, filtering,
                writing, one, two, one / two, two / bound, two * 2 / (reading + filtering + writing)
        }'
    done
done
