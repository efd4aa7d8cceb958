#!/usr/bin/env bash
# Installs the missing Debian packages of the groups named (build, test, bench, lint, fuzz, coverage, cache, valgrind, arm,
# python, gegl, gimp, windows, windows-test), without questions.
set -euo pipefail

declare -A packages=(
    [build]="g++ cmake ninja-build pkg-config libvips-dev libexiv2-dev zlib1g-dev libcli11-dev nlohmann-json3-dev qt6-base-dev"
    [test]="libgtest-dev xvfb libimage-exiftool-perl libtiff-tools libvips-tools webp"
    [bench]="libbenchmark-dev"
    [lint]="clang-format clang-tidy cppcheck"
    [fuzz]="clang libclang-rt-14-dev"
    [coverage]="gcovr"
    [cache]="ccache"
    [valgrind]="valgrind"
    [python]="g++ cmake ninja-build python3-dev python3-venv python3-pip python3-setuptools python3-wheel pybind11-dev python3-numpy python3-pytest python3-mypy python3-tifffile python3-dask python3-distributed python3-zarr"
    [gegl]="g++ cmake ninja-build pkg-config libgegl-dev gegl python3-numpy python3-pytest python3-tifffile"
    [gimp]="g++ cmake ninja-build pkg-config libgegl-dev libgimp2.0-dev gimp python3-numpy python3-pytest python3-tifffile"
    [windows]="g++ g++-mingw-w64-x86-64-posix cmake ninja-build zip"
    [windows-test]="wine64 xvfb googletest"
    [arm]="g++-aarch64-linux-gnu qemu-user googletest"
)

missing=()
for group in "$@"; do
    for package in ${packages[$group]}; do
        state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$state" = installed ] || [[ " ${missing[*]} " == *" $package "* ]] || missing+=("$package")
    done
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Run as root, or install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
