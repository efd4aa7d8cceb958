#!/usr/bin/env bash
# Builds hymedian and filters the noisy test chart, or the pictures given, at radius 1. Results go to out/.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$here/build
out=$here/out

"$here/scripts/install-packages.sh" build
(cd "$here" && cmake --preset release >/dev/null && cmake --build --preset release --target hymedian chart)
mkdir -p "$out"

# Filters $1 into $2, with both side by side in $3.
clean() {
    "$build/hymedian" --radius 1 --force "$1" -o "$2" --compare "$3"
}

if [ $# -eq 0 ]; then
    "$build/chart" draw "$out/chart.png" "$out/noisy.png"
    start=$(date +%s%N)
    clean "$out/noisy.png" "$out/clean.png" "$out/side-by-side.png"
    milliseconds=$((($(date +%s%N) - start) / 1000000))
    echo "noisy picture:  $out/noisy.png"
    echo "clean picture:  $out/clean.png"
    echo "side by side:   $out/side-by-side.png"
    echo "time:           $milliseconds ms"
    echo "PSNR before:    $("$build/chart" psnr "$out/chart.png" "$out/noisy.png") dB"
    echo "PSNR after:     $("$build/chart" psnr "$out/chart.png" "$out/clean.png") dB"
    exit
fi

status=0
for picture in "$@"; do
    name=$(basename "$picture")
    result=$out/${name%.*}-clean.${name##*.}
    if clean "$picture" "$result" "$out/${name%.*}-side-by-side.png"; then
        echo "clean picture:  $result"
        echo "side by side:   $out/${name%.*}-side-by-side.png"
    else
        status=1
    fi
done
exit $status
