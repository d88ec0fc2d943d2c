#!/usr/bin/env bash
# Tests how network ports get the names of the factory's rules, with folders in place of the kernel's.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"
tree=$work/tree
net=$tree/sys/class/net
rules=$tree/etc/udev/rules.d/70-persistent-net.rules

# The kernel's part: a name that is in use, or a port that is up, cannot be had.
mkdir "$work/bin"
cat >"$work/bin/ip" <<SCRIPT
#!/bin/sh
echo "\$4 \$6" >>"$work/renamed"
[ "\$*" = "link set dev \$4 name \$6" ] && [ ! -e "$net/\$6" ] && [ ! -e "$net/\$4/up" ] && mv "$net/\$4" "$net/\$6"
SCRIPT
chmod +x "$work/bin/ip"
PATH=$work/bin:$PATH

new_boot() {
    rm -rf "$tree"
    mkdir -p "$net" "${rules%/*}"
    : >"$work/renamed"
}

add_port() { # NAME ADDRESS
    mkdir "$net/$1"
    echo "$2" >"$net/$1/address"
}

# In the words of the factory window.
add_rule() { # ADDRESS NAME
    printf 'SUBSYSTEM=="net", ACTION=="add", DRIVERS=="?*", ATTR{address}=="%s", ATTR{dev_id}=="0x0", ATTR{type}=="1", KERNEL=="eth*", NAME="%s" \n   ' \
        "$1" "$2" >>"$rules"
}

name_ports() { # [LIMIT]
    "$root/compat/name-ports" "$tree" "${1-1}"
}

# ports ADDRESS...: eth0, eth1 and so on have these addresses, and there are no others
ports() {
    local number=0 address
    for address in "$@"; do
        [ "$(cat "$net/eth$number/address")" = "$address" ] || return
        number=$((number + 1))
    done
    [ "$(find "$net" -mindepth 1 -maxdepth 1 | wc -l)" -eq "$number" ]
}

two_ports() { # ADDRESS_OF_ETH0 ADDRESS_OF_ETH1
    new_boot
    add_port eth0 "$1"
    add_port eth1 "$2"
    add_rule 02:0a eth0
    add_rule 02:0b eth1
}

two_ports_swap() {
    two_ports 02:0b 02:0a
    says 'eth0 is now eth1' name_ports && ports 02:0a 02:0b
}

three_ports_go_round() {
    two_ports 02:0c 02:0a
    add_port eth2 02:0b
    add_rule 02:0c eth2
    name_ports && ports 02:0a 02:0b 02:0c
}

right_names_stay() {
    two_ports 02:0a 02:0b
    name_ports && ports 02:0a 02:0b && [ ! -s "$work/renamed" ]
}

free_name_is_given() {
    new_boot
    add_port eth7 02:0a
    add_rule 02:0a eth0
    name_ports && ports 02:0a
}

stranger_keeps_its_name() {
    new_boot
    add_port eth0 02:ff
    add_port eth1 02:0a
    add_rule 02:0a eth0
    name_ports && ports 02:ff 02:0a && [ ! -s "$work/renamed" ]
}

missing_port_is_waited_for() {
    new_boot
    add_port eth1 02:0a
    add_rule 02:0a eth0
    add_rule 02:0b eth1
    { sleep 0.3 && add_port eth2 02:0b; } &
    name_ports 50 && wait && ports 02:0a 02:0b
}

missing_port_is_given_up() {
    new_boot
    add_port eth1 02:0a
    add_rule 02:0a eth0
    add_rule 02:0b eth1
    name_ports 3 && ports 02:0a
}

port_that_is_up_keeps_its_name() {
    two_ports 02:0b 02:0a
    : >"$net/eth0/up"
    name_ports && ports 02:0b 02:0a
}

without_rules_nothing_happens() {
    new_boot
    add_port eth0 02:0b
    name_ports 50 && ports 02:0b && [ ! -s "$work/renamed" ]
}

for name in two_ports_swap three_ports_go_round right_names_stay free_name_is_given \
    stranger_keeps_its_name missing_port_is_waited_for missing_port_is_given_up \
    port_that_is_up_keeps_its_name without_rules_nothing_happens; do
    check "${name//_/ }" "$name"
done
[ "$failures" -eq 0 ]
