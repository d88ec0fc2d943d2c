#!/bin/bash
# Compares the CPU time of the idle program, including its rescue poll, with that of a shell loop
# that runs the same xinput command at the same rate. Usage, in the simulated panel:
# rescuepoll.sh PROGRAM
set -u

program=$1
slices=15
seconds=10 # in each
device="PenMount USB Touchscreen"
target=1.10
[[ -e /run/talmero-panel ]] || exit 2

# CPU time of a process and its finished children, in clock ticks.
ticks_of() {
    local fields
    read -ra fields <"/proc/$1/stat"
    echo $((fields[13] + fields[14] + fields[15] + fields[16]))
}

shell_loop() {
    local pipe
    exec {pipe}<> <(:)
    while :; do
        xinput query-state "$device" >/dev/null
        read -r -t 0.2 -u "$pipe" # sleeps without starting a process
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

# Both run at the same time, so that other load affects both.
ours_figures=()
peer_figures=()
ratios=()
for ((slice = 0; slice < slices; ++slice)); do
    ours_before=$(ticks_of "$ours") peer_before=$(ticks_of "$peer")
    sleep "$seconds"
    ours_ticks=$(($(ticks_of "$ours") - ours_before))
    peer_ticks=$(($(ticks_of "$peer") - peer_before))
    ours_figures+=("$((ours_ticks * 10 * 60 / seconds))")
    peer_figures+=("$((peer_ticks * 10 * 60 / seconds))")
    ratios+=("$((ours_ticks * 100 / peer_ticks))")
done
kill "$ours" "$peer"

sorted() { printf '%s\n' "$@" | sort -n; }
median() { sorted "$@" | sed -n "$((slices / 2 + 1))p"; }
hundredths() { printf '%d.%02d' "$(($1 / 100))" "$(($1 % 100))"; }

ours_cpu=$(median "${ours_figures[@]}")
peer_cpu=$(median "${peer_figures[@]}")
ratio=$((ours_cpu * 100 / peer_cpu))
spread=$(hundredths "$(sorted "${ratios[@]}" | head -n 1)")..$(hundredths "$(sorted "${ratios[@]}" | tail -n 1)")
verdict=met
((ratio <= ${target/./})) || verdict=MISSED
printf '%-48s %9s %9s %-5s %6s %15s %8s  %s\n' "CPU in an idle minute; shell loop with xinput" \
    "$ours_cpu" "$peer_cpu" ms "$(hundredths "$ratio")" "$spread" "$target" "$verdict"
[[ $verdict == met ]]
