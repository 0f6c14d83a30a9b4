#!/usr/bin/env bash
# Holds our statistics against PSPP and R, to six digits, on generated surveys of 10 to 100,000
# respondents, and has these and LibreOffice read the files with labels.
#   scripts/check-statistics.sh [respondents...]
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --statistics || exit 1
build_preset release -- --target statistics_figures || exit 1

directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
result=0
for respondents in "${@:-10 33 100 1000 10000 100000}"; do
    for count in $respondents; do
        echo "$count respondents"
        mkdir -p "$directory/$count"
        build/release/bin/statistics_figures "$count" "$directory/$count" &&
            Rscript scripts/check-statistics.R "$directory/$count" &&
            scripts/check-statistics.py "$directory/$count" || result=1
    done
done
exit $result
