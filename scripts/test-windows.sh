#!/usr/bin/env bash
# Usage: test-windows.sh [COUNT [SEED]]. Builds the plug-in for Windows with its tests and runs them in Wine: the suites,
# and the module of the zip in a host that shares nothing with it, where it must make the Linux module's pixels of COUNT
# random documents.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/draw.sh

count=${1:-100} RANDOM=${2:-1}
scripts/install-packages.sh build windows windows-test
build=$PWD/build/windows
unset HYMEDIAN_PREFERENCES HYMEDIAN_KERNEL
export WINEPREFIX=$build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=" LC_ALL=C.UTF-8
wine=/usr/lib/wine/wine64 wineserver=/usr/lib/wine/wineserver64

scripts/build-windows.sh
folder="$build/Filter für Bilder"
module="$folder/HybridMedian.8bf"
mkdir -p "$folder"
cp "$build/package/HybridMedian.8bf" "$folder"
scripts/check-stack-alignment.sh "$module"

# The same objects, but for those in which faults are injected, and the tests.
cmake -S /usr/src/googletest -B "$build-googletest" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_GMOCK=OFF \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/x86_64-w64-mingw32.cmake" -DCMAKE_INSTALL_PREFIX="$build-googletest/installed" >/dev/null
cmake --build "$build-googletest" --target install >/dev/null
cmake --preset windows-test -DGTest_DIR="$build-googletest/installed/lib/cmake/GTest" >/dev/null
cmake --build --preset windows-test --target system_test other_filter_test foreign_host
cmake --preset test >/dev/null
cmake --build --preset test --target foreign_host HybridMedian resources
linux_host=$PWD/build/test/foreign_host linux_module=$PWD/build/test/HybridMedian.plugin/HybridMedian.so

work=$(mktemp -d)
mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1600x1200x24 3>"$work/display" 2>/dev/null &
server=$!
leave() {
    timeout 30 "$wineserver" -k || true
    umount "$work/small" 2>/dev/null || true
    kill $server
    rm -rf "$work"
}
trap leave EXIT
DISPLAY=:$(timeout 30 head -1 "$work/display")
export DISPLAY

# Without a window manager, Wine would wait for the answer of one at each window.
timeout 120 "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
# Wine asks for the resolution when it starts.
for resolution in 96 192; do
    timeout 60 "$wine" reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d $resolution /f >/dev/null
    timeout 60 "$wineserver" -k -w || true
    # The C++ library has no paths of more than 260 characters there, to make folders with.
    tests='-*DiskFaults.*:*HostileHost.*:Paths.LongerThan*'
    [ $resolution = 96 ] || tests='WindowsDialog.GivesWhat*:WindowsDialog.Fits*:WindowsDialog.ThePicture*'
    timeout 600 "$wine" "$build/system_test.exe" --gtest_brief=1 --gtest_filter="$tests"
done
# A run locks the folder of its files a few times, and Wine takes a millisecond for each; all of these take ten minutes.
timeout 120 "$wine" "$build/system_test.exe" --gtest_brief=1 --gtest_filter='*DiskFaults.*/RGBOnDisk:*HostileHost.*/0'
timeout 60 "$wine" "$build/other_filter_test.exe" --gtest_brief=1

cd "$work"
# Wine's name for it.
windows_path() {
    printf '%s' "Z:${1//\//\\}"
}
windows_module=$(windows_path "$module")
# The last line that a host says. One that shows a box where it should not is ended.
run() {
    timeout 60 "$wine" "$build/foreign_host.exe" "$windows_module" "$@" >told || echo "ended with $?" >>told
    tail -1 told | tr -d '\r'
}
on_linux() {
    "$linux_host" "$linux_module" "$@"
}
expect() {
    if [ "$1" != "$2" ]; then
        printf 'expected %s\n     but %s\n' "$2" "$1" >&2
        cat told >&2
        exit 1
    fi
}

# One file that needs nothing which Windows does not have, and tells its version.
libraries=$(x86_64-w64-mingw32-objdump -p "$module" | sed -n 's/^.*DLL Name: //p' | sort | xargs)
[ "$libraries" = "GDI32.dll KERNEL32.dll USER32.dll msvcrt.dll" ] || { echo "needs $libraries" >&2; exit 1; }
version=$(sed -n 's/^project(hymedian VERSION \([0-9.]*\).*/\1/p' "$OLDPWD/CMakeLists.txt")
strings -el "$module" | grep -x -A1 ProductVersion | grep -qFx "$version"

