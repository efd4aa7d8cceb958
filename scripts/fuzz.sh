#!/usr/bin/env bash
# Runs every fuzzer for SECONDS_EACH (600) seconds, from the seeds in tests/fuzz/seeds/. Findings go to build/fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${SECONDS_EACH:-600}

scripts/install-packages.sh build fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
for fuzzer in build/fuzz/*_fuzz; do
    name=$(basename "$fuzzer")
    corpus=build/fuzz/corpus/$name
    mkdir -p "$corpus"
    echo "== $name, $seconds s"
    "$fuzzer" "$corpus" tests/fuzz/seeds/"$name" -max_total_time="$seconds" -max_len=65536 \
        -artifact_prefix=build/fuzz/ -print_final_stats=1 2>&1 | grep -E "ERROR|SUMMARY|stat::number_of_executed_units|Done" ||
        { echo "$name found something, see build/fuzz/" >&2; exit 1; }
done
