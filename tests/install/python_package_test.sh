#!/usr/bin/env bash
# Installs the library into a scratch prefix and the Python package into a
# fresh venv, the two ways docs/python.md gives, and replays the bundled
# recording through the installed package, away from the source tree (as
# the native recording, and as the webcam example's landmarks):
#   1. `pip install --no-build-isolation ./python`: the package finds the
#      prefix through pkg-config, and names every place it looked when
#      nothing points there;
#   2. `cmake --install --component python`: the package finds the prefix it
#      was installed with, without settings.
# Usage: python_package_test.sh BUILD_DIR SOURCE_DIR VERSION PYTHON CMAKE
set -euo pipefail

build="$1" source="$2" version="$3" python="$4" cmake="$5"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }
# Only what the steps set: no library, package or prefix from the caller.
unset PELMORA_LIBRARY PYTHONPATH LD_LIBRARY_PATH PKG_CONFIG_PATH PYTHONDONTWRITEBYTECODE
export PKG_CONFIG_LIBDIR="$work/no-system-pc"
mkdir "$PKG_CONFIG_LIBDIR"

"$python" -c "import setuptools, wheel" 2>/dev/null ||
    fail "$python lacks setuptools or wheel (Debian: python3-setuptools python3-wheel)"
"$python" -m venv --system-site-packages "$work/venv" || fail "python3 -m venv (Debian: python3-venv)"
venv_python="$work/venv/bin/python"

"$cmake" --install "$build" --prefix "$work/prefix" >"$work/install.log" || { cat "$work/install.log"; fail "cmake --install"; }
pc="$(find "$work/prefix" -name pelmora64.pc -print -quit)"
[ -n "$pc" ] || fail "pelmora64.pc not installed"

# 1. From a copy of python/ (setuptools writes its build folders beside it).
cp -r "$source/python" "$work/python"
rm -rf "$work/python/tests"
"$work/venv/bin/pip" install --quiet --no-build-isolation --no-index "$work/python" >"$work/pip.log" 2>&1 ||
    { cat "$work/pip.log"; fail "pip install --no-build-isolation ./python"; }
cd "$work"   # nothing importable from the source tree
check_version() { # check_version HOW
    local printed
    printed="$("$venv_python" -c "import pelmora; print(pelmora.__version__)")" || fail "$1: import pelmora"
    [ "$printed" = "$version" ] || fail "$1: pelmora.__version__ is '$printed', not $version"
    "$venv_python" -c "import pelmora, sys; sys.exit(not pelmora.__file__.startswith('$work/venv/'))" ||
        fail "$1: pelmora was not imported from the venv"
}
if missing="$("$venv_python" -c "import pelmora; pelmora.Library()" 2>&1)"; then
    fail "the library loaded with nothing pointing at it"
fi
for looked in "PELMORA_LIBRARY: not set" "pkg-config knows no pelmora64" "the dynamic loader: libPelmora64.so.0"; do
    [[ "$missing" == *"$looked"* ]] || fail "the missing-library error does not say '$looked': $missing"
done
PKG_CONFIG_PATH="$(dirname "$pc")" check_version "through pkg-config"

# 2. Reinstalled by cmake --install, which records the prefix.
PELMORA_PYTHON="$venv_python" "$cmake" --install "$build" --prefix "$work/prefix" --component python \
    >"$work/install-python.log" 2>&1 || { cat "$work/install-python.log"; fail "cmake --install --component python"; }
check_version "recorded by cmake --install"
cp "$source/examples/python_replay.py" "$work/"
"$venv_python" "$work/python_replay.py" "$source/examples/gestures/catalogue.xml" \
    "$source/examples/recordings/precog-seq1-subject7.csv" >"$work/replay.txt" 2>"$work/replay.log" ||
    { cat "$work/replay.log"; fail "the replay example through the installed package"; }
diff "$source/tests/tools/demo_replay.expected" "$work/replay.txt" || fail "the replay's events differ from the tool's"
# The webcam example's replay mode: the skeleton source table is package data.
cp "$source/examples/webcam.py" "$work/"
"$venv_python" -m pelmora.render mediapipe-pose "$source/examples/recordings/precog-seq1-subject7.csv" \
    "$work/landmarks.jsonl" >/dev/null 2>"$work/render.log" || { cat "$work/render.log"; fail "pelmora.render"; }
"$venv_python" "$work/webcam.py" --config "$source/examples/gestures/catalogue.xml" --replay "$work/landmarks.jsonl" \
    >"$work/webcam.txt" 2>"$work/webcam.log" || { cat "$work/webcam.log"; fail "the webcam example's replay mode"; }
diff "$source/tests/data/sources/webcam_replay.expected" "$work/webcam.txt" || fail "the webcam replay's events differ"

echo "pelmora $version installed into a fresh venv both ways; its replay and webcam examples give the tool's events"
