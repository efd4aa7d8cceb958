#!/usr/bin/env bash
# Usage: foreign-host.sh [asan|valgrind [COUNT [SEED]]]. Runs the module, in a folder copied alone, in the foreign host with
# random combinations of its switches, and compares code and pixels with what they must be.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/draw.sh

way=${1:-asan} count=${2:-500} RANDOM=${3:-1}
case $way in
asan) preset=asan packages="build test" watched=() ;;
valgrind) preset=test packages="build test valgrind" watched=(valgrind -q --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite) ;;
*) sed -n '2,3s/^# //p' "$0" >&2; exit 2 ;;
esac
scripts/install-packages.sh $packages
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target foreign_host HybridMedian resources >/dev/null
build=build/$preset
host=$PWD/$build/foreign_host
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$build/HybridMedian.plugin" "$folder/elsewhere"
module=$folder/elsewhere/HybridMedian.so
cd "$folder"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
export HYMEDIAN_PREFERENCES=$folder/preferences

# What goes wrong in one of four, as CODE:SWITCHES.
faults=(-128:abortat=1 -128:abortat=60 -30100:missing=1 -30100:unmasked=1,mask=1 -30100:fewer=1 -30100:fewer=-1
    -30100:shift=1 -30100:shift=1,once=9 -30100:shift=-2 -30100:shift=1000 -30100:bottom=999 -30100:left=-1)
declare -A plain codes
for ((i = 1; i <= count; ++i)); do
    draw picture="1:1 1:2 3:3 3:4 10:1 10:2 11:3 11:5" part="0 1" seed="1 2 3"
    picture="mode=${picture%:*} planes=${picture#*:} seed=$seed"
    [ "$part" = 0 ] || picture+=" top=3 left=2 bottom=21 right=33"
    if [ -z "${plain[$picture]:-}" ]; then
        read -r _ _ _ pixels _ < <("$host" "$module" $picture guard=0)
        plain[$picture]=$pixels
    fi

    draw scripting="1 1 1 0 2" version="0 0 0 1" reads="18 18 18 17 20" writes="16 16 16 15 20" play="0 0 1 2" ask="0 0 1 2" \
        between="0 1" advance="0 1" abort="0 1" runs="1 2 3" wrong="0 0 0 1" fault="${faults[*]}" mask="0 0 1 255"
    [ "$wrong" = 1 ] || fault=0:
    expected=${fault%%:*}
    if [ "$scripting$version" = 10 ] && ((reads >= 18 && writes >= 16)); then
        asked=$((play == 1))
    else
        asked=$((ask > 0))
    fi
    [ "$expected" != -128 ] || abort=1
    [ "$expected$asked" != 01 ] || expected=-128
    [ "$expected$advance" = 00 ] || between=0
    switches="$picture scripting=$scripting version=$version reads=$reads writes=$writes play=$play ask=$ask"
    switches+=" between=$between advance=$advance abort=$abort runs=$runs mask=$mask"
    for choice in handles="0 2 6 8" buffers="0 1" progress="0 1" info="0 1" space="2147483647 0 100 9000" parameters="-1 0 1 2 3 4 100" \
        stale="0 1 2 3" nowhere="0 0 1" thread="0 1" radius="2 2 -1"; do
        draw "$choice"
        name=${choice%%=*}
        switches+=" $name=${!name}"
    done
    # Padding would make up for rows that are too short.
    case $fault in *missing* | *unmasked*) ;; *) draw pad="0 1 40"; switches+=" pad=$pad" ;; esac
    case $picture in mode=1\ * | mode=3\ *) draw depth="-1 0 8"; switches+=" depth=$depth" ;; esac
    fault=${fault#*:}
    switches+=" ${fault//,/ }"

    status=0
    line=$("${watched[@]}" "$host" "$module" $switches guard=0 2>errors) || status=$?
    read -r _ code _ pixels _ <<<"$line" || true
    [ "$expected" != 0 ] || [ "$pixels" = "${plain[$picture]}" ] || status="$status, other pixels"
    [ "$expected" = 0 ] || [ "${pixels:0:1}" = "=" ] || status="$status, pixels changed"
    if [ "$status$code" != "0$expected" ] || [ -s errors ]; then
        printf 'combination %s: %s\n  status %s, expected %s: %s\n' "$i" "$switches" "$status" "$expected" "$line" >&2
        head -20 errors >&2
        exit 1
    fi
    codes[$code]=$((${codes[$code]:-0} + 1))
done
echo "$count combinations ($way):$(for code in "${!codes[@]}"; do printf ' %s times %s,' "${codes[$code]}" "$code"; done) as expected"
