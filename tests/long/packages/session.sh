#!/usr/bin/env bash
# Tests the booted panel. boot-installed.sh runs it: session.sh TOUCHES PICTURES
set -euo pipefail
touches=$1
pictures=$2
: "${booted:?}" "${simulator:?}" "${panel_root:?}"
export DISPLAY=:0

inside() {
    nsenter --target "$booted" --mount --pid --cgroup --root --wd=/ -- "$@"
}

say() {
    printf '%6s s  %s\n' "$SECONDS" "$1"
}

die() {
    echo "FAIL: $1" >&2
    inside journalctl --no-pager --quiet --lines 30 >&2 || true
    exit 1
}

# wait_for SECONDS WHAT COMMAND...
wait_for() {
    local limit=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < limit)) || die "$what"
        sleep 0.1
    done
}

# Runs pgrep outside, because the minimal system has none.
program() {
    pgrep -x talmero-bios
}

kill_all() { # SIGNAL NAME
    pgrep -x "$2" | xargs --no-run-if-empty kill "-$1"
}

# A new X server opens a new touch device, to which finger must connect again.
let_go() {
    kill "$finger"
    wait "$finger" 2>/dev/null || true
    rm -f /run/panel/touch.socket /run/panel/finger.socket
}

hold_finger() {
    wait_for 60 "the session does not start" program
    wait_for 10 "there is no touch controller" test -S /run/panel/touch.socket
    "$simulator/finger" serve --size 800x600 --device /run/panel/touch.socket \
        --socket /run/panel/finger.socket &
    finger=$!
    wait_for 10 "the finger does not reach the controller" test -S /run/panel/finger.socket
}

touch_screen() {
    "$touches" "$@" >/run/panel/touches.log 2>&1 || {
        cp /tmp/failed.png "$pictures" 2>/dev/null || true
        die "$(cat /run/panel/touches.log)"
    }
}

no_server() {
    ! pgrep -x Xorg
}

restarted() { # OLD_PROCESS
    local now
    now=$(program) && [[ $now != "$1" ]]
}

end_and_wait() { # WHAT COMMAND...
    local what=$1 old
    shift
    old=$(program)
    let_go
    "$@"
    wait_for 30 "the session does not come back after $what" restarted "$old"
    hold_finger
    touch_screen countdown
    say "$what: the session is back at the countdown"
}

hold_finger
touch_screen countdown "$pictures/countdown.png" runtime
say "boot, countdown, runtime; its end leads to the main page"
touch_screen package
[[ $(cat "$panel_root/home/dest/compile/project") == "line 1" ]] || die "the package is not installed"
say "package installed by taps"
touch_screen lease
grep -q '^iface eth1 inet dhcp' "$panel_root/etc/network/interfaces" || die "the interfaces file is not written"
ip address show dev eth1 | grep -q 'inet 192\.168\.1\.1' || die "there is no lease"
say "lease obtained by taps"
touch_screen status "$pictures/status.png"
grep -q . <(inside journalctl --quiet --unit talmero-session --grep 'doProcess "ifconfig"') ||
    die "the journal has no debug lines"
say "status page; debug lines are in the journal"
path=$(sed -n 's/^PATH=//p' "$panel_root/root/.xinitrc")
inside env DISPLAY=:0 PATH="$path" talmero-doctor >/run/panel/doctor.log ||
    die "talmero-doctor finds: $(grep -v '^ok' /run/panel/doctor.log)"
say "talmero-doctor: $(grep -c '^ok' /run/panel/doctor.log) times ok and nothing else"
end_and_wait "a killed program" kill_all KILL talmero-bios
end_and_wait "a killed X server" kill_all KILL Xorg
let_go
for _ in 1 2 3 4 5 6 7 8; do # more often than systemd's default start limit allows
    kill_all KILL talmero-bios || true # may not be up yet
    sleep 3.5
done
hold_finger
touch_screen countdown
say "ten ends in a row: the session is back at the countdown"
touch_screen settings calibration
grep -q TransformationMatrix "$panel_root/etc/X11/xorg.conf.d/99-talmero-calibration.conf" ||
    die "the calibration is not kept"
say "calibrated by taps"
inside mv /root/.xinitrc /root/xinitrc
kill_all TERM talmero-bios
wait_for 20 "the session goes on without its script" no_server
sleep 5 # the session must not start again
no_server || die "the session is started without its script"
say "without /root/.xinitrc there is no session"
