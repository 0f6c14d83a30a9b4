#!/usr/bin/env bash
# Builds the fuzzers with clang, replays what they have found before, and lets them look further.
#
#   scripts/fuzz.sh [seconds] [fuzzer]
#
# Seconds for each fuzzer, 10 if not given; 0 only replays. Without a name all of them run, in turn, each
# on all cores from a minute on. An input that breaks the program is kept in build/fuzz/found/ and its
# command shown; what is new and breaks nothing lies in build/fuzz/found/<fuzzer>/.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

seconds=${1-10}
fuzzers=(rich_text results tables replies survey server)
[ $# -lt 2 ] || fuzzers=("$2")

scripts/install-dependencies.sh --fuzz || exit 1
build_preset fuzz -- --target "${fuzzers[@]/#/fuzz_}" || exit 1

export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1
export LSAN_OPTIONS=suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
for fuzzer in "${fuzzers[@]}"; do
    found=build/fuzz/found/$fuzzer
    mkdir -p "$found"
    # Longer inputs reach nothing that shorter ones do not. Leaks are looked for when a process ends:
    # after each input it would take longer than the rest.
    run=("build/fuzz/bin/fuzz_$fuzzer" -timeout=25 -rss_limit_mb=2560 -max_len=16384 -detect_leaks=0
        -artifact_prefix=build/fuzz/found/)
    dictionary=fuzz/dictionaries/$fuzzer.dict
    [ ! -e "$dictionary" ] || run+=("-dict=$dictionary")
    corpus=fuzz/corpus/$fuzzer
    echo "$fuzzer: $(find "$corpus" -type f | wc -l) known inputs, then $seconds s of new ones"
    if ! "${run[@]}" -runs=0 "$corpus" >"$found.log" 2>&1; then
        tail -n 60 "$found.log"
        failed+=("$fuzzer, by a known input")
        continue
    fi
    [ "$seconds" -gt 0 ] || continue
    [ "$seconds" -lt 60 ] || run+=("-fork=$(nproc)")
    if ! "${run[@]}" "-max_total_time=$seconds" "$found" "$corpus" >"$found.log" 2>&1; then
        tail -n 60 "$found.log"
        failed+=("$fuzzer, by a new input: see above and build/fuzz/found/")
        continue
    fi
    grep -E '^#[0-9]+' "$found.log" | tail -n 1
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "Broken:"
    printf '  %s\n' "${failed[@]}"
    exit 1
fi
