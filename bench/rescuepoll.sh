#!/bin/bash
# CPU time of the idle program with its rescue poll, against a shell loop that runs the same
# xinput command at the same rate. Runs in the simulated panel: rescuepoll.sh PROGRAM SECONDS
set -u

program=$1
seconds=$2
device="PenMount USB Touchscreen"
target=1.20
[[ -e /run/talmero-panel ]] || exit 2

# CPU time of a process and of what it has waited for, in clock ticks.
ticks_of() {
    local fields
    read -ra fields <"/proc/$1/stat"
    echo $((fields[13] + fields[14] + fields[15] + fields[16]))
}

# cpu_per_minute PROCESS: milliseconds of CPU time in a minute
cpu_per_minute() {
    local before after
    before=$(ticks_of "$1")
    sleep "$seconds"
    after=$(ticks_of "$1")
    echo $(((after - before) * 10 * 60 / seconds))
}

shell_loop() {
    local pipe
    exec {pipe}<> <(:)
    while :; do
        xinput query-state "$device" >/dev/null
        read -r -t 0.2 -u "$pipe" # waits without starting a process
    done
}

ends_with_countdown_touched() {
    "$(dirname "$0")/../simulator/finger" send "tap 400 450"
}

"$program" 2>/dev/null &
ours=$!
sleep 3
ends_with_countdown_touched
sleep 2
shell_loop &
peer=$!

# Side by side in the same seconds: whatever else runs then hits both.
peer_figure=$(mktemp)
cpu_per_minute "$peer" >"$peer_figure" &
ours_cpu=$(cpu_per_minute "$ours")
wait $!
peer_cpu=$(<"$peer_figure")
kill "$ours" "$peer"

ratio=$((ours_cpu * 100 / peer_cpu))
printf '%-50s %9s %9s ms\n' "CPU in a minute, shell loop with xinput" "$peer_cpu" ""
printf '%-50s %9s %9s ms\n' "CPU in a minute, idle talmero-bios" "$ours_cpu" ""
verdict=met
((ratio <= ${target/./})) || verdict=missed
printf '%-50s %6d.%02d %9s times %7s %s\n' "  ratio" $((ratio / 100)) $((ratio % 100)) "" "$target" "$verdict"
[[ $verdict == met ]]
