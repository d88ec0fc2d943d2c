#!/bin/sh
# Shows a panel in a window: window-server.sh DISPLAY XAUTHORITY XEPHYR-OPTIONS...
# Runs in its own mount namespace and covers /tmp there, so that the server's socket and lock leave
# no trace on the machine, even if the server is killed.
set -eu
DISPLAY=$1
XAUTHORITY=$2
shift 2
number=${DISPLAY##*:}
number=${number%%.*}
socket=.X11-unix/X$number

mount -t tmpfs -o mode=1777 panel /mnt
mkdir -m 1777 /mnt/.X11-unix
if [ -S "/tmp/$socket" ]; then
    : >"/mnt/$socket"
    mount --bind "/tmp/$socket" "/mnt/$socket"
fi
if [ -r "$XAUTHORITY" ]; then
    cp "$XAUTHORITY" /mnt/authority
fi
mount --move /mnt /tmp
XAUTHORITY=/tmp/authority
export DISPLAY XAUTHORITY
# Shared memory does not work between the panel and the machine.
exec Xephyr -title "TALMERO panel" -extension MIT-SHM "$@"
