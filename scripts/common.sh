# Shared by the scripts: package set-up and builds. Source it; do not run it.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
JOBS="$(nproc)"

# installed PKG[=VERSION]: true when the Debian package is installed, at
# VERSION when one is named.
installed() {
    local name="${1%%=*}" status
    status="$(dpkg-query -W -f='${Status} ${Version}' "$name" 2>/dev/null)" || return 1
    [[ "$status" == "install ok installed "* ]] || return 1
    [[ "$1" != *=* ]] || [ "${status##* }" = "${1#*=}" ]
}

# ensure_packages PKG[=VERSION]...: installs the Debian packages that are
# missing or, where a version is named, at another version.
# A prepared machine never touches the network.
ensure_packages() {
    local missing=()
    for pkg in "$@"; do
        installed "$pkg" || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "== Installing ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --allow-downgrades "${missing[@]}" >/dev/null
}

# The TinyXML release config/XmlText.cpp mirrors (CMakeLists.txt insists on it).
TINYXML_PACKAGE=libtinyxml-dev=2.6.2-6+deb12u1

# What the library and the pelmora tool build with, and what the tests add.
BUILD_PACKAGES=(cmake ninja-build g++ pkg-config python3 "$TINYXML_PACKAGE" libgtest-dev libgmock-dev libcli11-dev nlohmann-json3-dev)
# The Python package installs into a fresh venv with Debian's setuptools and wheel.
TEST_PACKAGES=("${BUILD_PACKAGES[@]}" chromium valgrind python3-venv python3-setuptools python3-wheel python3-pip)

# build DIR [CMAKE ARGS...]: configures and builds everything into DIR.
build() {
    local dir="$1"; shift
    cmake -S "$ROOT" -B "$ROOT/$dir" -G Ninja "$@" >/dev/null
    cmake --build "$ROOT/$dir" -j "$JOBS" ${BUILD_TARGETS:+--target $BUILD_TARGETS}
}
