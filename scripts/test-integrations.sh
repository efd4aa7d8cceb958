#!/usr/bin/env bash
# Builds the Python package, the GEGL operation and the plug-in for GIMP 2.10, installs each as a user would, and compares
# what they make of pictures with what hymedian makes of them.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh build python gegl gimp
cmake --preset release >/dev/null
cmake --build --preset release --target hymedian HybridMedian resources
export HYMEDIAN_PROGRAM=$PWD/build/hymedian
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYMEDIAN_PREFERENCES=$work/preferences PYTHONDONTWRITEBYTECODE=1
# Debian's modules need Debian's interpreter.
python=/usr/bin/python3

echo "Python"
"$python" -m venv --system-site-packages --without-pip "$work/venv"
"$work/venv/bin/python" -m pip install --quiet --no-index integrations/python
"$work/venv/bin/python" -m pytest -q -p no:cacheprovider integrations/python/tests

echo "GEGL and GIMP"
export HOME=$work/home
cmake --preset integrations -DHYMEDIAN_GEGL=ON -DHYMEDIAN_GIMP=ON -DHYMEDIAN_USER_FOLDERS=ON >/dev/null
cmake --build --preset integrations --target hymedian_gegl hymedian_gimp2
cmake --install build/integrations --component gegl >/dev/null
cmake --install build/integrations --component gimp2 >/dev/null
export HYMEDIAN_GEGL_FOLDER=$HOME/.local/share/gegl-0.4/plug-ins HYMEDIAN_GIMP_FOLDER=$HOME/.config/GIMP/2.10
"$python" -m pytest -q -p no:cacheprovider integrations/gegl/tests
"$python" -m pytest -q -p no:cacheprovider integrations/gimp2/tests
