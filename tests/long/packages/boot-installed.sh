#!/usr/bin/env bash
# Boots a root file system with the installed packages: its own systemd starts the session. Runs in
# the simulated panel, which provides the network, the display and the touch device.
# Usage: boot-installed.sh ROOT COMMAND...
# The command runs beside the booted system, whose root is $panel_root. ROOT itself is unchanged,
# because the simulated panel discards all writes.
set -euo pipefail
root=$1
shift
[ -e /run/talmero-panel ] || { echo "This runs in the simulated panel only" >&2 && exit 1; }
simulator=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../../simulator" && pwd)
build=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../../build" && pwd)
size=800x600
# shellcheck source=simulator/lib/display.sh
source "$simulator/lib/display.sh"

# Adds the panel's own files and follows the integrator's guide.
add_panel_files() {
    cp -r "$simulator/files/opt/." "$root/opt"
    mkdir -p "$root/opt/talmero/hmi" "$root/media/usb0"
    cp "$build/bin/standin-runtime" "$root/opt/talmero/hmi/runtime"
    cp "$build/simulator/stick/apps/line-1.kpc" "$root/media/usb0"
    install -m 755 "$root/usr/share/doc/talmero-bios/examples/xinitrc" "$root/root/.xinitrc"
    chroot "$root" systemctl --quiet enable talmero-session
}

# Replaces the hardware: a screen in memory and a test device for touches. There is no console here.
add_hardware() {
    cp /usr/lib/xorg/modules/drivers/dummy_drv.so "$root/usr/lib/xorg/modules/drivers"
    write_xorg_conf >"$root/etc/X11/xorg.conf"
    local unit=$root/lib/systemd/system/talmero-session.service
    mkdir -p "$root/etc/systemd/system/talmero-session.service.d"
    {
        printf '[Service]\nExecStart=\n'
        grep '^ExecStart=' "$unit" | sed 's/ vt7/ -novtswitch -sharevts/'
    } >"$root/etc/systemd/system/talmero-session.service.d/hardware.conf"
    ! cmp -s "$unit" "$root/etc/systemd/system/talmero-session.service.d/hardware.conf"
}

# Becomes the first process of the new root, with the panel's network and display. It gets its own
# /tmp, because systemd empties that at boot, and the checkout may be below /tmp.
# shellcheck disable=SC2016 # the inner shell expands it
readonly enter='
    set -e
    mount --bind "$0" "$0" && cd "$0"
    mount -t proc proc proc
    mount --rbind /dev dev
    mount -t tmpfs -o mode=1777 tmp tmp && mkdir tmp/.X11-unix
    mount --bind /tmp/.X11-unix tmp/.X11-unix
    mount -t sysfs -o ro sysfs sys && mount -t cgroup2 cgroup sys/fs/cgroup
    mount -t tmpfs -o mode=755 run run
    mkdir run/panel run/old && mount --bind /run/panel run/panel
    pivot_root . run/old && umount -l run/old && rmdir run/old
    exec env -i container=talmero /lib/systemd/systemd --log-target=journal'

end_boot() {
    kill -KILL "$first" 2>/dev/null || true
    wait "$first" 2>/dev/null || true
}

add_panel_files
add_hardware
unshare --mount --pid --cgroup --uts --fork --kill-child bash -c "$enter" "$root" >/run/panel/boot.log 2>&1 &
first=$!
trap end_boot EXIT
read -r systemd _ < <(until grep . "/proc/$first/task/$first/children"; do sleep 0.1; done)
export panel_root=/proc/$systemd/root booted=$systemd simulator
"$@"
