#!/usr/bin/env bash
# Formats all C and C++ sources; with --check, only reports whether they are formatted.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = --check ]; then
    git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror
else
    git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format -i
fi
