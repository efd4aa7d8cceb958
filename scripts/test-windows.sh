#!/usr/bin/env bash
# Usage: test-windows.sh [COUNT [SEED]]. Builds the plug-in for Windows with its tests and runs them in Wine: the suites,
# and the module of the zip in a host that shares nothing with it, where it must make the Linux module's pixels of COUNT
# random documents.
set -euo pipefail
cd "$(dirname "$0")/.."

count=${1:-100} RANDOM=${2:-1}
scripts/install-packages.sh build windows windows-test
build=$PWD/build/windows
unset HYMEDIAN_PREFERENCES HYMEDIAN_KERNEL
export WINEPREFIX=$build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=" LC_ALL=C.UTF-8
wine=/usr/lib/wine/wine64

scripts/build-windows.sh
folder="$build/Filter für Bilder"
module="$folder/HybridMedian.8bf"
mkdir -p "$folder"
cp "$build/HybridMedian.8bf" "$folder"
scripts/check-stack-alignment.sh "$module"

# The same objects, but for those in which faults are injected, and the tests.
cmake -S /usr/src/googletest -B "$build-googletest" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_GMOCK=OFF \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/x86_64-w64-mingw32.cmake" -DCMAKE_INSTALL_PREFIX="$build-googletest/installed" >/dev/null
cmake --build "$build-googletest" --target install >/dev/null
cmake --preset windows-test -DCMAKE_FIND_ROOT_PATH="/usr/x86_64-w64-mingw32;$build-googletest/installed" >/dev/null
cmake --build --preset windows-test
cmake --preset test >/dev/null
cmake --build --preset test --target foreign_host HybridMedian resources

work=$(mktemp -d)
mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1600x1200x24 3>"$work/display" 2>/dev/null &
trap 'kill %1; rm -rf "$work"' EXIT
DISPLAY=:$(head -1 "$work/display")
export DISPLAY

# Wine asks for the resolution when it starts.
for resolution in 96 192; do
    "$wine" reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d $resolution /f >/dev/null
    /usr/lib/wine/wineserver64 -k -w || true
    # Memory and files fail alike on every system; tests of that take minutes in Wine. And the C++ library has no paths
    # of more than 260 characters there, to make folders with.
    tests='-Faults.*:HostileHost.*:Paths.LongerThan*'
    [ $resolution = 96 ] || tests='WindowsDialog.GivesWhat*:WindowsDialog.Fits*'
    "$wine" "$build/system_test.exe" --gtest_brief=1 --gtest_filter="$tests"
done
"$wine" "$build/other_filter_test.exe" --gtest_brief=1

# Hosts find the module by its property list and call the entry that it names; they show the dialog, take what is typed,
# and repeat it.
cd "$work"
windows_module=$("$wine" winepath -w "$module" | tr -d '\r')
run() {
    "$wine" "$build/foreign_host.exe" "$windows_module" "$@" >told || true
    tail -1 told | tr -d '\r'
}
expect() {
    if [ "$1" != "$2" ]; then
        printf 'expected %s\n     but %s\n' "$2" "$1" >&2
        cat told >&2
        exit 1
    fi
}
expect "$(run play=1 window=1 keys=1351 | cut -d' ' -f 1,2,5,6)" "result 0 radius 3"
grep -q '^dialog shown, host disabled' told
grep -q "^name 'Hybrid Median\.\.\.'" told
expect "$(run play=1 window=1 keys=27 | cut -d' ' -f 1,2,5,6)" "result -128 radius 2"
expect "$(run scripting=0 radius=-1 | cut -d' ' -f 1,2,4)" "$(run radius=3 | cut -d' ' -f 1,2,4)"
# Without a display there is no dialog, but everything else.
expect "$(DISPLAY= run play=1 window=1 | cut -d' ' -f 1,2)" "result -128"

# A path of more than 260 characters, a drive that is not there, and no profile at all.
for place in "C:\\$(printf 'long%.0s' {1..50})\\$(printf 'path%.0s' {1..50})" 'Q:\nowhere' ''; do
    result=$(export HYMEDIAN_PREFERENCES=$place APPDATA= USERPROFILE=; run space=9000 | cut -d' ' -f 1,2)
    [[ "$result" == "result 0" || ("$place" != C:* && "$result" == "result -"*) ]] || expect "$result" "a code"
done

# Sets each variable named to one of the values after its "=".
draw() {
    local choice values
    for choice in "$@"; do
        read -ra values <<<"${choice#*=}"
        printf -v "${choice%%=*}" %s "${values[RANDOM % ${#values[@]}]}"
    done
}

export HYMEDIAN_PREFERENCES=$work/preferences
for ((i = 1; i <= count; ++i)); do
    # Grey, RGB, CMYK and Lab of 8 and of 16 bits, with and without alpha.
    draw picture="1:1 1:2 3:3 3:4 4:4 4:5 9:3 9:4 10:1 10:2 11:3 11:4 13:4 13:5 12:3 12:4" kernel="scalar sse2 avx2 avx512" \
        width="1 7 40 133" height="1 5 30 67" mask="0 0 1 3" part="0 1" radius="0 1 2 3 4" advance="0 1" space="2147483647 9000"
    switches="mode=${picture%:*} planes=${picture#*:} width=$width height=$height seed=$i mask=$mask radius=$radius"
    switches+=" advance=$advance space=$space"
    [ $((part * width / 40 * height / 5)) = 0 ] || switches+=" top=1 left=2 bottom=$((height - 1)) right=33"
    HYMEDIAN_KERNEL=$kernel "$OLDPWD/build/test/foreign_host" "$OLDPWD/build/test/HybridMedian.plugin/HybridMedian.so" $switches out=linux.raw >linux
    expect "$(HYMEDIAN_PREFERENCES= HYMEDIAN_KERNEL=$kernel run $switches out=windows.raw)" "$(cat linux)"
    cmp linux.raw windows.raw || { echo "$kernel $switches" >&2; exit 1; }
done
echo "$count documents: the Linux module's pixels"
