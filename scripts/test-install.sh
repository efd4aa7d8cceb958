#!/usr/bin/env bash
# Installs a release into a temporary prefix and uses it there as users would: the program, its manual page, and the
# headers for people who write hosts. Nothing that only serves tests may be installed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build
cmake --preset release >/dev/null
cmake --build --preset release
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/usr
cmake --install build --prefix "$prefix" >/dev/null

fail() { echo "$1" >&2; exit 1; }

build/chart draw "$work/clean.png" "$work/noisy.png"
export HYMEDIAN_PREFERENCES=$work/preferences
# From another folder, with nothing in the environment that could help it find its parts.
(cd / && env -i PATH=/usr/bin:/bin HYMEDIAN_PREFERENCES="$HYMEDIAN_PREFERENCES" \
    "$prefix/bin/hymedian" --quiet --radius 2 "$work/noisy.png" -o "$work/installed.png")
build/hymedian --quiet --radius 2 "$work/noisy.png" -o "$work/built.png"
cmp "$work/built.png" "$work/installed.png" || fail "The installed program gives another picture than the built one."

grep -q "^.TH HYMEDIAN 1" "$prefix/share/man/man1/hymedian.1" || fail "The manual page is not installed."

# Completion in a shell that knows nothing but the installed file.
completed=$(PATH=$prefix/bin:$PATH bash --norc -c '. "$1"; COMP_WORDS=(hymedian --rad); COMP_CWORD=1
    _hymedian hymedian; echo "${COMPREPLY[*]}"' bash "$prefix/share/bash-completion/completions/hymedian")
[ "$completed" = --radius ] || fail "The completion for bash gives '$completed' for --rad."
[ -f "$prefix/share/zsh/site-functions/_hymedian" ] || fail "The completion for zsh is not installed."

cat >"$work/host.cpp" <<'END'
#include "photoshop/filter_record.h"
#include "photoshop/property_list.h"
int main() { return sizeof(FilterRecord) > 500 ? 0 : 1; }
END
g++ -std=c++20 -I "$prefix/include/hymedian" "$work/host.cpp" -o "$work/host" && "$work/host" ||
    fail "The installed headers do not serve a host."

while read -r file; do
    if nm -D --defined-only -C "$file" | grep faults::; then fail "$file has what only tests may use."; fi
done < <(find "$prefix" -type f \( -name '*.so' -o -name hymedian \))
echo "The installed files work."
