#!/usr/bin/env bash
# Checks each file of all code alone with clang-tidy, including the tests, and with clang's static
# analyzer. Compiles each file alone before: a missing include shows only then.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

case "${1:-}" in
    "") ;;
    --help) echo "Usage: tests/long/tidy.sh" && exit 0 ;;
    *) echo "Usage: tests/long/tidy.sh" >&2 && exit 2 ;;
esac
install_packages "${build_packages[@]}" "${check_packages[@]}" "${test_packages[@]}" \
    "${bench_packages[@]}"
build_preset debug
scripts/check-code.sh build-debug --thorough
