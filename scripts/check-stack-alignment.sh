#!/usr/bin/env bash
# Usage: check-stack-alignment.sh FILE. Windows keeps the stack aligned to 16 bytes, and its compiler does not align it
# any further: fails if the code has an aligned access of 32 or 64 bytes to the stack.
set -euo pipefail

x86_64-w64-mingw32-objdump -d --no-show-raw-insn "$1" | awk -v file="$1" '
    # The other register that a frame may lie at, if that is where it comes from.
    /,%rbp$/ { frame = /%rsp.*,%rbp$/ }
    /vmov(ap[sd]|dqa(32|64)?|nt[a-z]*)[ \t].*%[yz]mm/ {
        wide++
        if (/\(%rsp/ || (frame && /\(%rbp/)) { print file ": " $0; found++ }
    }
    END { exit found > 0 || wide == 0 }'
