#!/usr/bin/env bash
# Installs every hostile package and shows every hostile stick, by taps too, for several seeds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/hostile.sh [SEED...]

Builds the program as released and tries the packages and sticks that
tests/robustness/hostile/make-sticks makes of each seed, 1 and 2 if none is given: all of them,
the 1,000 with a flipped bit too, with the program's own code and by taps on the
running program. One more package keeps tar busy until it is cut off. The tool that
verifies packages looks at all of them, too. Prints a table a seed. Takes some five minutes a seed. Needs root or sudo.

  --help   Shows this text.
TEXT
}

read_seeds "$@"

need_root
install_packages "${build_packages[@]}" "${panel_packages[@]}"
build_preset release talmero-bios tst_hostilepackages tst_hostilesticks tst_hostileverify
log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0

# run DISPLAY TEST: prints the rows of its table, what failed, and the sum
run() {
    HOSTILE_ALL=1 HOSTILE_SEED=$seed simulator/panel --build build --display "$1" -- \
        "build/bin/$2" -maxwarnings 0 >"$log" 2>&1 || status=1
    grep -aE '^\|' "$log" || true
    grep -aA 3 -E '^(FAIL!|XPASS|QFATAL)' "$log" || true
    grep -a '^Totals' "$log" || { echo "$2 did not end" && status=1; }
}

for seed in "${seeds[@]}"; do
    echo "Seed $seed, the program's own code: package, result, changes, time"
    run none tst_hostilepackages
    run none tst_hostileverify
    echo "Seed $seed, the program by taps: package, what is shown, changes, time"
    run xorg tst_hostilesticks
done
exit "$status"
