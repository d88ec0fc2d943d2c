#!/usr/bin/env bash
# Verifies packages with changed tar headers and lets tar unpack those that are good.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/verify.sh [SEED...]

Builds talmero-mkpackage as released and with the sanitizers, and verifies 20,000
packages of each seed, 1 and 2 if none is given, whose tar headers are changed in one
to three places. What is good, tar must unpack without a complaint, as many files as
told, none outside, no link that leads out, nothing special. Prints a line a seed.
Takes some two minutes a seed. Needs root or sudo.

  --help   Shows this text.
TEXT
}

read_seeds "$@"

need_root
install_packages "${build_packages[@]}" "${panel_packages[@]}"
build_preset release talmero-mkpackage
build_preset sanitize talmero-mkpackage
status=0

# run BUILD COUNT: one line, and one for each package that tar unpacks otherwise
run() {
    simulator/panel --build "$1" --display none -- \
        python3 tests/long/tarmutants.py "$PWD/$1/talmero-mkpackage" "$seed" "$2" || status=1
}

for seed in "${seeds[@]}"; do
    echo "As released"
    run build 20000
    echo "With sanitizers"
    run build-sanitize 2000
done
exit "$status"
