# shellcheck shell=bash
# What run.sh, test.sh and .ci/run share. To be sourced, from the top directory.

# Runs a command and shows its output only if it fails. On a terminal the last line it wrote is shown
# while it runs, since a first build takes minutes.
#   quietly "Building" cmake --build ...
quietly() {
    local what=$1 log started=$SECONDS line
    shift
    mkdir -p build
    log=$(mktemp "build/log.XXXXXX")
    if [ -t 1 ]; then
        "$@" 2>&1 </dev/null | while IFS= read -r line; do
            printf '%s\n' "$line" >>"$log"
            printf '\r\033[K%s: %.*s' "$what" $((${COLUMNS:-80} - ${#what} - 3)) "$line"
        done
        local result=${PIPESTATUS[0]}
        printf '\r\033[K'
    else
        "$@" >"$log" 2>&1 </dev/null
        local result=$?
    fi
    if [ "$result" -ne 0 ]; then
        cat "$log" >&2
        echo "$what failed." >&2
    elif [ $((SECONDS - started)) -ge 5 ]; then
        echo "$what: $((SECONDS - started)) s"
    fi
    rm -f "$log"
    return "$result"
}

# Configures and builds a preset, what is up to date being left alone.
#   build_preset dev [cmake options] -- [build options]
build_preset() {
    local preset=$1 configure=() launcher=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        configure+=("$1")
        shift
    done
    [ $# -eq 0 ] || shift
    if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER-}" ] && command -v ccache >/dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    quietly "Configuring ($preset)" cmake --preset "$preset" "${launcher[@]}" "${configure[@]}" &&
        quietly "Building ($preset)" cmake --build "build/$preset" --parallel "$(nproc)" "$@"
}

# Runs all tests of a preset that was built. The summary is the last thing printed.
run_tests() {
    local preset=$1 result=0
    shift
    # Qt wants a private directory for the run time, and mutters into the output without one.
    XDG_RUNTIME_DIR=$(mktemp -d)
    export XDG_RUNTIME_DIR
    ctest --test-dir "build/$preset" --output-on-failure --no-tests=error --parallel "$(nproc)" "$@" \
        </dev/null 2>&1 || result=$?
    rm -rf "$XDG_RUNTIME_DIR"
    unset XDG_RUNTIME_DIR
    return "$result"
}
