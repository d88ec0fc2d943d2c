#!/usr/bin/env bash
# Tests the man pages, and the tools in compat/ that replace those that Debian lacks.
# Usage: tst_compat.sh BUILD_FOLDER
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "${1:?build folder}" && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"
compat=$root/compat

man_pages_are_clean() {
    local page
    for page in "$root"/src/*.[1-8] "$root"/tools/*/*.[1-8]; do
        mandoc -T lint -W warning "$page" || return
    done
}

# same EXPECTED ACTUAL: the two lists must hold the same lines
same() {
    diff <(sort -u <<<"$1") <(sort -u <<<"$2")
}

page_names_every_key() {
    local known named
    known=$(grep -rhoE '"(app|bios|ethernet)\.[a-z0-9.]+"' "$root/src" --include='*.cpp' --include='*.h' |
        tr -d '"' | grep -vxE 'bios\.(ini|version)')
    named=$(grep -E '^\.BR? ' "$root/src/bios.ini.5" | grep -oE '(app|bios|ethernet)\.[a-z0-9.]+')
    same "$known" "$named"
}

page_names_every_file() {
    local path
    while read -r path; do
        path=${path%%%*} # up to the place of a number
        grep -qF -- "${path%/}" "$root/src/talmero-bios.1" || { echo "$path is missing" && return 1; }
    done < <(sed -n 's/.*\[\] = "\(.*\)";/\1/p' "$root/src/system/paths.h")
}

installs_below() { # PREFIX
    rm -rf "$work/image" && DESTDIR=$work/image cmake --install "$build" --prefix "$1" &&
        [ -x "$work/image$1/bin/talmero-bios" ] &&
        [ -e "$work/image$1/share/man/man5/bios.ini.5" ] &&
        [ -x "$work/image$1/lib/talmero-bios/compat/bin/ifconfig" ] &&
        [ -x "$work/image$1/bin/talmero-guard" ] &&
        grep -q "^settings=$1/bin/talmero-settings$" "$work/image$1/lib/talmero-bios/start-session" &&
        [ -x "$work/image$1/lib/talmero-bios/start-session" ] &&
        grep -q "=$1/bin/talmero-guard watch" \
            "$work/image$1/lib/systemd/system/talmero-guard.service" &&
        grep -q "=$1/lib/talmero-bios/compat/stick mount" \
            "$work/image$1/lib/systemd/system/talmero-stick@.service" &&
        grep -q "^PATH=$1/lib/talmero-bios/compat/bin:$1/bin:" \
            "$work/image$1/share/doc/talmero-bios/examples/xinitrc"
}

ifconfig_prints_the_classic_format() {
    says '^eth1 .*HWaddr 02:00:00:00:00:02' panel -- bash -c \
        "export PATH='$compat/bin':\$PATH
         rm /usr/sbin/ifconfig; ifconfig eth0 10.1.2.3 && ifconfig eth0 && ifconfig" &&
        grep -qE '^ +inet addr:10\.1\.2\.3  Bcast:10\.255\.255\.255  Mask:255\.0\.0\.0$' "$work/said"
}

# udev compares them with the factory's naming rules, which hold what ifconfig printed.
hardware_addresses_are_printed_like_the_kernel_does() {
    says 'HWaddr 02:00:00:00:ab:cd' panel -- bash -c \
        "ip link set dev eth0 address 02:00:00:00:ab:cd
         '$compat/bin/ifconfig' eth0; cat /sys/class/net/eth0/address" &&
        grep -qx '02:00:00:00:ab:cd' "$work/said" &&
        status 1 panel -- "$compat/bin/ifconfig" eth9
}

# Stand-ins for the tools that query and mount devices, because a simulated panel has no disk.
# They read two files. devices: name, disk or "-", type, file system or "-". mounts: device, place.
cat >"$work/sticks.sh" <<'SCRIPT'
set -eu
state=/run/sticks
mkdir -p "$state/bin"
cat >"$state/tool" <<'TOOL'
#!/bin/bash
cd /run/sticks
last=${!#}
case ${0##*/} in
lsblk)
    grep -q "^${last#/dev/} " devices || exit 32
    case $* in
    *PKNAME*) awk -v n="${last#/dev/}" '$1 == n { print $2 == "-" ? "" : $2 }' devices ;;
    *NAME,TYPE*) awk -v n="${last#/dev/}" '$1 == n || $2 == n { print $1, $3 }' devices ;;
    *MOUNTPOINT*) awk -v n="${last#/dev/}" '$1 == n || $2 == n { print "/dev/" $1 }' devices |
        while read -r d; do sed -n "s|^$d ||p" mounts; done ;;
    esac ;;
