# What the scripts at the top share; they source it. Debian 12. The caller's folder is in $here.

set -euo pipefail
here=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Installs those of the named packages that are missing, and says which.
need() {
    local missing=() package as_root=()
    for package in "$@"; do
        [[ $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null) == *" installed" ]] ||
            missing+=("$package")
    done
    ((${#missing[@]} == 0)) && return
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "Missing: ${missing[*]}. Install them as root with apt-get, then run this again." >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}" >&2
    "${as_root[@]}" apt-get -qq update >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq -y --no-install-recommends install "${missing[@]}" >/dev/null
}

build_packages=(g++ cmake ninja-build pkg-config libcli11-dev libsndfile1-dev)

# Configures and builds a preset, quietly unless it fails: build PRESET [cmake options]
build() {
    local preset=$1 log
    shift
    mkdir -p build
    log=build/$preset.log
    echo "Building $preset" >&2
    if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
        cat "$log" >&2
        echo "The build of $preset failed; the lines above are in $log." >&2
        return 1
    fi
}
