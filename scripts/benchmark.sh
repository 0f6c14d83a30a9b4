#!/usr/bin/env bash
# Measures the program on large surveys and prints one table: each operation beside plain SQLite doing
# the same rows in the same run.
#   scripts/benchmark.sh               at 100,000 respondents
#   scripts/benchmark.sh --full        from 1,000 to 1,000,000 respondents, and 125 to 8,000 questions
#   scripts/benchmark.sh --page        as --full, and writes the tables and curves of docs/performance.md
# The largest survey takes some gigabytes of disk under $TMPDIR while it is measured.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

full=
page=()
case "${1-}" in
    "") ;;
    --full) full=yes ;;
    --page) full=yes page=(--page docs/performance.md) ;;
    *) sed -n '2,7s/^# \?//p' "$0" >&2 && exit 2 ;;
esac

scripts/install-dependencies.sh --tests || exit 1
build_preset release -- --target benchmarks || exit 1

directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
export XDG_RUNTIME_DIR=$directory/run POLLARIX_BENCHMARK_SURVEYS=$directory/surveys
mkdir -m 700 "$XDG_RUNTIME_DIR" "$POLLARIX_BENCHMARK_SURVEYS"

# What is compared takes turns, so that the load of other programs falls on both.
#   measure <program> <repetitions> <first argument, such as a count of respondents>
measure() {
    local program=$1 repetitions=$2 size=$3
    quietly "Measuring ($program${size:+, $size})" "build/release/bin/${program}_benchmark" \
        --benchmark_filter="${size:+/$size(/|\$)}" \
        --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
        --benchmark_out_format=json --benchmark_out="$directory/$program-${size/\//-}.json"
}

sizes=(100000)
[ -z "$full" ] || sizes=(1000 10000 100000 1000000)
result=0
for size in "${sizes[@]}"; do
    repetitions=5
    [ "$size" -lt 1000000 ] || repetitions=1 # it takes minutes, which evens out what disturbs it
    for program in import analysis collection export; do
        measure "$program" "$repetitions" "$size" || result=1
    done
    rm -f "$POLLARIX_BENCHMARK_SURVEYS"/*
done
measure design 3 1000/responses:20 || result=1
for questions in ${full:+125 250 500 1000 2000 4000 8000}; do
    measure design 1 "$questions/responses:3" || result=1
done
[ ! -x build/release/bin/startup_benchmark ] || measure startup 3 "" || result=1

scripts/benchmark-report.py "$directory" "${page[@]}" || result=1
exit $result
