#!/usr/bin/env bash
# Makes a Debian 12 with nothing installed in a directory, clones this repository into it as it is
# committed, and runs a command there. To be run as root; takes a while.
#   scripts/check-fresh-machine.sh [command, ./test.sh if left out]
#   scripts/check-fresh-machine.sh bash .ci/run
# The system is removed afterwards. FRESH_MACHINE names a directory to keep it in instead.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ "$(id -u)" -eq 0 ] || {
    echo "Only root can make a system." >&2
    exit 1
}
scripts/install-dependencies.sh --fresh-machine

. scripts/fresh-machine.sh
trap leave_fresh_machine EXIT
make_fresh_machine

rm -rf "$root/root/project"
git clone -q --no-hardlinks . "$root/root/project"
[ $# -gt 0 ] || set -- ./test.sh
on_fresh_machine CI=true bash -c 'cd /root/project && exec "$@"' bash "$@"
