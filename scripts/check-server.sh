#!/usr/bin/env bash
# Lets tools made by others attack the survey server: slow clients (slowhttptest), what web pages get
# wrong (wapiti), SQL from outside (sqlmap). Takes some minutes; fails when one of them finds something.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --attack || exit 1
build_preset release -- --target pollarix-server || exit 1
ulimit -n "$(ulimit -Hn)"
exec python3 benchmarks/server/attack.py build/release/bin/pollarix-server
