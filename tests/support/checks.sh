# Functions for test scripts. The script sets $root and $build before it sources this file. $work is
# a folder for its files; $failures collects the failures.
# shellcheck shell=bash

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

panel() {
    # shellcheck disable=SC2154 # set by whoever sources this
    "$root/simulator/panel" --build "$build" "$@"
}

# check NAME COMMAND...: the command must succeed
check() {
    local name=$1
    shift
    if "$@" >"$work/output" 2>&1; then
        echo "PASS   : $name"
    else
        echo "FAIL!  : $name"
        sed 's/^/         /' "$work/output"
        failures=$((failures + 1))
    fi
}

# status EXPECTED COMMAND...
status() {
    local expected=$1
    shift
    "$@"
    local actual=$?
    [ "$actual" -eq "$expected" ] || { echo "status $actual, not $expected" && return 1; }
}

# says PATTERN COMMAND...: the output must hold a line that matches
says() {
    local pattern=$1
    shift
    "$@" 2>&1 | tee "$work/said"
    grep -qE -- "$pattern" "$work/said"
}
