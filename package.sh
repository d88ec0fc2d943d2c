#!/usr/bin/env bash
# Builds the Debian packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: ./package.sh [OPTION]

Installs missing build dependencies, builds the Debian packages from this checkout
and puts them into dist/. Runs no tests: ./test.sh does. Needs root or sudo only if
something has to be installed.

  --check   Builds twice, in folders with different names, and fails unless both
            builds give the same packages, byte for byte.
  --help    Shows this text.
TEXT
}

check=no
[ $# -le 1 ] || { usage >&2 && exit 2; }
case "${1:-}" in
    "") ;;
    --check) check=yes ;;
    --help) usage && exit 0 ;;
    *) usage >&2 && exit 2 ;;
esac

umask 022 # the packed files have the same modes whoever builds them
work=build-package
output=dist

# build NAME: leaves the packages in build-package/NAME
build() {
    local folder=$work/$1
    local log=$folder/log
    rm -rf "$folder"
    mkdir -p "$folder/talmero-bios"
    list_sources . | xargs -0 --no-run-if-empty cp --parents -P -t "$folder/talmero-bios" || true
    [ -e "$folder/talmero-bios/debian/control" ] ||
        die "the files could not be copied to $folder: this must be a git checkout with enough free space"
    (cd "$folder/talmero-bios" &&
        dpkg-buildpackage --no-sign --build=full) >"$log" 2>&1 ||
        die "the build failed, see $log: $(grep -m 1 -E 'error:|Error:|No space' "$log" || tail -n 1 "$log")"
}

# Checksums of the packages that dpkg-buildpackage left in a folder.
sums() {
    (cd "$work/$1" && sha256sum -- *.deb *.dsc *.tar.xz)
}

install_packages "${build_packages[@]}" "${package_packages[@]}"
for folder in "$PWD" "$PWD/$work" "$PWD/$output"; do
    [ ! -e "$folder" ] || [ -w "$folder" ] || die "cannot write in $folder: it belongs to another user"
done
SOURCE_DATE_EPOCH=$(source_date)
export SOURCE_DATE_EPOCH

echo "Building the packages"
build first
if [ "$check" = yes ]; then
    echo "Building them again"
    build second-time
    different=$(diff <(sums first) <(sums second-time) | sed -n 's/^< [0-9a-f]*  //p') || true
    [ -z "$different" ] || die "the two builds differ: ${different//$'\n'/ }"
    echo "Both builds gave the same bytes"
fi
# dist/ may hold an image, too.
mkdir -p "$output"
rm -f "$output"/*.{deb,dsc,tar.xz,buildinfo,changes}
cp "$work"/first/*.{deb,dsc,tar.xz,buildinfo,changes} "$output"
(cd "$output" && ls -sh -- *.deb)
