#!/usr/bin/env bash
# Includes that go upwards, and static analysis of all sources but the tests: clang-tidy with .clang-tidy, and cppcheck.
set -euo pipefail
cd "$(dirname "$0")/.."

echo "includes"
scripts/check-includes.sh

# The one that knows of all sources.
cmake --preset bench >/dev/null
sources=$(git ls-files '*.cpp' ':!tests/')
echo "clang-tidy"
# The build's flags are GCC's: clang does not know all of them, and nests fold expressions less deeply.
# What clang-tidy counts on standard error is of no interest; its status is.
xargs -P "$(nproc)" -n 4 clang-tidy -quiet -p build/bench \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument \
    --extra-arg=-fbracket-depth=512 <<<"$sources" 2>/dev/null

echo "cppcheck"
cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr \
    --error-exitcode=1 -I . --suppress=missingIncludeSystem \
    --suppressions-list=scripts/cppcheck-suppressions.txt $sources
