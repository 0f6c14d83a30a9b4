#!/usr/bin/env bash
# Measures the survey server on this machine, with the load from the same machine, and prints a table.
#   scripts/benchmark-server.sh [seconds]   for each kind of load, 10 if not given
# Also tries what must not lose an answer: kills, a full disk, and the same form sent many times.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --server || exit 1
build_preset release -- --target pollarix-server || exit 1
ulimit -n "$(ulimit -Hn)"
exec python3 benchmarks/server/measure.py build/release/bin/pollarix-server "${1-10}"
