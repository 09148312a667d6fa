# What the scripts at the top share; they source it. Debian 12. The caller's folder is in $here.

set -euo pipefail
here=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The prefix of a command that needs root; ends the script where there is none.
as_root=()
need_root() {
    ((EUID == 0)) && return
    if ! command -v sudo >/dev/null; then
        echo "Missing: $*. Install them as root with apt-get, then run this again." >&2
        exit 1
    fi
    as_root=(sudo)
}

is_installed() { [[ $(dpkg-query -W -f '${Status}' "$1" 2>/dev/null) == *" installed" ]]; }

# Installs those of the named packages that are missing, and says which.
need() {
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    ((${#missing[@]} == 0)) && return
    need_root "${missing[@]}"
    echo "Installing ${missing[*]}" >&2
    "${as_root[@]}" tools/install "${missing[@]}" >/dev/null
}

build_packages=(
    g++ cmake ninja-build pkg-config libcli11-dev libsndfile1-dev libxcb1-dev
    libxcb-xtest0-dev libpng-dev zlib1g-dev libjack-jackd2-dev libasound2-dev librtaudio-dev librtmidi-dev
    liblilv-dev lv2-dev)
test_packages=(
    libgtest-dev libbenchmark-dev clang-format clang-tidy-22 xvfb
    jackd2 pipewire pipewire-jack pulseaudio libasound2-plugins python3 sox sordi valgrind)
peer_packages=(setbfree yoshimi)
clang_packages=(clang-22 libclang-rt-22-dev llvm-22)
wasm_packages=(
    clang-22 llvm-22 lld-22 libc++-22-dev-wasm32 libc++abi-22-dev-wasm32 libclang-rt-22-dev-wasm32
    wasi-libc nodejs)
browser_packages=(chromium-headless-shell)
windows_packages=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix libz-mingw-w64-dev)
package_packages=(
    nsis dpkg-dev file fakeroot pandoc help2man man-db appstream desktop-file-utils)
wine_packages=(wine wine64 wine32:i386)
emulation_packages=(g++-multilib lib32z1-dev qemu-user libxcb1-dev:i386 libxcb-xtest0-dev:i386)

# Wine's loader of programs of each width. Its wrapper starts the 32-bit one for both.
declare -A wine=([win32]=/usr/lib/wine/wine [win64]=/usr/lib/wine/wine64)

# Whether the machine executes 32-bit programs. Anything but the kernel's refusal is an error.
runs_32_bit_programs() {
    local status=0
    "${wine[win32]}" --version >/dev/null 2>&1 || status=$?
    ((status == 126)) && return 1
    ((status == 0)) && return
    echo "Wine's 32-bit loader does not start: ${wine[win32]} --version" >&2
    exit 1
}

# Installs a browser without windows and what drives it.
have_browser() {
    need "${browser_packages[@]}" && { command -v npm >/dev/null || need npm; } &&
        npm ci --silent --prefer-offline --no-audit --no-fund
}

# Configures and builds a preset, quietly unless it fails: build PRESET [cmake options]
build() {
    local preset=$1 log
    shift
    mkdir -p build
    log=build/$preset.log
    if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
        cat "$log" >&2
        echo "The build of $preset failed; the lines above are in $log." >&2
        return 1
    fi
}
