#!/usr/bin/env bash
# Runs every fuzzer, or the ones named, for SECONDS_EACH (default: 600) seconds, starting from the seeds in
# tests/fuzz/seeds/. Findings and logs go to build/fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${SECONDS_EACH:-600}

scripts/install-packages.sh build fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
# The dialog never frees its line buffers, which is known; leak detection would report them every time.
declare -A more=([resource_file_fuzz]="-detect_leaks=0")
[ $# -gt 0 ] || set -- $(cd build/fuzz && ls -- *_fuzz)
for name in "$@"; do
    corpus=build/fuzz/corpus/$name
    log=build/fuzz/$name.log
    mkdir -p "$corpus"
    echo "== $name, $seconds s"
    build/fuzz/"$name" "$corpus" tests/fuzz/seeds/"$name" -max_total_time="$seconds" -max_len=65536 \
        -artifact_prefix=build/fuzz/"$name"- -print_final_stats=1 ${more[$name]:-} 2>"$log" ||
        { grep -E "ERROR|SUMMARY|Test unit" "$log" >&2; echo "$name found something, see $log" >&2; exit 1; }
    grep -E "stat::number_of_executed_units|DONE" "$log"
done
