#!/usr/bin/env bash
# Touches the settings window and the factory window at random, 20,000 times each: as released, to
# measure memory, and with the sanitizers, to find errors and leaks.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    echo "Usage: tests/long/walk.sh [SEED [STEPS]] (default: 1 20000)"
}

case "${1:-}" in
    --help) usage && exit 0 ;;
    -*) usage >&2 && exit 2 ;;
esac
install_packages "${build_packages[@]}" "${panel_packages[@]}"
status=0
for preset in release sanitize; do
    build_preset "$preset" randomwalk
    folder=build
    [ "$preset" = release ] || folder=build-$preset
    echo "$preset"
    for window in "" --factory; do
        # Freed blocks in malloc's per-thread caches would count as memory in use.
        GLIBC_TUNABLES=glibc.malloc.tcache_count=0 \
            LSAN_OPTIONS=suppressions=$PWD/tests/leaks.supp:print_suppressions=0 \
            simulator/panel --build "$folder" --display xvfb -- \
            "$folder/bin/randomwalk" $window --seed "${1:-1}" --steps "${2:-20000}" || status=1
    done
done
exit "$status"
