#!/usr/bin/env bash
# Builds everything and runs all tests. PRESET (default: test) is a preset of CMakePresets.json with tests.
set -euo pipefail
cd "$(dirname "$0")"

preset=${1:-test}
scripts/install-packages.sh build test
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
