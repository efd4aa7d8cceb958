#!/usr/bin/env bash
# Filters PICTURES (default: 500) pictures of four formats and five sizes in one batch with two processes. Each output
# must equal that of a run of its own, nothing may be left over, and neither memory nor open files may grow: for every
# process, the least it held in the last fifth of its pictures may exceed that of the second fifth by at most MARGIN_KB
# (default: 4096) and MARGIN_FILES (default: 4). Leaking the smallest picture 240 times would be three times as much.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null

build=$PWD/build
pictures=${PICTURES:-500}
margin=${MARGIN_KB:-4096}
margin_files=${MARGIN_FILES:-4}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
mkdir "$work/kinds" "$work/in" "$work/out" "$work/right"
cd "$work"
exec {pause}<> <(:)

# One in five is large enough to be cut into bands. Those are done last, and each has workers of its own.
"$build/chart" draw clean.png noisy.png
kinds=()
for size in 160x120 333x257 500x400 47x501 1300x1000; do
    for suffix in png jpg tif webp; do
        kind=$size.$suffix
        "$build/chart" tile noisy.png "${size%x*}" "${size#*x}" "kinds/$kind"
        "$build/hymedian" --quiet --radius 2 --jobs 1 "kinds/$kind" -o "right/$kind"
        kinds+=("$kind")
    done
done
inputs=()
small=0
for ((i = 0; i < pictures; ++i)); do
    kind=${kinds[i % ${#kinds[@]}]}
    ln "kinds/$kind" "in/$i-$kind"
    inputs+=("in/$i-$kind")
    [[ $kind == 1300x1000.* ]] || small=$((small + 1))
done

# Prints the private and shared memory of a process in kB and its number of open files, unless it is ending. Starts no
# processes itself, so that there are many samples of each picture.
measure() {
    local key kilobytes memory=0 files
    while read -r key kilobytes _; do
        case $key in Pss_Anon: | Pss_Shmem:) memory=$((memory + kilobytes)) ;; esac
    done
    files=(/proc/"$1"/fd/*)
    if [ "$memory" -gt 0 ] && [ -L "${files[0]}" ]; then echo "${#lines[@]} $1 $memory ${#files[@]}"; fi
}

: >done.txt
"$build/hymedian" --radius 2 --jobs 2 "${inputs[@]}" -o out >done.txt &
parent=$!
trap 'kill -9 $parent 2>/dev/null || true; rm -rf "$work"' EXIT
while kill -0 $parent 2>/dev/null; do
    mapfile -t lines <done.txt
    children=
    read -r children 2>/dev/null </proc/$parent/task/$parent/children || true
    for process in $parent $children; do
        measure "$process" 2>/dev/null <"/proc/$process/smaps_rollup" || true
    done
    read -r -t 0.01 -u "$pause" || true
done >samples.txt 2>/dev/null
wait $parent
trap 'rm -rf "$work"' EXIT

tail -n 1 done.txt
for ((i = 0; i < pictures; ++i)); do
    kind=${kinds[i % ${#kinds[@]}]}
    cmp "out/$i-$kind" "right/$kind"
done
[ "$(find out -mindepth 1 | wc -l)" = "$pictures" ] || { echo "left over in the outputs' folder" >&2; exit 1; }
[ "$(ls -A preferences)" = WEMBpref ] || { echo "left over in the Preferences folder" >&2; exit 1; }

awk -v pictures="$pictures" -v small="$small" -v parent=$parent -v margin="$margin" -v margin_files="$margin_files" '
    # Fields: pictures done so far, the process, its memory, its files.
    {
        phase = $1 < small ? "small" : "large"
        part = phase == "small" ? $1 / small : ($1 - small) / (pictures - small)
        fifth = int(5 * part)
        key = phase " pictures, " ($2 == parent ? "parent" : "worker " $2)
        if (fifth == 1 || fifth == 4) {
            ++samples[key, fifth]
            if (!((key, fifth) in memory) || $3 < memory[key, fifth]) memory[key, fifth] = $3
            if (!((key, fifth) in files) || $4 < files[key, fifth]) files[key, fifth] = $4
            keys[key] = 1
        }
        if ($3 > most[key]) most[key] = $3
    }
    END {
        for (key in keys) {
            # Workers for bands only live for one picture.
            if (samples[key, 1] < 5 || samples[key, 4] < 5) continue
            ++compared
            printf "%s: at least %d kB and %d files, later %d kB and %d files; at most %d kB\n", key,
                memory[key, 1], files[key, 1], memory[key, 4], files[key, 4], most[key]
            if (memory[key, 4] > memory[key, 1] + margin || files[key, 4] > files[key, 1] + margin_files) failed = 1
        }
        if (compared < 4) print "too few samples"
        else if (failed) print "it grew"
        exit failed || compared < 4
    }' samples.txt
echo "every output as that of a run of its own, nothing left over"
