#!/usr/bin/env bash
# Fuzzes each target for an hour.
cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit

case "${1:-}" in
"") exec tests/robustness/fuzz/run.sh 1 ;;
--help) echo "Usage: tests/long/fuzz.sh; tests/robustness/fuzz/run.sh has options" ;;
*) echo "Usage: tests/long/fuzz.sh" >&2 && exit 2 ;;
esac
