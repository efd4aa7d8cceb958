#!/usr/bin/env bash
# Builds HybridMedian.8bf, the plug-in for Windows, and the zip that has it and a short text: the same bytes every time.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh windows
cmake --preset windows >/dev/null
cmake --build --preset windows
build=$PWD/build/windows
version=$(sed -n 's/^project(hymedian VERSION \([0-9]*\.[0-9]*\).*/\1/p' CMakeLists.txt)
zip=$build/HybridMedian-$version-win64.zip

rm -rf "$build/package" "$zip"
mkdir "$build/package"
cp "$build/HybridMedian.8bf" "$build/package"
sed 's/$/\r/' docs/windows.txt >"$build/package/Read me.txt"
cd "$build/package"
chmod 644 -- *
# Zips know no earlier day.
touch -d 1980-01-01T00:00:00Z -- *
TZ=UTC zip -X -9 -q "$zip" HybridMedian.8bf "Read me.txt"
echo "${zip#"$OLDPWD/"}"
