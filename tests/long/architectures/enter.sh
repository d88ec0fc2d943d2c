#!/usr/bin/env bash
# Runs a command in another Debian, which becomes the simulated panel's system:
# enter.sh ROOT PLACE SHARED COMMAND...
# PLACE is the checkout there, and SHARED a folder that both have. Runs in the simulated panel, which
# discards all writes.
set -euo pipefail
root=$1 place=$2 shared=$3
shift 3
[ -e /run/talmero-panel ] || { echo "This runs in the simulated panel only" >&2 && exit 1; }

cp /run/talmero-panel "$root/run"
mkdir -p "$root$shared"
mount --bind "$shared" "$root$shared"
exec scripts/in-root "$root" "$place/tests/long/architectures/dress.sh" "$@"
