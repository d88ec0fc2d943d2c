# What the panel's two network cables lead to. Sourced by init.sh and by "network".
# shellcheck shell=bash

# Each port leads to a machine of its own. If one machine had both cables, a panel
# with an address of eth0's network on eth1 would get its answers through eth0.
readonly ports=(eth0 eth1)
readonly far_folder=/run/panel/network
readonly echo_address=192.168.0.30
readonly echo_port=33

# A path, because "ip netns exec" would mount a second /sys for each command.
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

# compose_dhcp_server PORT: leaves the command in dhcp_server. It returns once it
# listens, and stays in the background.
compose_dhcp_server() {
    local network=192.168.${1#eth}
    dhcp_server=(nsenter --net="$(far_network "$1")" dnsmasq
        --conf-file=/dev/null # the machine may have a dnsmasq and settings for it
        --user=root           # another user could not write the leases
        --port=0 --interface=lan
        --dhcp-range="$network.100,$network.150,255.255.255.0,1h"
        # without these two it keeps silent to a client with an unknown lease, and
        # waits for a ping before each offer
        --dhcp-authoritative --no-ping
        --dhcp-leasefile="$(lease_file "$1")" --pid-file="$(dhcp_pid_file "$1")"
        --log-facility="$far_folder/$1.log")
}
