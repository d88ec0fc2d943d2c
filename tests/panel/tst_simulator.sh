#!/usr/bin/env bash
# Tests the simulated panel and run.sh. Usage: tst_simulator.sh BUILD_FOLDER
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "${1:?build folder}" && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"

is_picture() { # FILE SIZE: a PNG of that size with more than 50 colours
    [ "$(identify -format %wx%h "$1")" = "$2" ] && [ "$(identify -format %k "$1")" -gt 50 ]
}

mounts_and_displays() {
    cat /proc/self/mounts
    find /tmp -maxdepth 1 -name '.X*' | sort
}

# CAP_SYS_TIME must be missing from the bounding set, so that no process in the panel can gain it.
clock_is_out_of_reach() {
    local capabilities
    capabilities=$(panel -- sed -n 's/^CapBnd:\t//p' /proc/self/status)
    [ $((0x$capabilities >> 25 & 1)) -eq 0 ]
}

host_is_unchanged() {
    panel -- sh -c 'echo x >/etc/panel-was-here && rm /etc/passwd && mkdir -p /home/dest/x &&
        echo 9 >/opt/talmero/bios/fwver && cat /etc/panel-was-here' &&
        [ ! -e /etc/panel-was-here ] && [ -e /etc/passwd ] && [ ! -e /home/dest/x ]
}

# sudo drops variables, but what a sanitizer reports depends on them.
options_of_sanitizers_pass_sudo() {
    local as_user=()
    [ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid 65534 --clear-groups)
    cp -r "$root/simulator" "$work" && chmod -R go+rX "$work" &&
        printf '#!/bin/sh\nprintf "%%s\\n" "$@"\n' >"$work/sudo" && chmod 755 "$work/sudo" &&
        LSAN_OPTIONS="two words" PATH=$work:$PATH "${as_user[@]}" "$work/simulator/panel" -- true |
        grep -qx 'LSAN_OPTIONS=two words'
}

share_reaches_the_host() {
    mkdir "$work/shared" && panel --share "$work/shared" -- touch "$work/shared/file" &&
        [ -e "$work/shared/file" ]
}

panels_are_separate() {
    local first meeting=$work/meeting
    mkdir "$meeting" && mkfifo "$meeting/written" "$meeting/looked" || return
    # shellcheck disable=SC2016
    panel --share "$meeting" -- timeout 20 sh -c \
        'echo 1 >/opt/mine && : >"$0/written" && read -r _ <"$0/looked"; cat /opt/mine' "$meeting" \
        >"$work/first" &
    first=$!
    # shellcheck disable=SC2016
    panel --share "$meeting" -- timeout 20 sh -c \
        ': <"$0/written" && test ! -e /opt/mine && : >"$0/looked"' "$meeting" && wait "$first" &&
        [ "$(cat "$work/first")" = 1 ]
}

clock_tools_are_stand_ins() {
    says '^\[tool\] date 010203042026$' panel -- date 010203042026 &&
        says '^\[tool\] hwclock -w$' panel -- hwclock -w &&
        says '^\[tool\] beep -f 1000$' panel -- beep -f 1000 &&
        says "^$(date +%Y)$" panel -- date +%Y
}

# shellcheck disable=SC2016
finger_presses_the_touch_device() {
    panel --display xorg -- bash -c '
        device="PenMount USB Touchscreen"
        set -e
        xinput --list --name-only | grep -qx "$device"
        xinput query-state "$device" | grep -q "button\[1\]=up"
        "$0/finger" send "down 100 100"
        xinput query-state "$device" | grep -q "button\[1\]=down"
        "$0/finger" send up
        xinput query-state "$device" | grep -q "button\[1\]=up"' "$root/simulator"
}

# shellcheck disable=SC2016
brightness_really_changes() {
    panel --display xorg -- sh -c '
        name=$(xrandr -q | sed -n "s/ connected .*//p")
        xrandr --output "$name" --brightness 0.5 && xrandr --verbose | grep -q "Brightness: 0.50"'
}

screen_really_rotates() {
    panel --display xephyr --size 640x480 -- sh -c '
        xrandr --output default --rotate left && xrandr -q | grep -q "current 480 x 640"'
}

every_size_starts() {
    local size
    for size in 800x600 1024x768 1280x800 480x800; do
        panel --display xorg --size "$size" -- xrandr -q | grep -q "current ${size/x/ x }" || return
    done
}

trace_names_each_tool() {
    says "^\[tool\] xset s 600$" panel --trace --display xorg -- xset s 600 &&
        says "^\[tool\] sleep 0$" panel --trace -- sleep 0
}

# Sourced in the panel. The kernel needs a moment to remove a process that has ended.
cat >"$work/network.sh" <<'SCRIPT'
set -euo pipefail

