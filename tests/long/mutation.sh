#!/usr/bin/env bash
# Changes single lines of the program and sees whether a test notices.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/mutation.sh [OPTION]...

Changes single lines of src/system, src/packages and src/shell, one at a time, and
runs the tests that reach the line until one fails. Prints the changes that no test
noticed. Fails if fewer than 80 of 100 were noticed. The sources stay as they are.

  --count N      How many changes; 200 if not given.
  --seed N       Other changes; 1 if not given.
  --budget N     Seconds of tests for one change; 60 if not given. What no test has
                 noticed by then counts as not noticed.
  --jobs N       How many changes are tried at a time; one per processor if not given.
  --again FILE   Tries again what was not noticed according to FILE, a report.
  --help         Shows this text.

build-mutation/mutation/report.tsv has the result of each change. Which tests reach
a line is known from tests/long/coverage.sh, which runs first where it has not yet.
TEXT
}

for argument in "$@"; do
    [ "$argument" != --help ] || { usage && exit 0; }
done

install_packages "${build_packages[@]}" "${panel_packages[@]}" "${coverage_packages[@]}"
[ -d build-coverage/coverage-sum ] || tests/long/coverage.sh
build_preset mutation all panel-ifupdown
exec python3 -B tests/long/mutation.py "$@"
