#!/usr/bin/env bash
# Measures the survey server on this machine, with the load from the same machine, and prints a table.
# Also tries what must not lose an answer: kills, a full disk, and the same form sent many times.
#   scripts/benchmark-server.sh [--seconds N] [--kills N] [--equals N] [--fuzz N]
# Seconds for each kind of load (10 if not given), rounds of kills (200), rounds of the same form 20 times
# at once (1,000). As it stands it takes some five minutes. With --fuzz, what the server reads from anybody
# is fuzzed for so many seconds more, requests, uploads and survey documents among it.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

options=()
fuzz=0
while [ $# -gt 0 ]; do
    if [ "$1" = --fuzz ]; then
        fuzz=${2:?how many seconds?}
        shift 2
    else
        options+=("$1")
        shift
    fi
done

scripts/install-dependencies.sh --server || exit 1
build_preset release -- --target pollarix-server || exit 1
ulimit -n "$(ulimit -Hn)"
python3 benchmarks/server/measure.py build/release/bin/pollarix-server "${options[@]}" || exit 1
[ "$fuzz" -eq 0 ] || exec scripts/fuzz.sh "$fuzz" server
