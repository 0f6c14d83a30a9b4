#!/usr/bin/env bash
# Installs what is missing, builds the program and makes its Debian package. Prints where it lies.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --package || exit 1
# Only what goes into it: neither tests nor measurements.
build_preset release -- --target pollarix pollarix_data pollarix_packaging || exit 1
rm -f build/release/pollarix_*.deb
# The directories of a package are for everybody, whatever files are made for here.
umask 022
quietly "Packing" cpack --config build/release/CPackConfig.cmake || exit 1
ls build/release/pollarix_*.deb
