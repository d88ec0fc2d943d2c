#!/usr/bin/env bash
# Tests what the session waits for, with folders in place of the kernel's, udev's and systemd's.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"
wait_for=$root/session/wait-for-devices
tree=$work/tree

# systemd's answer about the unit of a stick is in the file "state".
mkdir "$work/bin"
cat >"$work/bin/systemctl" <<SCRIPT
#!/bin/sh
echo "\$*" >>"$work/asked"
cat "$work/state"
SCRIPT
chmod +x "$work/bin/systemctl"
PATH=$work/bin:$PATH

new_boot() {
    rm -rf "$tree" "$work/asked"
    mkdir -p "$tree/dev/dri" "$tree/run/udev/data" "$tree/sys/class/input" "$tree/sys/bus/usb/devices"
    : >"$work/asked"
    unit_is loaded active
}

unit_is() { # LOADED ACTIVE
    printf 'LoadState=%s\nActiveState=%s\n' "$1" "$2" >"$work/state"
}

add_card() {
    : >"$tree/dev/dri/card0"
}

add_input() { # NUMBER AXES
    local device=$tree/sys/class/input/event$1
    mkdir -p "$device/device/capabilities"
    echo "$2" >"$device/device/capabilities/abs"
    echo "13:$1" >"$device/dev"
}

add_stick() {
    local interface=$tree/sys/bus/usb/devices/1-1:1.0
    mkdir -p "$interface"
    echo 08 >"$interface/bInterfaceClass"
}

add_partition() {
    local disk=$tree/sys/bus/usb/devices/1-1:1.0/host0/target0:0:0/0:0:0:0/block/sda
    mkdir -p "$disk/sda1"
    echo 8:0 >"$disk/dev"
    echo 8:1 >"$disk/sda1/dev"
}

describe() { # NAME [LINE]
    printf 'I:1\n%s\n' "${2-}" >"$tree/run/udev/data/$1"
}

describe_stick() {
    describe b8:0
    describe b8:1 "E:SYSTEMD_WANTS=talmero-stick@sda1.service"
}

# at_once WHAT: it must not wait, although it would for a minute
at_once() {
    status 0 timeout 2 "$wait_for" "$1" "$tree" 600 2>&1 | tee "$work/said"
    [ ! -s "$work/said" ]
}

# gives_up WHAT NAME: it must wait until its limit and name what did not come
gives_up() {
    says "^wait-for-devices: $2 is not ready\$" timeout 5 "$wait_for" "$1" "$tree" 2
}

# waits_until WHAT COMMAND...: it must end when the command has run, and not before
waits_until() {
    local what=$1 waiting
    shift
    timeout 10 "$wait_for" "$what" "$tree" 600 >"$work/said" 2>&1 &
    waiting=$!
    sleep 0.3
    kill -0 "$waiting" || return
    "$@"
    wait "$waiting" && [ ! -s "$work/said" ]
}

display_is_there() { new_boot && add_card && at_once display; }
display_comes() { new_boot && waits_until display add_card; }
display_never_comes() { new_boot && gives_up display "the display"; }
frame_buffer_is_not_enough() { new_boot && : >"$tree/dev/fb0" && gives_up display "the display"; }
touch_is_described() { new_boot && add_card && add_input 3 "260800000000003" && describe c13:3 && at_once display; }
touch_comes() { new_boot && add_card && add_input 3 3 && waits_until display describe c13:3; }
touch_never_comes() { new_boot && add_card && add_input 3 1000003 && gives_up display event3; }
other_devices_do_not_matter() { new_boot && add_card && add_input 1 0 && add_input 2 100 && at_once display; }
is_not_waited_for_again() { display_never_comes && at_once_again; }

at_once_again() {
    timeout 2 "$wait_for" display "$tree" 600 2>&1
}

no_stick() { new_boot && at_once sticks; }
stick_is_mounted() {
    new_boot && add_stick && add_partition && describe_stick && at_once sticks &&
        grep -q 'talmero-stick@sda1.service$' "$work/asked"
}
stick_is_looked_into() { new_boot && add_stick && waits_until sticks add_whole_stick; }
add_whole_stick() { describe_stick && add_partition; }
partition_is_described() { new_boot && add_stick && add_partition && describe b8:0 && waits_until sticks describe b8:1; }
stick_is_being_mounted() {
    new_boot && add_stick && add_partition && describe_stick && unit_is loaded activating &&
        waits_until sticks unit_is loaded active
}
mount_has_not_begun() {
    new_boot && add_stick && add_partition && describe_stick && unit_is loaded inactive &&
        gives_up sticks "the stick at 1-1:1.0"
}
mount_has_failed() {
    new_boot && add_stick && add_partition && describe_stick && unit_is loaded failed && at_once sticks
}
mounting_is_switched_off() {
    new_boot && add_stick && add_partition && describe_stick && unit_is masked inactive && at_once sticks
}
other_usb_devices_do_not_matter() {
    new_boot && add_stick && echo 03 >"$tree/sys/bus/usb/devices/1-1:1.0/bInterfaceClass" && at_once sticks
}
wrong_use() { status 2 "$wait_for" && status 2 "$wait_for" everything; }

for name in display_is_there display_comes display_never_comes frame_buffer_is_not_enough \
    touch_is_described touch_comes touch_never_comes other_devices_do_not_matter \
    is_not_waited_for_again no_stick stick_is_mounted stick_is_looked_into partition_is_described \
    stick_is_being_mounted mount_has_not_begun mount_has_failed mounting_is_switched_off \
    other_usb_devices_do_not_matter wrong_use; do
    check "${name//_/ }" "$name"
done
[ "$failures" -eq 0 ]
