# The panel's network: two ports, their cables and the machines at the far ends. Sourced.
# shellcheck shell=bash
#
# The DHCP client is Debian's dhclient with Debian's settings. It sends a request at once, and again
# after 3 to 20 seconds. Running it more than once has side effects:
# - With a lease, it stays in the background and renews. Running it again for the same port adds a
#   second process; both stay.
# - It writes /run/dhclient.pid only after the command has returned. Until then "-r" releases the
#   lease but ends no client.
# - All clients write that file, so it names only the last one. "-r" ends that process, even if it
#   serves the other port, and removes the address from its own port. An earlier process continues,
#   and its renewal after half an hour sets the address again.
# - While it waits for an offer, it is two processes, and the file names neither. The child does the
#   work. If a signal ends only the parent, the child keeps asking, sets the address when a server
#   answers, and then ends: nothing renews that lease. A signal must go to the process group, as
#   timeout sends it.
# - Without an offer for a minute, the command ends with status 0; with "-v" it says so on standard
#   error. The client stays in the background, and the file names it.

# With this machine's leases, a client would ask for an address that the machine once had.
forget_leases() {
    mkdir -p /var/lib/dhcp && mount -t tmpfs -o mode=755 panel /var/lib/dhcp
}

# A cable can be unplugged only at its far end: at the panel's end this would disable the port too.
connect_ports() {
    local port
    {
        echo link set lo up
        for port in "${ports[@]}"; do
            echo netns add "far-$port"
            echo link add "$port" address "02:00:00:00:00:0$((${port#eth} + 1))" \
                type veth peer name lan address "02:00:00:00:01:0$((${port#eth} + 1))" \
                netns "far-$port"
            echo link set "$port" up
        done
    } | ip -batch -
}

address_far_end() { # PORT
    ip -netns "far-$1" -batch - <<BATCH
address add 192.168.${1#eth}.1/24 broadcast + dev lan
address add $echo_address/24 broadcast + dev lan
link set lo up
link set lan up
BATCH
}

is_listening() { # PROCESS TCP_PORT, in the network of that process
    local port table address state
    printf -v port %04X "$2"
    for table in tcp tcp6; do
        while read -r _ address _ state _; do
            [[ $address == *:$port && $state == 0A ]] && return 0
        done 2>/dev/null <"/proc/$1/net/$table"
    done
    return 1
}

# Polled, because BusyBox does not report that it is ready.
wait_for_echo() { # PROCESS
    local try
    for ((try = 0; try < 500; try++)); do
        is_listening "$1" "$echo_port" && return 0
        kill -0 "$1" 2>/dev/null || return 1
        sleep 0.01
    done
    return 1
}

start_far_end() { # PORT
    local echo_peer dhcp_start
    address_far_end "$1" || fail "cannot set up the far end of $1"
    start_server "$far_folder/$1.echo.log" nsenter --net="$(far_network "$1")" \
        busybox nc -ll -p "$echo_port" -e cat
    echo_peer=$server
    echo "$echo_peer" >"$(echo_pid_file "$1")"
    compose_dhcp_server "$1"
    start_server "$far_folder/$1.start.log" "${dhcp_server[@]}"
    dhcp_start=$server
    wait "$dhcp_start" || fail "the DHCP server of $1 did not start: $(<"$far_folder/$1.start.log")"
    wait_for_echo "$echo_peer" || fail "the echo peer of $1 did not start: $(<"$far_folder/$1.echo.log")"
}

set_up_network() {
    local port far_ends=()
    forget_leases || fail "cannot make a place for DHCP leases"
    mkdir -p "$far_folder" && connect_ports || fail "cannot connect the network ports"
    for port in "${ports[@]}"; do
        start_far_end "$port" &
        far_ends+=($!)
    done
    for port in "${!ports[@]}"; do
        wait "${far_ends[port]}" || exit "$panel_error"
    done
}

# In the background: the servers take most of the time that a panel needs to start.
start_network() {
    set_up_network &
    network_setup=$!
}

finish_network() {
    wait "$network_setup" || exit "$panel_error"
    # on the production line a unit has an address in the echo peer's network
    [[ $factory == no ]] || ip address add 192.168.0.10/24 dev eth0 || fail "cannot set an address"
}
