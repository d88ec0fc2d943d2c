#!/usr/bin/env bash
# Changes single lines of the program and checks that a test notices.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/mutation.sh [OPTION]...

Changes single lines of src/system, src/packages and src/shell, one at a time, and
runs the tests that reach the line until one fails. Prints the changes that no test
noticed. Fails if tests noticed less than 80 percent. The sources stay unchanged.

  --count N      Number of changes (default: 200).
  --seed N       Selects the changes (default: 1).
  --budget N     Seconds of testing per change (default: 60). A change that no test
                 has noticed by then counts as unnoticed.
  --jobs N       Number of changes tried at the same time (default: one per
                 processor).
  --again FILE   Repeats the unnoticed changes of FILE, an earlier report.
  --help         Shows this text.

build-mutation/mutation/report.tsv has the result of each change. Runs
tests/long/coverage.sh first, unless its results exist: they say which tests reach
a line.
TEXT
}

for argument in "$@"; do
    [ "$argument" != --help ] || { usage && exit 0; }
done

install_packages "${build_packages[@]}" "${panel_packages[@]}" "${coverage_packages[@]}"
[ -d build-coverage/coverage-sum ] || tests/long/coverage.sh
build_preset mutation
exec python3 -B tests/long/mutation.py "$@"
