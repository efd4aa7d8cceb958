#!/usr/bin/env bash
# Compares the GEGL operation and the plug-in for GIMP with the median filters that these programs have, at the same
# diameter, on 12 megapixels of 8-bit RGB. Prints seconds as Markdown: what a run takes longer with the filter than without.
# Builds what scripts/test-integrations.sh builds. THREADS (default: "1 2") are the numbers of threads; the best of
# REPETITIONS (3) counts.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build gegl gimp
cmake --preset release >/dev/null
cmake --build --preset release --target chart >/dev/null
cmake --preset integrations -DHYMEDIAN_GEGL=ON -DHYMEDIAN_GIMP=ON >/dev/null
cmake --build --preset integrations --target hymedian_gegl hymedian_gimp2 >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build/chart draw "$work/chart.png" "$work/noisy.png"
build/chart tile "$work/noisy.png" 4000 3000 "$work/picture.tif"

export GEGL_PATH=$PWD/build/integrations/gegl:$(pkg-config --variable=pluginsdir gegl-0.4) GEGL_USE_OPENCL=no
export GIMP2_DIRECTORY=$work/profile
mkdir -p "$GIMP2_DIRECTORY/plug-ins"
for plug_in in script-fu file-tiff; do
    ln -s "$(pkg-config --variable=gimplibdir gimp-2.0)/plug-ins/$plug_in" "$GIMP2_DIRECTORY/plug-ins/"
done
ln -s "$PWD/build/integrations/gimp2/plug-ins/hymedian" "$GIMP2_DIRECTORY/plug-ins/"

seconds() {
    local TIMEFORMAT=%R
    for ((i = 0; i < ${REPETITIONS:-3}; ++i)); do { time "$@" >/dev/null 2>&1; } 2>&1; done | sort -n | head -1
}
difference() { awk -v with="$1" -v without="$2" 'BEGIN { printf "%.2f", with - without }'; }

with_gegl() { gegl "$work/picture.tif" -- "$@" gegl:tiff-save path="$work/out.tif" bitdepth=8; }
with_gimp() {
    gimp-console -i -d -f -s -c -b "(let* ((image (car (gimp-file-load RUN-NONINTERACTIVE \"$work/picture.tif\" \"p\")))
        (layer (car (gimp-image-get-active-layer image)))) $*)" -b '(gimp-quit 1)'
}

echo "| threads | filter | 3 × 3 | 5 × 5 | 7 × 7 | 9 × 9 |"
echo "|---|---|---|---|---|---|"
for threads in ${THREADS:-1 2}; do
    export GEGL_THREADS=$threads
    printf '(plug-in-path "${gimp_dir}/plug-ins")\n(num-processors %s)\n' $threads >"$GIMP2_DIRECTORY/gimprc"
    gegl_without=$(seconds with_gegl gegl:nop)
    with_gimp 0 >/dev/null 2>&1
    gimp_without=$(seconds with_gimp 0)
    rows=("hymedian:hybrid-median in GEGL" "gegl:median-blur" "Hybrid Median in GIMP" "Median Blur in GIMP")
    for radius in 1 2 3 4; do
        rows[0]+=" | $(difference "$(seconds with_gegl hymedian:hybrid-median radius=$radius)" "$gegl_without")"
        rows[1]+=" | $(difference "$(seconds with_gegl gegl:median-blur neighborhood=square radius=$radius)" "$gegl_without")"
        rows[2]+=" | $(difference "$(seconds with_gimp "(plug-in-hymedian RUN-NONINTERACTIVE image layer $radius)")" "$gimp_without")"
        rows[3]+=" | $(difference "$(seconds with_gimp "(plug-in-median-blur RUN-NONINTERACTIVE image layer $radius 50)")" "$gimp_without")"
    done
    printf "| $threads | %s |\n" "${rows[@]}"
done
