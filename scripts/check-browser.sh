#!/usr/bin/env bash
# Uses the survey server's pages in a real browser: every page at three widths, with and without
# script, held against the rules of accessibility. Then the whole way: ./serve.sh starts a server, the
# program publishes the sample survey to it, it is answered in the browser, and collected again.
#   scripts/check-browser.sh [--pictures DIRECTORY] [preset, or none for dev]
# With --pictures it leaves a picture of every page.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

if [ "${1-}" = --pictures ]; then
    POLLARIX_PICTURES=$(mkdir -p "${2:?the directory for the pictures is missing}" && cd "$2" && pwd) || exit 1
    export POLLARIX_PICTURES
    shift 2
fi
preset=${1:-dev}

scripts/install-dependencies.sh --browser || exit 1
build_preset "$preset" -- --target pollarix-server check_online || exit 1
quietly "Fetching the browser's driver" npm ci --prefix tests/browser --ignore-scripts --no-audit --no-fund || exit 1

POLLARIX_SERVER=$PWD/build/$preset/bin/pollarix-server
export POLLARIX_SERVER
# One file after the other: each has a server and a browser of its own.
for tests in form holder; do
    timeout 1200 node --test --test-reporter=tap "tests/browser/$tests.test.mjs" || failed=1
done
QT_QPA_PLATFORM=offscreen timeout 1200 "build/$preset/bin/check_online" || failed=1
exit "${failed:-0}"
