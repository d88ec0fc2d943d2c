#!/usr/bin/env bash
# Tools that hang and do not end politely: each is waited for as long as its limit, or for as long
# as it hangs where there is none. Then a stick that is pulled at each 4096 bytes of a package, and
# one that hangs for longer than tar may. Takes five minutes, nearly all of them waiting.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

case "${1:-}" in
    "") ;;
    --help) echo "Usage: tests/long/faults.sh" && exit 0 ;;
    *) echo "Usage: tests/long/faults.sh" >&2 && exit 2 ;;
esac
install_packages "${build_packages[@]}" "${panel_packages[@]}"
build_preset release tst_toolfaults tst_vanishingstick
# The simulated panel is made by root; standard error has what Qt says of processes it ends.
simulator/panel --build build --display xvfb -- build/bin/tst_toolfaults hangs waitsWithoutLimit \
    2>/dev/null
STICK_STEP=4096 STICK_HANG=45000 simulator/panel --build build --display xvfb -- \
    build/bin/tst_vanishingstick packageIsCutAnywhere hangingReadIsWaitedFor 2>/dev/null
