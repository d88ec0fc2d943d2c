#!/usr/bin/env bash
# Runs a command in another Debian, which becomes the simulated panel's system:
# enter.sh ROOT PLACE SHARED COMMAND...
# PLACE is the checkout there, and SHARED a folder that both have. Runs in the simulated panel, which
# discards all writes.
set -euo pipefail
root=$1 place=$2 shared=$3
shift 3
[ -e /run/talmero-panel ] || { echo "This runs in the simulated panel only" >&2 && exit 1; }

# Tests start echo peers of their own, and cannot end processes of this Debian.
for port in eth0 eth1; do
    simulator/network peer "$port" refusing
done
cp /run/talmero-panel "$root/run"
mkdir -p "$root$shared" "$root/run/netns"
mount --rbind /run/netns "$root/run/netns"
mount --bind "$shared" "$root$shared"
exec scripts/in-root "$root" "$place/tests/long/architectures/dress.sh" "$@"
