#!/usr/bin/env bash
# Installs what is missing, builds the survey server and starts it.
#   ./serve.sh [options and command of pollarix-server, see docs/server.md]
# Without any, it serves on this machine alone: forms on port 8421, uploads on port 8422, and the
# program's built-in server is this one.
set -uo pipefail

started=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. scripts/common.sh

scripts/install-dependencies.sh || exit 1
build_preset release -- --target pollarix-server || exit 1
program=$PWD/build/release/bin/pollarix-server
cd "$started" || exit 1
exec "$program" "$@"
