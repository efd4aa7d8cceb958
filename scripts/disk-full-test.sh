#!/usr/bin/env bash
# Mounts a volume of one megabyte, fills it up with outputs, preferences and work images on it, and makes it read-only.
# Whatever cannot be written must be reported in one sentence, earlier files must stay as they were, and nothing may be
# left behind. Mounting needs root.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build test
cmake --preset test >/dev/null
cmake --build --preset test --target hymedian HybridMedian resources chart foreign_host >/dev/null
build=$PWD/build/test
work=$(mktemp -d)
volume=$work/volume
mkdir "$volume"
if ! mount -t tmpfs -o size=1m,nr_inodes=64 hymedian-test "$volume" 2>/dev/null; then
    rmdir "$volume" "$work"
    echo "Mounting a volume is not permitted here, nothing was tested."
    exit 0
fi
trap 'umount "$volume" && rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
cd "$work"

"$build/chart" draw clean.png noisy.png
for suffix in tif jpg webp; do "$build/chart" tile noisy.png 640 480 "noisy.$suffix"; done
ln -s /dev/full full.png
ln -s "$volume/earlier.png" behind.png
checks=0

fail() {
    echo "$1" >&2
    exit 1
}

# Leaves this many bytes of the volume free.
leave() {
    rm -f "$volume/filler"
    local free
    free=$(df --output=avail -B1 "$volume" | tail -n 1)
    head -c $((free - $1)) /dev/zero >"$volume/filler"
}

# All files, with their contents, except those that runs may change.
state() {
    find . -type f ! -name filler ! -path './preferences/*' ! -path './volume/preferences/*' ! -name '*.txt' -exec sha256sum {} + | sort
}

# refused SENTENCES ARGUMENT...: a run that must fail with that many sentences, and change nothing.
refused() {
    local sentences=$1 status=0
    shift
    state >before.txt
    "$build/hymedian" --quiet --radius 2 "$@" >out.txt 2>err.txt || status=$?
    [ $status -eq 1 ] || fail "status $status of: $*"
    [ ! -s out.txt ] && [ "$(grep -c '^hymedian: ' err.txt)" -eq "$sentences" ] && [ "$(wc -l <err.txt)" -eq "$sentences" ] ||
        fail "not $sentences sentences of: $* -- $(cat err.txt)"
    state | cmp -s - before.txt || fail "files changed by: $*"
    cat err.txt
    checks=$((checks + 1))
}

# A run must give the same result as with room everywhere.
works() {
    "$build/hymedian" --quiet --radius 2 noisy.png --force -o out.png || fail "failed with the preferences in $HYMEDIAN_PREFERENCES"
    cmp out.png right.png
    checks=$((checks + 1))
}

"$build/hymedian" --quiet --radius 2 noisy.png -o right.png
cp noisy.png "$volume/earlier.png"
leave 8192
for suffix in png tif jpg webp; do refused 1 "noisy.$suffix" -o "$volume/new.$suffix"; done
refused 1 noisy.png --force -o "$volume/earlier.png"
refused 1 noisy.png --force -o behind.png
refused 1 "$volume/earlier.png" --in-place
refused 1 noisy.png -o new.png --compare "$volume/both.png"
refused 2 noisy.png noisy.tif --jobs 2 -o "$volume"
leave 0
refused 1 noisy.png -o new.png --record "$volume/action.json"
refused 1 noisy.png -o full.png

# Preferences for which there is no room are lost, but nothing else is.
export HYMEDIAN_PREFERENCES=$volume/preferences
works
leave 100000
works
leave 0
works
[ "$(ls -A "$HYMEDIAN_PREFERENCES")" = WEMBpref ] || fail "left over: $(ls -A "$HYMEDIAN_PREFERENCES")"
rm "$HYMEDIAN_PREFERENCES/WEMBpref"
leave 4096
works
leave 100000
works
cmp "$HYMEDIAN_PREFERENCES/WEMBpref" preferences/WEMBpref

# Images for which the host offers no memory go to disk.
images() {
    local answer
    answer=$("$build/foreign_host" "$build/HybridMedian.plugin/HybridMedian.so" width=150 height=100 space=9000)
    [[ $answer == "result $1 pixels "$2* ]] || fail "images on disk: $answer"
    checks=$((checks + 1))
}
leave 200000
images 0 '[^=]'
leave 20000
images -34 =
[ "$(ls -A "$HYMEDIAN_PREFERENCES")" = WEMBpref ] || fail "left over: $(ls -A "$HYMEDIAN_PREFERENCES")"
export HYMEDIAN_PREFERENCES=$work/preferences

rm "$volume/filler"
while : 2>/dev/null >"$volume/preferences/$checks-$RANDOM$RANDOM"; do :; done
refused 1 noisy.png -o "$volume/new.png"
mount -o remount,ro "$volume"
refused 1 noisy.png -o "$volume/new.png"
refused 1 noisy.png --force -o "$volume/earlier.png"
HYMEDIAN_PREFERENCES=$volume/preferences works
echo "$checks checks: one sentence each, earlier files as they were, nothing left"
