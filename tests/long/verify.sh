#!/usr/bin/env bash
# Verifies packages with changed tar headers, and unpacks the good ones with tar.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/verify.sh [SEED...]

Builds talmero-mkpackage as released and with the sanitizers. For each seed (default:
1 and 2), verifies 20,000 packages whose tar headers are changed in one to three
places. tar must unpack every good package without an error: as many files as
reported, none outside the folder, no link that leads out, no special file. Prints one
line per seed. Takes about two minutes per seed. Needs root or sudo.

  --help   Shows this text.
TEXT
}

read_seeds "$@"

need_root
install_packages "${build_packages[@]}" "${panel_packages[@]}"
build_preset release talmero-mkpackage
build_preset sanitize talmero-mkpackage
status=0

# run BUILD COUNT: prints a summary, and one line per package that tar unpacks differently
run() {
    simulator/panel --build "$1" --display none -- \
        python3 tests/long/tarmutants.py "$PWD/$1/bin/talmero-mkpackage" "$seed" "$2" || status=1
}

for seed in "${seeds[@]}"; do
    echo "As released"
    run build 20000
    echo "With sanitizers"
    run build-sanitize 2000
done
exit "$status"
