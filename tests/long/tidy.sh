#!/usr/bin/env bash
# Checks all code with clang-tidy, including the tests, and with the static analyzer of clang.
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
build_preset release
scripts/check-code.sh build --thorough
