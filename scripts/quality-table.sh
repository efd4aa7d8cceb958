#!/usr/bin/env bash
# Prints what the filter achieves, as Markdown: the PSNR of damaged pictures before and after, and the share of thin lines
# and letters that stays.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release --target hymedian chart >/dev/null

chart=$PWD/build/chart
hymedian=$PWD/build/hymedian
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
cd "$work"

# Writes NAME-1.png to NAME-6.png, and NAME-median.png.
filter() {
    for radius in 1 2 3 4 5 6; do "$hymedian" --quiet --force --radius $radius "$1.png" -o "$1-$radius.png"; done
    "$chart" median "$1.png" "$1-median.png"
}

# One cell for each result: what chart says by COMMAND of CLEAN and it.
cells() {
    for result in "$3"-{1,2,3,4,5,6,median}; do printf ' %s |' "$("$chart" "$1" "$2.png" "$result.png")"; done
    echo
}

head=' 1 | 2 | 3 | 4 | 5 | 6 | 3 × 3 median |'
line='---|---|---|---|---|---|---|'

# A row: TITLE, CLEAN, KIND and AMOUNT of the damage.
psnr_row() {
    "$chart" damage "$3" "$4" "$2.png" damaged.png
    filter damaged
    printf '| %s | %s |' "$1" "$("$chart" psnr "$2.png" damaged.png)"
    cells psnr "$2" damaged
}

"$chart" draw chart.png noisy.png
"$chart" leaves leaves.png
for clean in leaves chart; do
    printf 'PSNR in dB, %s, by radius\n\n| damage | before |%s\n|---|---|%s\n' "$clean" "$head" "$line"
    psnr_row 'none' $clean impulses 0
    psnr_row 'impulses, 5 %' $clean impulses 5
    psnr_row 'impulses, 20 %' $clean impulses 20
    psnr_row 'Gaussian, σ 10' $clean gaussian 10
    psnr_row 'Gaussian, σ 25' $clean gaussian 25
    psnr_row '600 blobs of 3 × 3' $clean blobs 600
    psnr_row '20 scratches, upright' $clean scratches 20
    psnr_row '20 scratches, slanted' $clean slanted-scratches 20
    echo
done

printf 'Letters with 5 %% of impulses: PSNR in dB, by radius\n\n| strokes | before |%s\n|---|---|%s\n' "$head" "$line"
for stroke in 1 2 3 4; do
    "$chart" page $stroke page$stroke.png
    psnr_row "$stroke px" page$stroke impulses 5
done

printf '\nLetters without noise: percent of their pixels that stay, by radius\n\n| strokes |%s\n|---|%s\n' "$head" "$line"
for stroke in 1 2 3 4; do
    filter page$stroke
    printf '| %s px |' $stroke
    cells kept page$stroke page$stroke
done

for width in 1 2 3; do
    printf '\nLines of %s px: percent of their pixels that stay, by radius\n\n| angle |%s\n|---|%s\n' $width "$head" "$line"
    for step in "1 0" "8 -1" "4 -1" "2 -1" "3 -2" "1 -1" "1 -2" "0 1" "1 3" "1 1"; do
        # shellcheck disable=SC2086
        "$chart" lines $step $width lines.png
        filter lines
        awk -v right="${step% *}" -v down="${step#* }" 'BEGIN { angle = atan2(0 - down, right) * 180 / atan2(0, -1)
            printf "| %.0f° |", angle < 0 ? angle + 180 : angle }'
        cells kept lines lines
    done
done
