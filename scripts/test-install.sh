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

# The library, as pkg-config tells compilers of it.
cat >"$work/program.c" <<'END'
#include <hymedian.h>
#include <string.h>
int main(void) { return strcmp(hymedian_status_text(HYMEDIAN_OK), "done"); }
END
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
gcc "$work/program.c" $(pkg-config --cflags --libs libhymedian) -o "$work/program" &&
    LD_LIBRARY_PATH=$prefix/lib "$work/program" || fail "The installed library does not serve a program."

# The plug-in is a folder that may be copied anywhere, and works there by itself.
mkdir "$work/elsewhere"
mv "$prefix/lib/hymedian/HybridMedian.plugin" "$work/elsewhere/"
for radius in 2 6; do
    (cd / && env -i HYMEDIAN_PREFERENCES="$HYMEDIAN_PREFERENCES" "$prefix/bin/hymedian" --quiet --radius $radius \
        --plugin "$work/elsewhere/HybridMedian.plugin" "$work/noisy.png" -o "$work/elsewhere-$radius.png")
    build/hymedian --quiet --radius $radius "$work/noisy.png" -o "$work/built-$radius.png"
    cmp "$work/built-$radius.png" "$work/elsewhere-$radius.png" || fail "The copied plug-in gives another picture."
done

# What is shipped gives no other library or program a name to take for its own: only the module has one, its entry point,
# and libhymedian has its calls.
# Copies of another library's data carry that library's version.
shipped=0
while read -r file; do
    names=$(nm -D --defined-only "$file" 2>/dev/null) || continue
    shipped=$((shipped + 1))
    names=$(awk '$3 !~ /@/ { print $3 }' <<<"$names")
    case $file in
        *.plugin/*.so) expected=main ;;
        */libhymedian.so*) expected=$'hymedian_filter\nhymedian_status_text\nhymedian_version' ;;
        *) expected= ;;
    esac
    [ "$names" = "$expected" ] || fail "$file has these names: $names."
    if nm -C "$file" 2>/dev/null | grep faults::; then fail "$file has what only tests may use."; fi
done < <(find "$prefix" "$work/elsewhere" -type f)
[ $shipped -eq 4 ] || fail "$shipped files were looked at."
echo "The installed files work."
