#!/usr/bin/env bash
# Prints tables of the filter's speed, by kernel and radius, as Markdown: megapixels per second, the ratio to the plain
# routines in the same run, and nanoseconds per pair of samples. LAYOUTS (default: rgb8) names the layouts: rgb8 gray8
# rgb16 gray16. The best of REPETITIONS (9) counts.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build bench
cmake --preset bench >/dev/null
cmake --build --preset bench --target filter_bench >/dev/null

for layout in ${LAYOUTS:-rgb8}; do
    # Repetitions are interleaved and the best counts, so that other load on the machine spoils none of the ratios.
    build/bench/filter_bench --benchmark_filter="/$layout/" --benchmark_format=csv --benchmark_min_time=0.05 \
        --benchmark_repetitions=${REPETITIONS:-9} --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true 2>/dev/null |
        awk -F, -v layout="$layout" '
            /_best"/ {
                gsub(/"/, "", $1)
                split($1, place, /[\/_]/)
                kernel = place[1]; radius = place[3]
                speed[kernel, radius] = $NF
            }
            function table(title, value, form,    k, r) {
                printf "\n%s, %s\n\n| radius | 1 | 2 | 3 | 4 | 5 | 6 |\n|---|---|---|---|---|---|---|\n", layout, title
                for (k = 1; k <= count; ++k) {
                    if (!((kernels[k], 1) in speed)) continue
                    printf "| %s |", kernels[k]
                    for (r = 1; r <= 6; ++r) printf form, cell(value, kernels[k], r)
                    print ""
                }
            }
            function cell(value, kernel, radius,    n, pairs) {
                if (value == "ratio") return speed[kernel, radius] / speed["plain", radius]
                # The definition compares all pairs of 4 * radius + 1 samples, in two sets at radius 1 and four beyond.
                n = 4 * radius + 1
                pairs = (radius == 1 ? 2 : 4) * n * (n - 1) / 2
                return value == "pair" ? 1e3 / (speed[kernel, radius] * pairs) : speed[kernel, radius]
            }
            END {
                count = split("plain scalar sse2 avx2 avx512", kernels, " ")
                table("megapixels per second", "speed", " %.3g |")
                table("ratio to the plain routines", "ratio", " %.1f |")
                table("nanoseconds per pair", "pair", " %.3f |")
            }'
done
