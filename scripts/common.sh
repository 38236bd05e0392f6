# Shared by the scripts (demo, test, bench, fuzz, package, check-format, tidy,
# render-options-page): install the Debian packages that are missing, then
# build. Source it; it defines ROOT, BUILD_DIR, ensure_packages and
# build_project.

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}

# Debian packages the build and the tests need (dpkg-dev and file for the
# Debian packages' dependencies, pkg-config for the SDK's check; scripts/test
# adds what only the tests use, lintian among them).
PACKAGES=(
    cmake g++ make
    qtbase5-dev qtbase5-dev-tools qttools5-dev qttools5-dev-tools
    rapidjson-dev libsimdjson-dev
    dpkg-dev file pkg-config
)

# ensure_packages [extra packages...]
# Installs the missing ones with apt-get when run as root; otherwise names
# them and stops.
ensure_packages() {
    local wanted=("${PACKAGES[@]}" "$@") missing=() pkg
    for pkg in "${wanted[@]}"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed' \
            || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "Missing Debian packages: ${missing[*]}" >&2
        echo "Install them with: sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
    echo "Installing ${missing[*]} ..."
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq >/dev/null
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build_project [extra cmake arguments...]
build_project() {
    cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Release "$@" >/dev/null
    cmake --build "$BUILD_DIR" -j "$(nproc)"
}
