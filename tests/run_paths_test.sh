#!/usr/bin/env bash
# Usage: run_paths_test.sh BUILD. Checks where the programs and libraries of a build folder, and of its installation,
# look for libraries. An empty or relative entry would take them from whatever folder the program is started in.
set -euo pipefail

build=$1
installed=$(mktemp -d)
trap 'rm -rf "$installed"' EXIT
cmake --install "$build" --prefix "$installed" >/dev/null

# Build folders of other presets may be inside this one. Only ELF files produce lines, as FILE: ENTRIES.
run_paths() {
    find "$1" -mindepth 1 -type d -exec test -e {}/CMakeCache.txt \; -prune -o -type f \( -perm -u+x -o -name '*.so*' \) -print0 |
        { LC_ALL=C xargs -0 readelf -d /dev/null 2>/dev/null || true; } |
        sed -n -e 's/^File: //; t file' -e 's/.*(R\(UN\)\?PATH).*\[\(.*\)\]$/\2/; t path' -e d -e ':file h; d' -e ':path G; s/\(.*\)\n\(.*\)/\2: \1/p'
}

entry='(\$ORIGIN|/)[^:]*'
status=0
for tree in "$build" "$installed"; do
    paths=$(run_paths "$tree")
    # Files that need libplatform.so must be among those read, or nothing was checked.
    for file in hymedian HybridMedian.so; do
        grep -q "/$file: " <<<"$paths" || { echo "no run path: $file in $tree" >&2; status=1; }
    done
    if wrong=$(grep -vE ": $entry(:$entry)*\$" <<<"$paths"); then
        echo "empty or relative entries: $wrong" >&2
        status=1
    fi
done
exit $status