# Hosts find the module by its property list and call the entry that it names; they show the dialog, take what is typed,
# and repeat it.
expect "$(run play=1 window=1 keys=1351 | cut -d' ' -f 1,2,5,6)" "result 0 radius 3"
expect "$(head -9 told | tr -d '\r')" "kind 4d464238
name 'Hybrid Median...'
catg 'Noise'
vers 00000400
prty 00000000
mode 587cc000
enbl 'in (PSHOP_ImageMode, GrayScaleMode, RGBMode, CMYKMode, LabMode, Gray16Mode, RGB48Mode, Lab48Mode, CMYK64Mode, RGB96Mode, Gray32Mode)' 0
fici 01010000 01010000 01010000 01010000 01010000 01010000 01010000
8664 'PluginMain' 0"
grep -q '^dialog shown, host disabled' told
expect "$(run play=1 window=1 keys=27 | cut -d' ' -f 1,2,5,6)" "result -128 radius 2"
expect "$(run scripting=0 radius=-1 | cut -d' ' -f 1,2,4)" "$(run radius=3 | cut -d' ' -f 1,2,4)"
# Without a display there is no dialog, but everything else.
expect "$(DISPLAY= run play=1 window=1 | cut -d' ' -f 1,2)" "result -128"

# Preferences below a path of more than 260 characters, on a full disk, and where nothing may be written: with images of
# which all fit memory, and with some that need files there.
mkdir small
mount -t tmpfs -o size=64k,nr_inodes=8 small small 2>/dev/null || echo "Mounting is not permitted here: no full disk was tried."
head -c 64k /dev/zero >small/filler || true
long=$work/$(printf 'long%.0s' {1..50})/$(printf 'path%.0s' {1..50})
for place in "$long" "$work/small" /sys/kernel/hymedian; do
    for space in 2147483647 9000; do
        expect "$(HYMEDIAN_PREFERENCES=$(windows_path "$place") run space=$space)" \
            "$(HYMEDIAN_PREFERENCES=$place on_linux space=$space | tail -1)"
    done
done
[ -f "$long/WEMBpref" ]
# On a drive that is not there, and nowhere. Wine tells every program that it starts where its profile is.
expect "$(HYMEDIAN_PREFERENCES='Q:\nowhere' run space=9000 | cut -d' ' -f 1,2)" "result -35"
cp "$build/foreign_host.exe" "$module" .
printf 'set APPDATA=\r\nset USERPROFILE=\r\nforeign_host.exe HybridMedian.8bf space=9000\r\n' >homeless.bat
expect "$(timeout 60 "$wine" cmd /c homeless.bat | tr -d '\r' | tail -1 | cut -d' ' -f 1,2)" "result -35"

# The documents are filtered in a few processes, one after the other in each, with one kernel.
linux=() kernels=(scalar sse2 avx2 avx512)
export HYMEDIAN_PREFERENCES=$work/preferences
for ((i = 1; i <= count; ++i)); do
    # Grey, RGB, CMYK and Lab of 8 and of 16 bits, with and without alpha.
    draw picture="1:1 1:2 3:3 3:4 4:4 4:5 9:3 9:4 10:1 10:2 11:3 11:4 13:4 13:5 12:3 12:4" \
        width="1 7 40 133" height="1 5 30 67" mask="0 0 1 3" part="0 1" radius="0 1 2 3 4" advance="0 1" space="2147483647 9000"
    switches="mode=${picture%:*} planes=${picture#*:} width=$width height=$height seed=$i mask=$mask radius=$radius"
    switches+=" advance=$advance space=$space"
    [ $((part * width / 40 * height / 5)) = 0 ] || switches+=" top=1 left=2 bottom=$((height - 1)) right=33"
    linux+=($switches "out=linux-$i.raw" --)
    if ((i % 25 == 0 || i == count)); then
        export HYMEDIAN_KERNEL=${kernels[i / 25 % 4]}
        on_linux "${linux[@]}" >linux
        HYMEDIAN_PREFERENCES= run "${linux[@]/#out=linux/out=windows}" >/dev/null
        expect "$(grep '^result\|^ended' told | tr -d '\r')" "$(cat linux)"
        linux=()
    fi
done
for ((i = 1; i <= count; ++i)); do
    cmp "linux-$i.raw" "windows-$i.raw"
done
echo "$count documents: the Linux module's pixels"
