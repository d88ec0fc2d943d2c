# The machines at the far ends of the panel's two network cables. Sourced by init.sh and "network".
# shellcheck shell=bash

# Each port has its own far machine. If both cables led to one machine, a panel whose eth1 has an
# address in eth0's network would get the answers through eth0.
readonly ports=(eth0 eth1)
readonly far_folder=/run/panel/network
readonly echo_address=192.168.0.30
readonly echo_port=33

# A path for nsenter: "ip netns exec" would mount another /sys for each command.
far_network() { # PORT
    echo "/run/netns/far-$1"
}

dhcp_pid_file() { # PORT
    echo "$far_folder/$1.pid"
}

echo_pid_file() { # PORT
    echo "$far_folder/$1.echo.pid"
}

lease_file() { # PORT
    echo "$far_folder/$1.leases"
}

# compose_dhcp_server PORT: puts the command into dhcp_server. It returns once the server listens in
# the background.
compose_dhcp_server() {
    local network=192.168.${1#eth}
    dhcp_server=(nsenter --net="$(far_network "$1")" dnsmasq
        --conf-file=/dev/null # not the settings of a dnsmasq on this machine
        --user=root           # another user could not write the leases
        --port=0 --interface=lan
        --dhcp-range="$network.100,$network.150,255.255.255.0,1h"
        # otherwise it ignores clients with unknown leases, and pings before each offer
        --dhcp-authoritative --no-ping
        --dhcp-leasefile="$(lease_file "$1")" --pid-file="$(dhcp_pid_file "$1")"
        --log-facility="$far_folder/$1.log")
}
