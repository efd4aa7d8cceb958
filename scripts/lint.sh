#!/usr/bin/env bash
# Finds includes that go upwards, and runs clang-tidy (with .clang-tidy) and cppcheck over all sources but the tests.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build bench lint windows

echo "includes"
scripts/check-includes.sh

# The preset that knows all sources but those for Windows.
cmake --preset bench >/dev/null
# Integrations are built only where the programs are that they are for.
sources=$(git ls-files '*.cpp' ':!tests/' ':!integrations/' ':!platform/windows/')
echo "clang-tidy"
# Usage: tidy FOLDER [OPTION]... <FILES. The build's flags are GCC's: clang does not know all of them, and nests fold
# expressions less deeply. clang-tidy's counts on standard error do not matter; its status does.
tidy() {
    xargs -P "$(nproc)" -n 4 clang-tidy -quiet -p "$@" \
        --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument \
        --extra-arg=-fbracket-depth=512 2>/dev/null
}
tidy build/bench <<<"$sources"
# The cross compiler's headers, and without a flag that clang refuses.
cmake --preset windows >/dev/null
mkdir -p build/lint
sed 's/-fno-keep-inline-dllexport//g' build/windows/compile_commands.json >build/lint/compile_commands.json
headers=$(x86_64-w64-mingw32-g++-posix -print-file-name=include)
git ls-files 'platform/windows/*.cpp' | tidy build/lint --extra-arg=--target=x86_64-w64-mingw32 \
    --extra-arg=-isystem"$headers/c++" --extra-arg=-isystem"$headers/c++/x86_64-w64-mingw32"

echo "cppcheck"
check=(cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr
    --error-exitcode=1 -I . --suppress=missingIncludeSystem --suppressions-list=scripts/cppcheck-suppressions.txt)
"${check[@]}" $sources
"${check[@]}" --platform=win64 platform/windows/*.cpp
