#!/usr/bin/env bash
# Makes packages and prints their checksums; verifies all packages in FOLDER/hostile/packages and
# prints the reports: packages.sh FOLDER
# The output is the same on every processor.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../../.."
readonly packages=$1/hostile/packages

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Files of all kinds that tar packs, with names and rights of their own.
make_contents() {
    mkdir -p contents/folder contents/Schön
    seq 200000 >contents/numbers
    head -c 5000000 /dev/zero >contents/zeros
    : >contents/empty
    echo script >contents/folder/program
    ln contents/folder/program contents/folder/same
    ln -s ../numbers contents/folder/link
    touch "contents/$(printf 'x%.0s' {1..200})" "contents/$(printf 'two\nlines')" "contents/$(printf '\377')"
    chmod -R u=rwX,go=rX contents
    chmod 755 contents/folder/program
}

make_packages() {
    local kind
    for kind in application firmware bios; do
        "$mkpackage" make --kind "$kind" --version 4294967295 --target RV-K21T --output "$kind" contents
        sha256sum "$kind"
        TZ=UTC "$mkpackage" info "$kind"
    done
}

verify_packages() {
    local package status
    for package in *; do
        status=0
        echo "$package"
        "$mkpackage" verify --for RV-K21T --oem TALMERO --runtime 12 --bios 3 "$package" || status=$?
        echo "status $status"
    done
}

mkpackage=$PWD/build/bin/talmero-mkpackage
cd "$work"
make_contents
make_packages
cd "$packages"
verify_packages
