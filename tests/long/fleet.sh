#!/usr/bin/env bash
# Tests the Ansible collection with many simulated panels at once.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/fleet.sh [OPTION]... [TEST...]

Checks the Ansible collection in fleet/ with ansible-lint. Then starts 50 simulated
panels with sshd, in a network of their own, and looks after them with Ansible: status,
settings, roll-outs with bad panels, upgrades. Takes about half an hour. Needs root or
sudo, and apt's mirror.

TEST is a class or a function, such as Application or Status.test_each_panel_has_a_row.

  --panels N   Number of panels, at least 10 (default: 50).
  --cost       Only measures what 1, 10 and 50 panels cost the computer that looks after
               them, and prints the table of docs/performance.md.
  --help       Shows this text.
TEXT
}

usage_error() {
    printf 'fleet.sh: %s; see tests/long/fleet.sh --help\n' "$1" >&2
    exit 2
}

arguments=("$@")
panels=50 script=test_fleet.py tests=()
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --cost) script=cost.py ;;
    --panels)
        [[ ${2-} =~ ^[1-9][0-9]+$ ]] || usage_error "--panels takes a number from 10, not ${2-nothing}"
        panels=$2
        shift
        ;;
    -*) usage_error "unknown option $1" ;;
    *) tests+=("$1") ;;
    esac
    shift
done

need_root
if [ "$(id -u)" -ne 0 ]; then
    exec sudo -- "tests/long/fleet.sh" "${arguments[@]}"
fi
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${fleet_packages[@]}"
work=$PWD/build-fleet

# Unpacks Debian packages into a folder that is copied over a panel's root folder.
unpack_packages() { # FOLDER PACKAGE...
    local folder=$1
    mkdir -p "$work/debs"
    (cd "$work/debs" && apt-get download -qq "${@:2}" 2>"$work/download.log") ||
        die "apt-get cannot download ${*:2}: $(grep -m 1 '^E:' "$work/download.log")"
    find "$work/debs" -name '*.deb' -exec dpkg-deb --extract {} "$folder" \;
    if [ -d "$folder/lib" ]; then # on a panel, /lib is a link to /usr/lib
        cp -r "$folder/lib/." "$folder/usr/lib"
        rm -r "$folder/lib"
    fi
}

# What each panel has besides the files of the simulated one.
make_panel_files() {
    local files=$work/files
    rm -rf "$work"
    mkdir -p "$files"/usr/{bin,local/bin} "$files/etc/ssh"
    unpack_packages "$files" "${fleet_panel_packages[@]}"
    cp -r image/ssh/etc/ssh/. "$files/etc/ssh"
    cp build/bin/talmero-{doctor,install,settings} tests/long/fleet/systemctl "$files/usr/bin"
    cp tests/long/fleet/end-ssh "$files/usr/local/bin"
    ssh-keygen -q -t ed25519 -N '' -f "$work/key"
}

build_preset release talmero-doctor talmero-install talmero-mkpackage talmero-settings
make_panel_files
echo "Checking the collection"
scripts/check-fleet.sh
export FLEET_BUILD=$PWD/build FLEET_FILES=$work FLEET_PANELS=$panels
cd tests/long/fleet
exec unshare --net python3 "$script" ${tests[@]+"${tests[@]}"}
