#!/usr/bin/env bash
# Usage: run_paths_test.sh BUILD. Checks that the programs and libraries of a build folder, and of its installation, look
# for libraries in the system's places alone: they would work nowhere else, or take them from wherever they are started.
set -euo pipefail

build=$1
installed=$(mktemp -d)
trap 'rm -rf "$installed"' EXIT
cmake --install "$build" --prefix "$installed" >/dev/null

# Build folders of other presets may be inside this one. Only ELF files produce lines, as FILE: ENTRIES.
run_paths() {
    find "$1" -mindepth 1 -type d -exec test -e {}/CMakeCache.txt \; -prune -o -type f \( -perm -u+x -o -name '*.so*' \) -print0 |
        { LC_ALL=C xargs -0 readelf -d /dev/null 2>/dev/null || true; } |
        sed -n -e 's/^File: //; t file' -e 's/.*(\(NEEDED\|RPATH\|RUNPATH\)).*\[\(.*\)\]$/\1 \2/; t entry' -e d -e ':file h; d' -e ':entry G; s/\(.*\)\n\(.*\)/\2: \1/p'
}

status=0
for tree in "$build" "$installed"; do
    entries=$(run_paths "$tree")
    for file in hymedian HybridMedian.so; do
        grep -q "/$file: NEEDED libc.so" <<<"$entries" || { echo "not looked at: $file in $tree" >&2; status=1; }
    done
    if wrong=$(grep -E ': (RPATH|RUNPATH)' <<<"$entries"); then
        echo "$wrong" >&2
        status=1
    fi
done
exit $status