blkid) awk -v n="${last#/dev/}" '$1 == n && $4 != "-" { print $4 }' devices ;;
findmnt)
    case $* in
    *--source*) sed -n "s|^$4 ||p" mounts | grep . ;;
    *) sed -n "s|\(.*\) $(sed 's/.*--mountpoint \([^ ]*\).*/\1/' <<<"$*")$|\1|p" mounts | grep . ;;
    esac ;;
mount)
    [ ! -e refuse ] || exit 32
    echo "$*" >>calls
    echo "${*: -2}" >>mounts ;;
umount)
    echo "umount $*" >>calls
    [ ! -e busy ] || [ "$1" = --lazy ] || exit 32
    sed -i "\\| $last\$|d" mounts ;;
esac
TOOL
chmod +x "$state/tool"
for tool in lsblk blkid findmnt mount umount; do ln -s ../tool "$state/bin/$tool"; done
: >"$state/mounts"
PATH=$state/bin:$PATH
devices() { printf '%s\n' "$@" >"$state/devices"; while read -r name _; do : >"/dev/$name"; done <"$state/devices"; }
mounts() { diff - "$state/mounts"; }
SCRIPT

sticks() { # SCRIPT: for bash; it ends with the first failure. $stick is the tool.
    panel --no-files --share "$work" -- env stick="$compat/stick" \
        bash -c "source '$work/sticks.sh'; $1"
}

# udev may report the second partition first. Swap space and NTFS are not mounted.
# shellcheck disable=SC2016
sticks_get_places_in_order() {
    sticks '
        devices "sda - disk -" "sda1 sda part vfat" "sda2 sda part ext4" "sda3 sda part swap" \
            "sda10 sda part exfat" "sdb - disk vfat" "sdc - disk ntfs"
        for name in sda sda2 sda1 sda10 sda3 sdb sdc; do "$stick" mount "$name"; done
        mounts <<TEXT
/dev/sda1 /media/usb0
/dev/sda2 /media/usb1
/dev/sda10 /media/usb2
/dev/sdb /media/usb3
TEXT
        diff - "$state/calls" <<TEXT
--types vfat --options flush,utf8,noatime,noexec,nosuid,nodev /dev/sda1 /media/usb0
--types ext4 --options sync,noatime,noexec,nosuid,nodev /dev/sda2 /media/usb1
--types exfat --options sync,noatime,noexec,nosuid,nodev /dev/sda10 /media/usb2
--types vfat --options flush,utf8,noatime,noexec,nosuid,nodev /dev/sdb /media/usb3
TEXT'
}

# shellcheck disable=SC2016
pulled_stick_frees_its_place() {
    sticks '
        devices "sda - disk vfat" "sdb - disk vfat" "sdc - disk vfat"
        "$stick" mount sda; "$stick" mount sdb
        : >"$state/busy"
        "$stick" unmount sda; [ ! -e /media/usb0 ]
        "$stick" mount sdc
        rm /dev/sdb # without an event
        "$stick" mount sda
        mounts <<TEXT
/dev/sdc /media/usb0
/dev/sda /media/usb1
TEXT
        grep -qx "umount --lazy /media/usb0" "$state/calls"'
}

# A panel may boot from a USB disk, which must stay mounted.
# shellcheck disable=SC2016
own_disk_is_left_alone() {
    sticks '
        devices "sda - disk -" "sda1 sda part vfat" "sda2 sda part ext4"
        echo "/dev/sda2 /" >"$state/mounts"
        "$stick" mount sda1; "$stick" unmount sda2
        mounts <<<"/dev/sda2 /"
        [ ! -e "$state/calls" ]'
}

