#!/usr/bin/env bash
# Installs what is missing, builds the program and runs all its tests.
#   ./test.sh [options for cmake, such as -DPOLLARIX_WERROR=ON]
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --tests || exit 1
build_preset dev "$@" || exit 1
run_tests dev
