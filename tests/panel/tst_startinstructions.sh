#!/usr/bin/env bash
# Counts the instructions from the start of the program until it hands its first frame to the
# display, which no other load on the machine changes, and those of a bare window of Qt. Their ratio
# outlives an update of Qt. Growth by more than 3 percent fails.
# Runs in the simulated panel: tst_startinstructions.sh PROGRAM BARE_WINDOW
set -euo pipefail
# Thousandths of a bare window's instructions. On Debian 13, Qt Network brings libproxy, libcurl and
# 37 other libraries, which a bare window does not load.
declare -A recorded_on=([bookworm]=1525 [trixie]=2064)
recorded=$(. /etc/os-release && echo "${recorded_on[$VERSION_CODENAME]}")
[ -e /run/talmero-panel ]

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Tools that answer at once, and no other fonts than on each machine: both are part of the count.
mkdir "$work/tools"
for tool in beep date du hwclock ifconfig sleep xinput xset; do
    ln -s /bin/true "$work/tools/$tool"
done
printf '#!/bin/sh\necho LVDS1 connected primary\n' >"$work/tools/xrandr"
chmod +x "$work/tools/xrandr"
cat >"$work/fonts.conf" <<TEXT
<fontconfig>
<dir>/usr/share/fonts/truetype/dejavu</dir>
<dir>/usr/share/fonts/truetype/open-sans</dir>
<cachedir>$work/fonts</cachedir>
</fontconfig>
TEXT
export PATH=$work/tools:$PATH FONTCONFIG_FILE=$work/fonts.conf LC_ALL=C.UTF-8

# count PROGRAM: leaves the number in $counted
count() {
    local valgrind waited
    rm -f "$work"/profile*
    # The first start makes the caches of the fonts.
    timeout 1 "$1" >/dev/null 2>&1 || true
    valgrind --tool=callgrind --callgrind-out-file="$work/profile" \
        --dump-before=xcb_shm_put_image "$1" >"$work/log" 2>&1 &
    valgrind=$!
    for ((waited = 0; waited < 300; ++waited)); do
        ! grep -qs '^totals:' "$work/profile.1" || break
        read -r -t 0.1 <> <(:) || true # "sleep" returns at once here
    done
    kill "$valgrind"
    wait "$valgrind" || true
    [ -e "$work/profile.1" ] || { cat "$work/log" && exit 1; }
    counted=$(sed -n 's/^totals: //p' "$work/profile.1")
}

count "$2"
bare=$counted
count "$1"
ratio=$((counted * 1000 / bare))
echo "instructions until the first frame: $counted; bare window: $bare; ratio $ratio, recorded $recorded"
if [ "$ratio" -gt $((recorded * 103 / 100)) ]; then
    echo "FAIL: more than 3 percent above the recorded ratio. What does the start do that it did not do before?"
    exit 1
fi
if [ "$ratio" -lt $((recorded * 97 / 100)) ]; then
    echo "It has become less: record the new ratio in this script."
fi
