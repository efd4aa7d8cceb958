#!/usr/bin/env bash
# Kills RUNS (default: 1000) runs of hymedian at random moments: single pictures in one to three processes, and batches.
# The file under an output's name must be whole at all times, and the preferences those of a complete run. A final run
# must work and leave nothing else behind, and no process may live on. Also fails if some stage of a run was never hit.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null

build=$PWD/build
runs=${RUNS:-1000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences
preferences=$HYMEDIAN_PREFERENCES/WEMBpref
mkdir "$work/pictures" "$work/pictures/out" "$work/right"
cd "$work/pictures"
exec {pause}<> <(:)

"$build/chart" draw clean.png noisy.png
"$build/chart" tile noisy.png 200 150 small.jpg
"$build/chart" tile noisy.png 300 200 small.tif
pictures=(noisy.png small.jpg small.tif)
slowest=0
for radius in 1 2; do
    for picture in "${pictures[@]}"; do
        start=$(date +%s%N)
        "$build/hymedian" --quiet --force --radius $radius --jobs 1 "$picture" -o "out/$picture"
        took=$((($(date +%s%N) - start) / 1000))
        slowest=$((took > slowest ? took : slowest))
        cp "out/$picture" "$work/right/$radius-$picture"
    done
    cp "$preferences" "$work/right/$radius-preferences"
done

# right FILE NAME [BYTES]: whether the file, or its first bytes, is the same as one of the two right ones of that name.
right() {
    cmp -s ${3:+-n "$3"} "$1" "$work/right/1-$2" || cmp -s ${3:+-n "$3"} "$1" "$work/right/2-$2"
}

established=
declare -A stages=([early]=0 [filtering]=0 [writing]=0 [published]=0 [finished]=0)
known=
shopt -s nullglob
for ((run = 0; run < runs; ++run)); do
    inputs=("${pictures[@]}")
    [ $((run % 2)) -eq 1 ] || inputs=(noisy.png)
    # New preferences may be cut short by a kill, but only until one run has completed.
    if [ $((run % 10)) -eq 0 ]; then
        rm -f "$preferences"
        established=
    fi
    before=$(stat -c %i out/noisy.png)
    exec {told}< <(exec setsid "$build/hymedian" --force --radius $((1 + run / 4 % 2)) --jobs $((1 + run % 3)) "${inputs[@]}" -o out)
    pid=$!
    if [ $((run % 4)) -ge 2 ]; then
        # There is little time after an output is published. The program reports it right then.
        read -r -u "$told" || true
    else
        delay=$(((RANDOM * 32768 + RANDOM) % (slowest * 6 / 5)))
        read -r -t "$((delay / 1000000)).$(printf %06d $((delay % 1000000)))" -u "$pause" || true
    fi
    kill -9 $pid 2>/dev/null || true
    status=0
    wait $pid 2>/dev/null || status=$?
    exec {told}<&-
    # Its workers end a little later; one of them may be creating new preferences.
    for ((patience = 0; patience < 200; ++patience)); do
        kill -0 -- -$pid 2>/dev/null || break
        read -r -t 0.01 -u "$pause" || true
    done
    [ $patience -lt 200 ] || { echo "run $run: a process lives on" >&2; ps -o pid,ppid,stat,etime,args -g $pid >&2; exit 1; }

    stage=early
    if [ $status -eq 0 ]; then
        stage=finished
    elif [ $status -ne 137 ]; then
        echo "run $run: status $status" >&2
        exit 1
    fi
    for temporary in out/.hymedian-*; do
        [[ $known == *" $temporary "* ]] && continue
        if [ -s "$temporary" ]; then stage=writing; elif [ $stage = early ]; then stage=filtering; fi
    done
    known=" $(echo out/.hymedian-*) "
    if [ $stage = early ] && [ "$(stat -c %i out/noisy.png)" != "$before" ]; then stage=published; fi
    stages[$stage]=$((stages[$stage] + 1))

    for picture in "${pictures[@]}"; do
        right "out/$picture" "$picture" || { echo "run $run, $stage: out/$picture is neither result" >&2; exit 1; }
    done
    if [ -e "$preferences" ] && right "$preferences" preferences; then
        established=yes
    elif [ -n "$established" ] || { [ -e "$preferences" ] && ! right "$preferences" preferences "$(stat -c %s "$preferences")"; }; then
        echo "run $run, $stage: the preferences are damaged" >&2
        exit 1
    fi
done

"$build/hymedian" --quiet --force --jobs 2 noisy.png -o out
"$build/hymedian" --quiet --force --radius 2 "${pictures[@]}" -o out
for picture in "${pictures[@]}"; do cmp "out/$picture" "$work/right/2-$picture"; done
cmp "$preferences" "$work/right/2-preferences"
left=$(find . "$HYMEDIAN_PREFERENCES" -type f ! -name clean.png ! -name 'small.*' ! -name noisy.png ! -name WEMBpref)
[ -z "$left" ] || { echo "left over: $left" >&2; exit 1; }
for stage in early filtering writing published finished; do
    echo "$stage: ${stages[$stage]}"
    [ "${stages[$stage]}" -gt 0 ] || { echo "no kill fell there" >&2; exit 1; }
done
echo "every output whole, the preferences sound, nothing left over"
