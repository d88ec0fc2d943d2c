#!/usr/bin/env bash
# Lets tools hang and ignore SIGTERM: the program must wait until the time limit, or until the tool
# ends if there is none. Then pulls a stick at each 4096 bytes of a package, and lets one hang for
# longer than tar's limit. Takes five minutes, mostly waiting.
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
# Standard error has Qt's warnings about the processes that it ends.
simulator/panel --build build --display xvfb -- build/tests/tst_toolfaults hangs waitsWithoutLimit \
    2>/dev/null
STICK_STEP=4096 STICK_HANG=45000 simulator/panel --build build --display xvfb -- \
    build/tests/tst_vanishingstick packageIsCutAnywhere hangingReadIsWaitedFor 2>/dev/null
