#!/usr/bin/env bash
# Installs what is missing, builds, checks the code and runs every test in the simulated panel.
[ -n "${BASH_VERSION-}" ] || exec bash "$0" "$@" # was started as "sh test.sh"
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: ./test.sh [OPTION]

Installs the missing Debian packages, builds, checks format and code, fuzzes the
readers of foreign text, and runs every test twice: with the address and
undefined-behaviour sanitizers, then as released. Needs root or sudo.

  --quick   Leaves out the code checks, the fuzzing and the run with sanitizers.
  --help    Shows this text.
TEXT
}

quick=no
for argument in "$@"; do
    case $argument in
    --quick) quick=yes ;;
    --help) usage && exit 0 ;;
    *) echo "test.sh: unknown option $argument; see ./test.sh --help" >&2 && exit 2 ;;
    esac
done

run_tests() { # PRESET
    need_root # sudo may have forgotten the password since
    ctest --preset "$1" --parallel "$places"
}

need_panel
if [ "$quick" = yes ]; then
    [ -e build ] || need_space 400
else
    [ -e build-sanitize ] || need_space 1200
fi
needed=("${build_packages[@]}" "${panel_packages[@]}" "${test_packages[@]}" "${valgrind_packages[@]}")
# all code is checked, also that of benchmarks
[ "$quick" = yes ] ||
    needed+=("${check_packages[@]}" "${bench_packages[@]}" "${fuzz_packages[@]}")
install_packages "${needed[@]}"
# A test counts as two of these, one that only waits as one: there is a place for the waiting ones.
places=$((2 * $(nproc) + 2))
build_preset release
if [ "$quick" = no ]; then
    scripts/check-code.sh build
    tests/robustness/fuzz/run.sh --seconds 20 --jobs "$((2 * $(nproc)))"
    build_preset sanitize
    run_tests sanitize
fi
run_tests release
