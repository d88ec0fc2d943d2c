# The loopback plugs in the panel's serial ports. Sourced by init.sh and "serial".
# shellcheck shell=bash

readonly serial_pid_file=/run/panel/serial.pid

compose_serial_plugs() { # MODE MODE MODE: puts the command into serial_plugs
    serial_plugs=("$simulator/echo-peer" --pid-file "$serial_pid_file" serial "$@")
}

# In the background, like the network.
start_serial() {
    compose_serial_plugs whole whole whole
    start_server /run/panel/serial.log "${serial_plugs[@]}"
    serial_start=$server
}

finish_serial() {
    wait "$serial_start" || fail "the serial ports did not come up: $(</run/panel/serial.log)"
}