refused() { ! "$@"; }

has_address() { # PORT
    ifconfig "$1" | grep "inet addr:"
}

no_client_runs() {
    local try
    for ((try = 0; try < 50; try++)); do
        pgrep -r R,S,D dhclient >/dev/null || return 0
        sleep 0.05
    done
    pgrep -a dhclient
    return 1
}

# The client asks at once, and a server answers within milliseconds. So a client that timeout has to
# end gets no answer.
gets_no_lease() { # PORT SECONDS
    local result=0
    timeout "$2" dhclient "$1" || result=$?
    [ "$result" -eq 124 ] && ! has_address "$1" && no_client_runs
}

gets_lease() { # PORT
    timeout 5 dhclient "$1" && has_address "$1"
}

# "dhclient -r" ends the client only after it has written this file.
client_is_known() {
    timeout 5 bash -c "until [ -s /run/dhclient.pid ]; do sleep 0.02; done"
}
SCRIPT

in_network() { # SCRIPT: run by bash until the first failure; $network is simulator/network
    panel --share "$work" -- env network="$root/simulator/network" \
        bash -c "source '$work/network.sh'; $1"
}

# shellcheck disable=SC2016
both_ports_get_a_lease() {
    in_network '
        for port in eth0 eth1; do
            number=${port#eth}
            mac=02:00:00:00:00:0$((number + 1))
            subnet="192\.168\.$number"
            ifconfig "$port" | grep -qE "HWaddr $mac *$"
            refused has_address "$port"
            gets_lease "$port"
            ifconfig "$port" |
                grep -E "^ +inet addr:$subnet\.1[0-9]{2}  Bcast:$subnet\.255  Mask:255\.255\.255\.0$"
            "$network" leases | grep -E "^$port $subnet\.1[0-9]{2} $mac$"
        done'
}

# shellcheck disable=SC2016
lease_is_released() {
    in_network '
        gets_lease eth0
        client_is_known
        timeout 5 dhclient eth0 -r
        refused has_address eth0
        no_client_runs
        [ -z "$("$network" leases)" ]'
}

# shellcheck disable=SC2016
client_waits_while_dhcp_is_off() {
    in_network '
        "$network" dhcp eth0 off
        gets_no_lease eth0 2
        gets_lease eth1
        "$network" dhcp eth0 on
        gets_lease eth0'
}

# shellcheck disable=SC2016
cable_can_be_unplugged() {
    in_network '
        running() { ifconfig "$1" | grep "UP BROADCAST RUNNING"; }
        running eth0
        "$network" cable eth0 out
        refused running eth0
        ifconfig eth0 | grep "UP BROADCAST"
        running eth1
        gets_no_lease eth0 2
        "$network" cable eth0 in
        running eth0
        gets_lease eth0'
}

# shellcheck disable=SC2016
peer_echoes_on_either_port() {
    in_network '
        for port in eth0 eth1; do
            ifconfig "$port" 192.168.0.9
            exec 3<>/dev/tcp/192.168.0.30/33
            for text in first second; do
                echo "$text" >&3
                read -r -t 2 answer <&3
                [ "$answer" = "$text" ]
            done
            exec 3>&-
            ifconfig "$port" 0.0.0.0
        done'
}

# shellcheck disable=SC2016
peer_is_replaced() {
    in_network '
        ifconfig eth0 192.168.0.9
        "$network" peer eth0 refusing
        ! (exec 3<>/dev/tcp/192.168.0.30/33) 2>/dev/null
        "$network" peer eth0 extra
        exec 3<>/dev/tcp/192.168.0.30/33
        printf text >&3
        read -r -N 5 -t 2 answer <&3
        [ "$answer" = "text#" ]'
}

# shellcheck disable=SC2016
serial_ports_echo() {
    panel -- bash -ec '
        for port in 0 1 2; do
            exec 3<>"/dev/ttyS$port"
            printf hello >&3
            read -r -N 5 -t 2 answer <&3
            [ "$answer" = hello ]
            exec 3>&-
        done'
}

# shellcheck disable=SC2016
plugs_are_replaced() {
    panel -- bash -ec '
        "$1/simulator/serial" whole none extra
        [ ! -e /dev/ttyS1 ]
        exec 3<>/dev/ttyS2
        printf hello >&3
        read -r -N 6 -t 2 answer <&3
        [ "$answer" = "hello#" ]
        ! "$1/simulator/serial" whole 2>/dev/null' sh "$root"
}

# shellcheck disable=SC2016
interfaces_are_read() {
    in_network '
        [ "$(ifquery --list)" = lo ]
        printf "auto eth1\niface eth1 inet static\n    address 192.168.0.9\n" >>/etc/network/interfaces
        ifquery eth1 | grep -x "address: 192.168.0.9"
        ifup --no-act -a 2>&1 | grep "ip addr add 192.168.0.9"'
}

network_command_refuses() {
    status 1 "$root/simulator/network" leases &&
        status 2 panel -- "$root/simulator/network" cable eth2 out &&
        status 2 panel -- "$root/simulator/network" dhcp eth0 maybe
}

# Ctrl-C in a terminal reaches the whole process group.
interrupt_leaves_nothing() {
    local before after run try
    before=$(mounts_and_displays)
    setsid "$root/simulator/panel" --build "$build" --display xorg -- \
        "$build/bin/talmero-bios" >"$work/run" 2>&1 &
    run=$!
    for ((try = 0; try < 200; try++)); do
        ! pgrep -s "$run" -x talmero-bios >/dev/null || break
        sleep 0.05
    done
    [ "$try" -lt 200 ] || return
    kill -INT -- "-$run"
    wait "$run"
    after=$(mounts_and_displays)
    [ "$before" = "$after" ] && ! pgrep -s "$run" >/dev/null
}

page_of() { # FILE: the port in the address that a panel has printed there
    sed -n 's|^The panel is shown at http://127.0.0.1:\([0-9]*\)/vnc.html?.*|\1|p' "$1"
}

# The second panel must find the port of the first one in use and take another.
browser_shows_two_panels() {
    local first port other try
    "$root/simulator/panel" --build "$build" --display web -- sleep 30 >"$work/first" &
    first=$!
    for ((try = 0; try < 200; try++)); do
        port=$(page_of "$work/first")
        [ -z "$port" ] || break
        sleep 0.05
    done
    panel --display web -- true >"$work/second"
    other=$(page_of "$work/second")
    exec 3<>"/dev/tcp/127.0.0.1/$port" && printf 'GET /vnc.html HTTP/1.0\r\n\r\n' >&3 &&
        grep -q '<title>noVNC' <&3
    local status=$?
    kill -INT "$first" && wait "$first"
    exec 3>&-
    [ "$status" -eq 0 ] && [ "$other" -gt "$port" ]
}

run_takes_a_picture() {
    (cd "$work" && "$root/run.sh" --screenshot picture.png --after 0.5 "$@")
}

check "exits with the command's status" status 7 panel -- sh -c 'exit 7'
# shellcheck disable=SC2016
check "exits with the signal's status" status 139 panel -- sh -c 'kill -SEGV $$'
check "reports an unknown command" status 127 panel -- no-such-command
check "refuses unknown options" status 2 panel --unknown true
check "does not change the host" host_is_unchanged
check "keeps the options of sanitizers through sudo" options_of_sanitizers_pass_sudo
check "shares a folder" share_reaches_the_host
check "keeps panels apart" panels_are_separate
check "keeps the clock out of reach" clock_is_out_of_reach
check "stands in for the clock tools" clock_tools_are_stand_ins
check "has no serial ports of the machine" says '^/dev/pts/' panel -- readlink /dev/ttyS0
check "prints ifconfig's classic format" says 'Link encap:Local Loopback' panel -- ifconfig lo
check "gives both ports a lease" both_ports_get_a_lease
check "releases a lease" lease_is_released
check "gives no lease while DHCP is off" client_waits_while_dhcp_is_off
check "unplugs a cable" cable_can_be_unplugged
check "has a peer that echoes" peer_echoes_on_either_port
check "replaces its peer" peer_is_replaced
check "has serial ports that echo" serial_ports_echo
check "replaces its loopback plugs" plugs_are_replaced
check "reads /etc/network/interfaces with ifupdown" interfaces_are_read
check "refuses unknown network commands" network_command_refuses
check "has a touch device" finger_presses_the_touch_device
check "changes brightness" brightness_really_changes
check "rotates the screen" screen_really_rotates
check "starts in several sizes" every_size_starts
check "traces tools" trace_names_each_tool
check "ends on Ctrl-C and leaves nothing" interrupt_leaves_nothing
check "shows two panels in the browser" browser_shows_two_panels

check "run.sh explains itself" says '^Usage: ./run.sh' "$root/run.sh" --help
check "run.sh refuses unknown options" status 2 "$root/run.sh" --unknown
check "run.sh refuses a bad size" status 2 "$root/run.sh" --size 800
check "run.sh takes a picture" run_takes_a_picture
check "the picture shows something" is_picture "$work/picture.png" 800x600
check "run.sh starts the factory window in another size" run_takes_a_picture --factory --size 1024x768
check "that picture has this size" [ "$(identify -format %wx%h "$work/picture.png")" = 1024x768 ]

[ "$failures" -eq 0 ]
