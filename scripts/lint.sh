#!/usr/bin/env bash
# Finds includes that go upwards, and runs clang-tidy (with .clang-tidy) and cppcheck over all sources but the tests.
set -euo pipefail
cd "$(dirname "$0")/.."

echo "includes"
scripts/check-includes.sh

# The preset that knows all sources but those for Windows.
cmake --preset bench >/dev/null
# Integrations are built only where the programs are that they are for.
sources=$(git ls-files '*.cpp' ':!tests/' ':!integrations/' ':!platform/windows/')
echo "clang-tidy"
# The build's flags are GCC's: clang does not know all of them, and nests fold expressions less deeply.
# clang-tidy's counts on standard error do not matter; its status does.
xargs -P "$(nproc)" -n 4 clang-tidy -quiet -p build/bench \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument \
    --extra-arg=-fbracket-depth=512 <<<"$sources" 2>/dev/null

echo "cppcheck"
cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr \
    --error-exitcode=1 -I . --suppress=missingIncludeSystem \
    --suppressions-list=scripts/cppcheck-suppressions.txt $sources
