#!/usr/bin/env bash
# Usage: test-integrations.sh [valgrind]. Builds the Python package, the GEGL operation and the plug-in for GIMP 2.10,
# installs each as a user would, and compares what they make of pictures with what hymedian makes of them. With `valgrind`
# the package's compiled part then runs under it.
set -euo pipefail
cd "$(dirname "$0")/.."

# Whatever hangs is ended, together with what it has started.
limited() { timeout --kill-after=10 "${LIMIT:-240}" "$@"; }

# In the foreground, since it may ask for a password.
timeout --foreground 600 scripts/install-packages.sh build python gegl gimp "$@"
limited cmake --preset release >/dev/null
LIMIT=600 limited cmake --build --preset release --target hymedian HybridMedian resources
export HYMEDIAN_PROGRAM=$PWD/build/hymedian
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences PYTHONDONTWRITEBYTECODE=1
# Debian's modules need Debian's interpreter.
python=/usr/bin/python3

echo "Python"
limited "$python" -m mypy --config-file integrations/python/mypy.ini --cache-dir=/dev/null integrations/python/hymedian
limited "$python" -m venv --system-site-packages --without-pip "$work/venv"
limited "$work/venv/bin/python" -m pip install --quiet --no-index integrations/python
limited "$work/venv/bin/python" -m pytest -q -p no:cacheprovider integrations/python/tests
if [ "${1:-}" = valgrind ]; then
    # The interpreter has findings of its own; those count in which the compiled part takes part.
    PYTHONMALLOC=malloc limited valgrind --leak-check=full --show-leak-kinds=definite --num-callers=40 --log-file="$work/valgrind.log" \
        "$work/venv/bin/python" integrations/python/tests/valgrind.py
    ! grep -B 40 -A 40 _native "$work/valgrind.log" || exit 1
fi

echo "GEGL and GIMP"
export HOME=$work/home
limited cmake --preset integrations -DHYMEDIAN_GEGL=ON -DHYMEDIAN_GIMP=ON -DHYMEDIAN_USER_FOLDERS=ON >/dev/null
limited cmake --build --preset integrations --target hymedian_gegl hymedian_gimp2
limited cmake --install build/integrations --component gegl >/dev/null
limited cmake --install build/integrations --component gimp2 >/dev/null
export HYMEDIAN_GEGL_FOLDER=$HOME/.local/share/gegl-0.4/plug-ins HYMEDIAN_GIMP_FOLDER=$HOME/.config/GIMP/2.10
limited "$python" -m pytest -q -p no:cacheprovider integrations/gegl/tests
limited "$python" -m pytest -q -p no:cacheprovider integrations/gimp2/tests
