#!/usr/bin/env bash
# Tests the signed repository with the real apt: what a panel of each release and architecture is
# offered, updates, and what is refused.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"

readonly dist=$work/dist repository=$work/repository
export GNUPGHOME=$work/keys
export LC_ALL=C.UTF-8

new_key() { # NAME
    gpg --batch --quiet --passphrase '' --quick-generate-key "$1" ed25519 sign never
}

# put_package RELEASE ARCHITECTURE VERSION: a build with one package
put_package() {
    local build=$dist/$1-$2 contents=$work/contents
    rm -rf "$build" "$contents"
    mkdir -p "$build" "$contents/DEBIAN"
    printf 'Package: talmero-test\nVersion: %s\nArchitecture: %s\nMaintainer: nobody\nSection: misc\nPriority: optional\nDescription: test\n' \
        "$3" "$2" >"$contents/DEBIAN/control"
    dpkg-deb --root-owner-group --build "$contents" "$build/talmero-test_$3_$2.deb" >/dev/null
    touch "$build/talmero-test-dbgsym_$3_$2.deb" # is no package and must not be added
}

make_repository() { # [KEY]
    "$root/scripts/repository" "$repository" "${1-}" "$dist"
}

# panel_apt RELEASE ARCHITECTURE KEY_FILE COMMAND...: apt of a panel that knows only the repository
panel_apt() {
    local release=$1 architecture=$2 key=$3 state=$work/apt-$1-$2
    shift 3
    mkdir -p "$state"/{lists/partial,cache/archives/partial,etc}
    : >"$state/status"
    echo "deb [signed-by=$key] file:$repository $release main" >"$state/etc/sources.list"
    "$1" -o Dir::Etc="$state/etc" -o Dir::State::lists="$state/lists" -o Dir::Cache="$state/cache" \
        -o Dir::State::status="$state/status" -o APT::Architecture="$architecture" \
        -o APT::Architectures="$architecture" -o APT::Sandbox::User=root "${@:2}"
}

# offers RELEASE ARCHITECTURE VERSION
offers() {
    panel_apt "$1" "$2" "$repository/talmero.asc" apt-get update || return
    panel_apt "$1" "$2" "$repository/talmero.asc" apt-cache policy talmero-test | tee "$work/policy"
    grep -q "Candidate: $3\$" "$work/policy"
}

every_panel_gets_its_own() {
    put_package bookworm amd64 1.0+deb12
    put_package bookworm armhf 1.0+deb12
    put_package trixie amd64 1.0+deb13
    make_repository && offers bookworm amd64 1.0+deb12 && offers bookworm armhf 1.0+deb12 &&
        offers trixie amd64 1.0+deb13 && ! offers trixie arm64 1.0+deb13
}

update_is_offered() {
    put_package bookworm amd64 1.1+deb12
    make_repository && offers bookworm amd64 1.1+deb12 && offers bookworm armhf 1.0+deb12
}

again_changes_nothing() {
    make_repository && make_repository && offers bookworm amd64 1.1+deb12
}

other_bytes_of_one_version_are_refused() {
    touch -d 2001-01-01 "$work/contents/other"
    dpkg-deb --root-owner-group --build "$work/contents" "$dist/bookworm-amd64/talmero-test_1.1+deb12_amd64.deb" >/dev/null
    says "^repository: the repository refuses .*/bookworm-amd64: " status 1 make_repository &&
        offers bookworm amd64 1.1+deb12
}

other_key_is_refused() {
    new_key other@talmero.example && gpg --batch --export --armor other@talmero.example >"$work/other.asc" &&
        says 'NO_PUBKEY|Missing key|not signed' panel_apt bookworm amd64 "$work/other.asc" apt-get update
}

changed_package_list_is_refused() {
    local list
    list=$(find "$repository/dists/trixie" -name Packages -path '*amd64*')
    sed -i 's/^Description: .*/Description: changed/' "$list"
    rm -rf "$list.gz" "$work/apt-trixie-amd64"
    ! panel_apt trixie amd64 "$repository/talmero.asc" apt-get -o APT::Update::Error-Mode=any update
}

missing_key_is_named() {
    says '^repository: there is no key to sign with: nobody@talmero.example;' \
        status 1 make_repository nobody@talmero.example
}

chosen_key_signs() {
    rm -rf "$repository" "$dist"
    put_package trixie i386 2.0+deb13
    make_repository other@talmero.example && offers trixie i386 2.0+deb13 &&
        gpg --show-keys "$repository/talmero.asc" | grep -q other@talmero.example
}

mkdir -m 700 "$GNUPGHOME"
new_key maker@talmero.example
for name in every_panel_gets_its_own update_is_offered again_changes_nothing \
    other_bytes_of_one_version_are_refused other_key_is_refused changed_package_list_is_refused \
    missing_key_is_named chosen_key_signs; do
    check "${name//_/ }" "$name"
done
gpgconf --kill all
[ "$failures" -eq 0 ]
