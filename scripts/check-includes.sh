#!/usr/bin/env bash
# Includes only go downwards: files may include their own room and the rooms that its row names.
set -euo pipefail
cd "$(dirname "$0")/.."

facts=hybridmedian/public.h
declare -A may=(
    [platform]=""
    [photoshop]="platform"
    [$facts]="platform"
    [colors]="photoshop"
    [resources]="photoshop platform $facts"
    [imagestore]="platform"
    [toolkit]="imagestore photoshop platform"
    [log]="toolkit imagestore platform"
    [settings]="log toolkit imagestore photoshop platform $facts"
    [median/kernel]=""
    [median/library]="median/kernel"
    [median/plain]="median/kernel"
    [median]="median/kernel toolkit imagestore platform"
    [dialog]="median toolkit imagestore platform $facts"
    [hybridmedian]="dialog median median/kernel settings toolkit imagestore platform $facts"
    [plugin]="colors settings log toolkit imagestore photoshop platform"
    [integrations/python]="median/library"
    [integrations/gegl]="median/library"
    [integrations/gimp2]="median/library integrations/gegl"
    [host/report]=""
    [host/container]=""
    [host/document]="host/report colors photoshop platform $facts"
    [host/filter]="host/document host/report photoshop platform $facts"
    [host/picture]="host/container host/document host/report photoshop platform"
    [host/work]="host/filter host/picture host/document host/report platform $facts"
    [host]="host/work host/filter host/picture host/document host/report photoshop platform $facts"
)

# Sets `room` to the row that a file belongs to; fails for files outside all rooms, such as tests.
find_room() {
    room=$1
    until [ -v "may[$room]" ]; do
        [[ $room == */* ]] || return 1
        room=${room%/*}
    done
}

status=0
while IFS=: read -r file include; do
    find_room "$file" || continue
    from=$room
    find_room "$include" || { echo "$file: includes $include, which is of no room"; status=1; continue; }
    [[ " $from ${may[$from]} " == *" $room "* ]] || { echo "$file: must not include $include"; status=1; }
done < <(git grep -o '^#include "[^"]*/[^"]*"' -- '*.cpp' '*.c' '*.h' | sed 's/#include "\(.*\)"/\1/')
exit $status
