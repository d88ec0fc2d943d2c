#!/usr/bin/env bash
# Tests the Ansible collection with many simulated panels at once.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/fleet.sh [OPTION]... [TEST...]

Starts 50 simulated panels with sshd, in a network of their own, and looks after them
with the Ansible collection in fleet/: status, settings, roll-outs with bad panels,
upgrades, and the tasks of docs/many-panels.md as they stand. Takes about half an hour.
Needs root or sudo, and apt's mirror.

TEST is a file of tests/long/fleet, a class or a function, such as test_status or
test_settings.Settings.test_refused_value_changes_nothing.

  --panels N   Number of panels, at least 7 (default: 50).
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
panels=50 script=(-m unittest --verbose) tests=()
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --cost) script=(cost.py) ;;
    --panels)
        [[ ${2-} =~ ^([7-9]|[1-9][0-9]+)$ ]] || usage_error "--panels takes a number from 7, not ${2-nothing}"
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
        rm -r "${folder:?}/lib"
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

# The present packages, the next version of them in a repository, and a package that stands in for
# those of Debian that a panel has and this machine lacks.
make_repository() {
    local package folder=$work/package lacking
    mkdir -p "$work"/{old,new,dist/bookworm-amd64,www} "$folder"
    find dist -maxdepth 1 -name 'talmero-*.deb' ! -name '*-dbgsym_*' -exec cp -t "$work/old" {} +
    for package in "$work"/old/*.deb; do
        rm -r "$folder"
        dpkg-deb --raw-extract "$package" "$folder"
        # Without the alternative to it, the next version needs that of another package.
        sed -i 's/\b1\.0\b/1.1/; s/ | net-tools//' "$folder/DEBIAN/control"
        dpkg-deb --root-owner-group --build "$folder" "$work/dist/bookworm-amd64" >/dev/null
    done
    cp "$work"/dist/bookworm-amd64/talmero-bios-tools_*.deb "$work/new/tools.deb"
    lacking=$(for package in "$work"/old/*.deb; do dpkg-deb --field "$package" Depends; done |
        sed 's/([^)]*)//g; s/[,|]/\n/g' | tr -d ' ' | sort -u | grep -v ^talmero- |
        while read -r package; do is_installed "$package" || echo "$package"; done)
    stand_in_for "${lacking//$'\n'/, }"
    export GNUPGHOME=$work/keys
    mkdir -m 700 "$GNUPGHOME"
    for package in maker other; do
        gpg --batch --quiet --passphrase '' --quick-generate-key "$package@talmero.example" ed25519 sign never 2>/dev/null
    done
    gpg --armor --export other@talmero.example >"$work/other.asc"
    scripts/repository "$work/repository" maker@talmero.example "$work/dist" >/dev/null
    gpgconf --kill all
    ln -s "$work/repository" "$work/www/talmero"
}

stand_in_for() { # "PACKAGE, PACKAGE"
    local folder=$work/stand-in
    mkdir -p "$folder/DEBIAN"
    cat >"$folder/DEBIAN/control" <<CONTROL
Package: stand-in
Version: 1
Architecture: all
Maintainer: nobody
Provides: $1
Description: stands in for packages of Debian
CONTROL
    dpkg-deb --root-owner-group --build "$folder" "$work/old/stand-in.deb" >/dev/null
}

packages_are_new dist || ./package.sh
build_preset release talmero-doctor talmero-install talmero-mkpackage talmero-settings
make_panel_files
make_repository
export FLEET_BUILD=$PWD/build FLEET_FILES=$work FLEET_PANELS=$panels
cd tests/long/fleet
[ "${#tests[@]}" -gt 0 ] || [ "${script[0]}" = cost.py ] || tests=(test_*.py)
exec unshare --net python3 "${script[@]}" ${tests[@]+"${tests[@]}"}