# shellcheck disable=SC2016
refused_stick_is_told() {
    sticks '
        devices "sda - disk vfat"
        : >"$state/refuse"
        ! "$stick" mount sda && ! "$stick" mount sdx && ! "$stick" mount ../etc && ! "$stick"
        rm "$state/refuse"
        for n in 0 1 2 3 4 5 6 7 8 9; do echo "/dev/null /media/usb$n"; done >"$state/mounts"
        ! "$stick" mount sda' && grep -q "no place is free" "$work/output"
}

# The calibrator shows its crosses an eighth of the screen away from the edges. The test touches
# some pixels beside them, and then as if the glass were mirrored and rotated.
cat >"$work/calibrate.sh" <<'SCRIPT'
set -eu
device="PenMount USB Touchscreen"
matrix="Coordinate Transformation Matrix"
at() { "$finger" send "tap $1 $2" && xdotool getmouselocation --shell | sed -n 's/^[XY]=//p' | paste -sd ' '; }
near() { # EXPECTED ACTUAL: at most three pixels apart
    awk -v w="$1" -v g="$2" 'BEGIN { split(w, a); split(g, b)
        exit !((a[1]-b[1])^2 <= 9 && (a[2]-b[2])^2 <= 9) }' || { echo "$2 is not $1"; return 1; }
}
calibrator_is_ready() {
    for ((try = 0; try < 50; try++)); do
        # the window does not show when it begins to accept input
        xwininfo -root -children | grep -q ' 800x600+' && sleep 0.1 && return
        sleep 0.05
    done
    return 1
}
touched() { # POINT...: runs the calibrator and touches the points in turn
    local point
    xCal & local tool=$!
    calibrator_is_ready
    for point in "$@"; do "$finger" send "tap $point"; sleep 0.15; done # until the next cross
    wait "$tool"
}
SCRIPT

in_calibration() { # SCRIPT
    panel --display xorg --share "$work" -- env finger="$root/simulator/finger" bash -c "
        export PATH='$compat/bin':\$PATH; source '$work/calibrate.sh'; $1"
}

# shellcheck disable=SC2016
calibration_is_kept() {
    in_calibration '
        xCal --restore
        touched "110 85" "690 85" "110 515" "690 515"
        near "100 75" "$(at 110 85)"
        near "700 525" "$(at 690 515)"
        near "400 300" "$(at 400 300)"
        touched "690 515" "690 85" "110 515" "110 85"
        near "100 75" "$(at 690 515)"
        near "700 75" "$(at 690 85)"
        xinput set-prop "$device" "$matrix" 1 0 0 0 1 0 0 0 1
        near "690 515" "$(at 690 515)"
        xCal --restore
        near "100 75" "$(at 690 515)"
        grep -q "MatchProduct \"$device\"" /etc/X11/xorg.conf.d/99-talmero-calibration.conf
        before=$(cat /etc/X11/xorg.conf.d/*)
        ! { (calibrator_is_ready; xdotool key Escape) & xCal; }
        near "100 75" "$(at 690 515)"
        [ "$before" = "$(cat /etc/X11/xorg.conf.d/*)" ]'
}

# shellcheck disable=SC2016
no_controller_is_told() {
    says 'xCal: no touch controller' panel --display xvfb -- "$compat/bin/xCal" &&
        says 'xCal: the X server has no input devices' panel -- "$compat/bin/xCal"
}

check "man pages are clean" man_pages_are_clean
check "bios.ini(5) names every key" page_names_every_key
check "talmero-bios(1) names every file" page_names_every_file
check "installs below /usr" installs_below /usr
check "installs below /usr/local" installs_below /usr/local
check "ifconfig prints the classic format" ifconfig_prints_the_classic_format
check "hardware addresses are printed like the kernel does" \
    hardware_addresses_are_printed_like_the_kernel_does
check "sticks get places in order" sticks_get_places_in_order
check "a pulled stick frees its place" pulled_stick_frees_its_place
check "the panel's own disk is left alone" own_disk_is_left_alone
check "a stick that is refused is told" refused_stick_is_told
check "a calibration is kept" calibration_is_kept
check "a missing controller is told" no_controller_is_told

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }
