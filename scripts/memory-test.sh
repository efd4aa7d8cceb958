#!/usr/bin/env bash
# Peak memory of whole runs, all processes together, each shared page counted once; prints a Markdown table and fails
# above the limits: 200 MB and 64 rows for one job, 600 MB for two. Pictures of 100 and of 1000 megapixels.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null

build=$PWD/build
work=$(mktemp -d -p "${TMPDIR:-/var/tmp}")
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences

"$build/chart" draw "$work/chart.png" "$work/noisy.png"

# Kilobytes of all processes of a group.
memory_of() {
    local sum=0 process pss
    for process in $(pgrep -g "$1"); do
        pss=$(awk '$1 == "Pss:" { print $2 }' "/proc/$process/smaps_rollup" 2>/dev/null || true)
        sum=$((sum + ${pss:-0}))
    done
    echo "$sum"
}

# Sets `peak`, in MB, and `seconds`.
measure() {
    local now most=0 start
    start=$(date +%s%N)
    set -m
    "$build/hymedian" --quiet --force --radius 2 --jobs "$1" "$2" -o "$work/out.$3" &
    set +m
    local run=$!
    while kill -0 "$run" 2>/dev/null; do
        now=$(memory_of "$run")
        if [ "$now" -gt "$most" ]; then most=$now; fi
        sleep 0.02
    done
    wait "$run"
    seconds=$((($(date +%s%N) - start) / 1000000000))
    peak=$((most / 1000))
}

echo "| picture | output | jobs | peak, MB | limit, MB | s |"
echo "|---|---|---|---|---|---|"
status=0
for size in "10000 10000" "31623 31623" "1000 1000000"; do
    read -r width height <<<"$size"
    "$build/chart" tile "$work/noisy.png" "$width" "$height" "$work/in.tif"
    for output in tif png jpg; do
        # A JPEG's sides end at 65500.
        if [ "$output" = jpg ] && [ "$height" -gt 65500 ]; then continue; fi
        for jobs in 1 2; do
            limit=$((jobs == 1 ? 200 + 64 * width * 3 / 1000000 : 600))
            measure "$jobs" "$work/in.tif" "$output"
            echo "| $width × $height | $output | $jobs | $peak | $limit | $seconds |"
            if [ "$peak" -gt "$limit" ]; then status=1; fi
            rm "$work/out.$output"
        done
    done
    rm "$work/in.tif"
done
exit $status
