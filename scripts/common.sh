# Shared by the scripts: package set-up and builds. Source it; do not run it.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
JOBS="$(nproc)"

# ensure_packages PKG...: installs the Debian packages that are missing.
# A prepared machine never touches the network.
ensure_packages() {
    local missing=()
    for pkg in "$@"; do
        dpkg -s "$pkg" >/dev/null 2>&1 || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "== Installing ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
}

# What the library and the pelmora tool build with, and what the tests add.
BUILD_PACKAGES=(cmake ninja-build g++ pkg-config python3 libtinyxml-dev libgtest-dev libgmock-dev libcli11-dev nlohmann-json3-dev)
TEST_PACKAGES=("${BUILD_PACKAGES[@]}" chromium valgrind)

# build DIR [CMAKE ARGS...]: configures and builds everything into DIR.
build() {
    local dir="$1"; shift
    cmake -S "$ROOT" -B "$ROOT/$dir" -G Ninja "$@" >/dev/null
    cmake --build "$ROOT/$dir" -j "$JOBS" ${BUILD_TARGETS:+--target $BUILD_TARGETS}
}
