#!/usr/bin/env bash
# Kills the program at random moments of its work and checks after each that nothing is lost or half done.
#   scripts/check-kill.sh [kills] [seed]
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

build_preset dev -- --target test_reliability || exit 1
export QT_QPA_PLATFORM=offscreen POLLARIX_KILLS=${1:-500}
[ $# -lt 2 ] || export POLLARIX_SEED=$2
exec build/dev/bin/test_reliability --gtest_filter='KilledAtAnyMoment.EveryAction*'
