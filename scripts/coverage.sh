#!/usr/bin/env bash
# Line coverage of our own folders by all tests; fails below 90 % in total. Figures for each file go to
# build/coverage/files.csv. Killed processes leave no counts.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build test coverage
cmake --preset coverage >/dev/null
# Counts of an earlier build no longer match. They are deleted again after the build, which runs the tests to list them.
find build/coverage -name '*.gcda' -delete
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage >build/coverage/tests.log || { tail -30 build/coverage/tests.log >&2; exit 1; }

folders="platform photoshop colors toolkit imagestore log settings median dialog hybridmedian plugin resources host samples"
gcovr --root . --filter "^(${folders// /|})/" --csv build/coverage/files.csv build/coverage
awk -F, -v order="$folders" '
    NR > 1 { split($1, path, "/"); lines[path[1]] += $2; covered[path[1]] += $3; all += $2; hit += $3 }
    END {
        count = split(order, folder, " ")
        for (i = 1; i <= count; ++i) {
            if (lines[folder[i]] > 0) {
                printf "%-12s %6d lines %6.1f %%\n", folder[i], lines[folder[i]], 100 * covered[folder[i]] / lines[folder[i]]
            }
        }
        printf "%-12s %6d lines %6.1f %%\n", "total", all, 100 * hit / all
        exit hit / all < 0.9
    }' build/coverage/files.csv
