#!/usr/bin/env bash
# Takes pictures of the program's windows as they are, with the sample survey in them.
#   scripts/make-images.sh                                     those of the documentation and the help
#   scripts/make-images.sh --output <directory> [name...]      any, all if none is named
#   scripts/make-images.sh --list                              what there is to take
# Names may hold wildcards: 'design-*'. No display is needed. Look at the pictures before they are
# committed.
set -uo pipefail

# Paths that the caller gave are meant from where he stands.
from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --tests || exit 1
build_preset release -- --target make_images || exit 1
# The help can't be built while a picture is missing that is about to be taken.
quietly "Building the data" cmake --build build/release --target pollarix_data -- -k 0 ||
    echo "Going on: the pictures may be what was missing." >&2

export QT_QPA_PLATFORM=offscreen
export FONTCONFIG_FILE=$PWD/tools/images/fonts.conf
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
make_images=$PWD/build/release/bin/make_images
if [ $# -gt 0 ]; then
    cd "$from" && "$make_images" "$@"
    exit $?
fi

# Which pictures are shown is known to the pages that show them.
shown_in() {
    grep -oh 'images/[a-z0-9-]*\.png' "$@" | sed 's/^images\///; s/\.png$//' | sort -u
}
take() {
    local directory=$1 names
    shift
    mapfile -t names < <(shown_in "$@")
    rm -f "$directory"/*.png
    "$make_images" --output "$directory" "${names[@]}"
}
take docs/images README.md docs/*.md && take data/help/images data/help/*.html
