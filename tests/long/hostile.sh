#!/usr/bin/env bash
# Installs all hostile packages and lists all hostile sticks, also by touch, for several seeds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/hostile.sh [SEED...]

Builds the program as released, and tries all hostile packages and sticks that
make-sticks generates for each seed (default: 1 and 2), including the 1,000 packages
with a flipped bit. Each package is installed with the program's own code, by touch on
the running program, and verified with talmero-mkpackage. One more package keeps tar
busy until it is cut off. Prints one table per seed. Takes about five minutes per seed.
Needs root or sudo.

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

# run DISPLAY TEST: prints the rows of the table, the failures and the totals
run() {
    HOSTILE_ALL=1 HOSTILE_SEED=$seed simulator/panel --build build --display "$1" -- \
        "build/tests/$2" -maxwarnings 0 >"$log" 2>&1 || status=1
    grep -aE '^\|' "$log" || true
    grep -aA 3 -E '^(FAIL!|XPASS|QFATAL)' "$log" || true
    grep -a '^Totals' "$log" || { echo "$2 did not end" && status=1; }
}

for seed in "${seeds[@]}"; do
    echo "Seed $seed, with the program's own code: package, result, changes, time"
    run none tst_hostilepackages
    run none tst_hostileverify
    echo "Seed $seed, by touch: package, message, changes, time"
    run xorg tst_hostilesticks
done
exit "$status"
