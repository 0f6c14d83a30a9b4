#!/usr/bin/env bash
# Runs the test programs under valgrind's memcheck: no invalid access, no use of an unset value, no leak of
# ours. Takes about half an hour. Each program is one run, so that what the desktop libraries keep is loaded once.
#   scripts/check-memory.sh [test_platform test_web ...]
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. scripts/common.sh

scripts/install-dependencies.sh --memory || exit 1
build_preset dev || exit 1

programs=("$@")
[ ${#programs[@]} -gt 0 ] || mapfile -t programs < <(cd build/dev/bin && ls -d test_*)
logs=build/memory
mkdir -p "$logs"
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
# Compiled regular expressions are code that memcheck misreads.
export QT_ENABLE_REGEXP_JIT=0

failed=()
for program in "${programs[@]}"; do
    started=$SECONDS
    QT_QPA_PLATFORM=offscreen valgrind --tool=memcheck --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
        --num-callers=30 --child-silent-after-fork=yes --trace-children=no \
        --suppressions=tests/support/valgrind.supp --log-file="$logs/$program.log" \
        "build/dev/bin/$program" >"$logs/$program.out" 2>&1
    result=$?
    errors=$(sed -n 's/.*ERROR SUMMARY: \([0-9,]*\) errors.*/\1/p' "$logs/$program.log" | tail -1)
    passed=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) .*/\1/p' "$logs/$program.out")
    echo "$program: ${errors:-no summary of} errors of memcheck, ${passed:-0} tests passed, $((SECONDS - started)) s"
    if [ "$result" -ne 0 ] || [ "$errors" != 0 ]; then
        failed+=("$program")
        sed -n 's/^\[  FAILED  \] \(.*\)/  failed: \1/p' "$logs/$program.out" | sort -u
    fi
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "To be looked at in $logs: ${failed[*]}"
    exit 1
fi
