#!/usr/bin/env bash
# Installs what building, running and testing the program needs, as far as it is missing.
#
#   scripts/install-dependencies.sh            for building and running
#   scripts/install-dependencies.sh --screen   also for running where there is no screen
#   scripts/install-dependencies.sh --tests    also for testing and for checking the sources
#   scripts/install-dependencies.sh --package  also for making the Debian package and checking it
#   scripts/install-dependencies.sh --browser  also for using the survey server's pages in a browser
#   scripts/install-dependencies.sh --fuzz     also for the fuzzers
#   scripts/install-dependencies.sh --memory   also for running the tests under valgrind
#   scripts/install-dependencies.sh --statistics   also for holding the statistics against other programs
#   scripts/install-dependencies.sh --server   also for measuring the survey server
#   scripts/install-dependencies.sh --attack   also for attacking it with other people's tools
#   scripts/install-dependencies.sh --fresh-machine   for scripts/check-fresh-machine.sh, nothing else
#   scripts/install-dependencies.sh --installed       for scripts/check-package.sh, to look at what it installs
#
# Debian 12 and its like: through apt-get, as root or through sudo. Elsewhere it says what is missing.
set -euo pipefail

packages=(
    # Compiler and build
    g++ cmake ninja-build pkg-config ccache lld
    # Windows, charts, pictures, help. Qt Charts is found only together with the OpenGL and keyboard
    # packages, although nothing here uses them.
    qt6-base-dev libqt6opengl6-dev libxkbcommon-dev libvulkan-dev qt6-charts-dev qt6-svg-dev
    qt6-tools-dev qt6-tools-dev-tools qt6-documentation-tools
    # Help keeps its index in a database behind this driver
    libqt6sql6-sqlite
    # Survey files, and the shell that builds the databases beside the program
    libsqlitecpp-dev libsqlite3-dev sqlite3
    # The sample survey is computed
    python3
    # Talking to a survey server
    libcurl4-openssl-dev
    # Survey server: HTTP, passwords and tokens, links as pictures. Statistics: distributions
    libboost-dev libsodium-dev libqrencode-dev
    # Files of other programs
    libreadstat-dev libxlsxwriter-dev libzip-dev libexpat1-dev
    # Text on a machine without a desktop
    fonts-dejavu-core
    # Tests and measurements are configured with the rest
    libgtest-dev libbenchmark-dev
)
for group in "$@"; do
    case $group in
    --screen) packages+=(xvfb xauth openbox x11vnc) ;;
    --tests) packages+=(vsftpd xvfb xauth clang-format) ;;
    --package) packages+=(dpkg-dev binutils gzip lintian desktop-file-utils appstream) ;;
    # The last one gives names to the lines of a finding.
    --fuzz) packages+=(clang libclang-rt-dev llvm) ;;
    --memory) packages+=(valgrind vsftpd xvfb xauth) ;;
    --server) packages+=(wrk) ;;
    --attack) packages+=(slowhttptest wapiti sqlmap) ;;
    --statistics) packages+=(pspp r-base-core r-cran-survey r-cran-haven libreoffice-calc-nogui) ;;
    --browser)
        packages+=(chromium)
        # Other packages of Node.js bring npm along.
        command -v npm >/dev/null || packages+=(nodejs npm)
        ;;
    --fresh-machine) packages=(debootstrap) ;;
    --installed) packages=(debootstrap xvfb xauth openbox xdotool imagemagick) ;;
    *)
        echo "$0: no such group of packages: $group" >&2
        exit 2
        ;;
    esac
done

# Elsewhere than on Debian and its like: name what the build would not find, and stop there.
if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    missing=()
    for tool in c++ cmake ninja pkg-config sqlite3 python3; do
        command -v "$tool" >/dev/null || missing+=("$tool")
    done
    for module in Qt6Widgets Qt6PrintSupport Qt6Svg Qt6Charts Qt6Help Qt6Test sqlite3 libcurl \
        libsodium libqrencode xlsxwriter libzip expat gtest benchmark; do
        pkg-config --exists "$module" 2>/dev/null || missing+=("$module")
    done
    for group in "$@"; do
        case $group in
        --screen) tools=(Xvfb xauth openbox x11vnc) ;;
        --tests) tools=(vsftpd) ;;
        --memory) tools=(valgrind vsftpd) ;;
        --server) tools=(wrk) ;;
        --browser) tools=(chromium node npm) ;;
        --attack) tools=(slowhttptest wapiti sqlmap) ;;
        --package) tools=(dpkg-shlibdeps lintian desktop-file-validate appstreamcli) ;;
        --installed) tools=(debootstrap Xvfb xauth openbox xdotool import) ;;
        --fuzz) tools=(clang++) ;;
        --statistics) tools=(pspp Rscript soffice) ;;
        *) tools=(debootstrap) ;;
        esac
        for tool in "${tools[@]}"; do
            command -v "$tool" >/dev/null || missing+=("$tool")
        done
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "This system has no apt-get, so nothing can be installed from here." >&2
        echo "Please install these (development packages; SQLiteCpp 3.2, Boost 1.74 and ReadStat 1.1 as well), then try again:" >&2
        printf '  %s\n' "${missing[@]}" >&2
        exit 1
    fi
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
        missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "These packages are missing, and installing them takes root. Please run as root:" >&2
        echo "  apt-get install ${missing[*]}" >&2
        exit 1
    elif sudo -n true 2>/dev/null; then
        as_root=(sudo -n)
    elif [ -t 0 ]; then
        as_root=(sudo)
    else
        echo "These packages are missing, and sudo wants a password. Please run:" >&2
        echo "  sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
fi

echo "Installing ${missing[*]}"
log=$(mktemp)

# The tests start a server of their own; installing its package must not start one for everybody.
policy=/usr/sbin/policy-rc.d
new_server=
if [[ " ${missing[*]} " == *" vsftpd "* ]]; then
    new_server=vsftpd
    if [ -e "$policy" ]; then
        policy=
    else
        printf '#!/bin/sh\nexit 101\n' | "${as_root[@]}" tee "$policy" >/dev/null
        "${as_root[@]}" chmod +x "$policy"
    fi
else
    policy=
fi
tidy() {
    rm -f "$log"
    [ -z "$policy" ] || "${as_root[@]}" rm -f "$policy"
}
trap tidy EXIT

apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
        -o Dpkg::Use-Pty=0 -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300 "$@" \
        >>"$log" 2>&1 </dev/null
}
if ! { apt update && apt install --no-install-recommends "${missing[@]}"; }; then
    tail -n 40 "$log" >&2
    echo "Installing failed. Missing: ${missing[*]}" >&2
    exit 1
fi
if [ -n "$new_server" ]; then
    "${as_root[@]}" update-rc.d "$new_server" disable >/dev/null 2>&1 || true
fi
