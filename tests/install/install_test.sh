#!/usr/bin/env bash
# Installs a build tree into a scratch prefix, moves the prefix (both package
# descriptions must be relocatable) and builds and runs the consumer hosts
# (the example hosts, which exit 0 only when they recognised their player's
# gesture) through find_package(Pelmora64 CONFIG) and through pkg-config.
# Usage: install_test.sh BUILD_DIR CONSUMER_DIR EXAMPLES_DIR VERSION CC CXX CMAKE
set -euo pipefail

build="$1" consumer="$2" examples="$3" version="$4" cc="$5" cxx="$6" cmake="$7"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }
run_host() { # run_host NAME PROGRAM
    LD_LIBRARY_PATH="$libdir" "$2" >"$work/host.log" 2>&1 || { cat "$work/host.log"; fail "$1 failed"; }
}

"$cmake" --install "$build" --prefix "$work/stage" >"$work/install.log" || { cat "$work/install.log"; fail "cmake --install"; }
mv "$work/stage" "$work/prefix"
prefix="$work/prefix"

# The library, its SONAME chain and the headers.
lib="$(find "$prefix" -name libPelmora64.so -print -quit)"
[ -n "$lib" ] || fail "libPelmora64.so not installed"
libdir="$(dirname "$lib")"
major="${version%%.*}"
[ "$(readlink "$lib")" = "libPelmora64.so.$major" ] || fail "libPelmora64.so does not link to libPelmora64.so.$major"
[ -f "$libdir/libPelmora64.so.$version" ] || fail "libPelmora64.so.$version missing"
objdump -p "$lib" | grep -q "SONAME *libPelmora64.so.$major\$" || fail "SONAME is not libPelmora64.so.$major"
include="$prefix/include/pelmora64"
for header in pelmora.h PelmoraExport.h pelmora.hpp engine/Pelmora.h values/BaseValue.h; do
    [ -f "$include/$header" ] || fail "header $header not installed"
done
if find "$include" -path '*front*' -o -name 'XmlText.h' | grep -q .; then fail "internal headers installed"; fi

# The tool, when the build has it, runs from the prefix without help.
if [ -x "$build/tools/pelmora" ]; then
    [ -x "$prefix/bin/pelmora" ] || fail "pelmora tool not installed"
    env -u LD_LIBRARY_PATH "$prefix/bin/pelmora" --help >/dev/null || fail "installed pelmora does not run"
fi

# CMake consumer.
configure() { # configure BUILD_DIR [ARGS...]
    local dir="$1"; shift
    "$cmake" -S "$consumer" -B "$dir" -DCMAKE_PREFIX_PATH="$prefix" -DPELMORA_EXAMPLES_DIR="$examples" \
        -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" "$@" >"$dir.log" 2>&1
}
configure "$work/cmake" -DPELMORA_REQUIRED_VERSION="$major" || { cat "$work/cmake.log"; fail "find_package(Pelmora64 $major)"; }
"$cmake" --build "$work/cmake" >"$work/cmake-build.log" 2>&1 || { cat "$work/cmake-build.log"; fail "CMake consumer build"; }
run_host "CMake C consumer" "$work/cmake/consumer_c"
run_host "CMake C++ consumer" "$work/cmake/consumer_cxx"
if configure "$work/cmake-next" -DPELMORA_REQUIRED_VERSION="$((major + 1))"; then
    fail "find_package accepted major version $((major + 1))"
fi

# pkg-config consumer.
export PKG_CONFIG_PATH="$libdir/pkgconfig"
[ "$(pkg-config --modversion pelmora64)" = "$version" ] || fail "pkg-config version is not $version"
# shellcheck disable=SC2046
"$cc" "$examples/c_host.c" $(pkg-config --cflags --libs pelmora64) -o "$work/pc_consumer" || fail "pkg-config consumer build"
run_host "pkg-config consumer" "$work/pc_consumer"

echo "installed tree, CMake package and pkg-config file all serve their consumers"
