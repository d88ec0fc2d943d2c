#!/usr/bin/env bash
# Installs missing packages, builds, checks the code and runs all tests on the simulated panel.
[ -n "${BASH_VERSION-}" ] || exec bash "$0" "$@" # started as "sh test.sh"
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: ./test.sh [OPTION]

Installs missing Debian packages, builds, checks the format and the code, fuzzes
the parsers, and runs all tests twice: as released, and with the address and
undefined-behaviour sanitizers. Then builds the panel's disk image, unless dist/ has
a new one, and boots it in a virtual machine: a start, a save, a power cut, another
start. Skips the virtual machine if QEMU cannot be installed. Needs root or sudo.

  --quick       Skips the code checks, the fuzzing, the run with sanitizers and the
                virtual machine.
  --no-machine  Skips the image and the virtual machine, which take four minutes.
  --help        Shows this text.
TEXT
}

quick=no machine=yes
for argument in "$@"; do
    case $argument in
    --quick) quick=yes ;;
    --no-machine) machine=no ;;
    --help) usage && exit 0 ;;
    *) echo "test.sh: unknown option $argument; see ./test.sh --help" >&2 && exit 2 ;;
    esac
done

run_tests() { # PRESET
    need_root # the build may have outlasted sudo's password timeout
    ctest --preset "$1" --parallel "$places" --label-exclude machine --output-log build/tests.log
}

run_on_machine() {
    need_root
    ctest --preset release --label-regex machine
}

build_with_sanitizers() {
    build_preset sanitize
}

check_and_fuzz() {
    scripts/check-code.sh build &&
        tests/robustness/fuzz/run.sh --seconds 20 --jobs "$places"
}

# Tests leave the processors idle for a part of the time, so the rest of the work runs beside them.
run_tests_beside() { # PRESET WORK
    local log=build/beside-the-tests.log failed=no
    echo "Running the tests of build preset $1; ${2//_/ } runs beside them, see $log"
    set -m # in a process group of its own, which can be ended as a whole
    {
        renice -n 19 "$BASHPID" >/dev/null # no test may be late for it
        "$2"
    } >"$log" 2>&1 </dev/null &
    set +m
    beside=$!
    trap 'kill -- -$beside 2>/dev/null || true' EXIT
    run_tests "$1"
    echo "Waiting for ${2//_/ }"
    wait "$beside" || failed=yes
    trap - EXIT
    cat "$log"
    [ "$failed" = no ] || die "${2//_/ } failed: see above"
}

need_panel
if [ "$quick" = yes ]; then
    [ -e build ] || need_space 400
else
    [ -e build-sanitize ] || need_space 1200
fi
needed=("${build_packages[@]}" "${panel_packages[@]}" "${test_packages[@]}" "${valgrind_packages[@]}")
# the checks cover all code, including the benchmarks
[ "$quick" = yes ] ||
    needed+=("${check_packages[@]}" "${bench_packages[@]}" "${fuzz_packages[@]}")
install_packages "${needed[@]}"
# Most tests take two places. A test spends half its time waiting, so more run than there are cores.
places=$((4 * $(nproc)))
build_preset release
if [ "$quick" = yes ]; then
    run_tests release
    exit
fi

run_tests_beside release build_with_sanitizers
run_tests_beside sanitize check_and_fuzz
sed -n '/tests passed/,$p' build/tests.log # the summary again, below what ran beside the tests
[ "$machine" = no ] || run_on_machine
