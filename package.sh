#!/usr/bin/env bash
# Builds the Debian packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: ./package.sh [OPTION]...

Installs missing build dependencies, builds the Debian packages from this checkout
and puts them into dist/. Runs no tests: ./test.sh does. Needs root or sudo only if
something has to be installed.

  --release NAME  Builds for this release of Debian, bookworm or trixie.
  --arch NAME     Builds for this architecture: amd64, i386, arm64 or armhf.
  --check         Builds twice, in folders with different names, and fails unless both
                  builds give the same packages, byte for byte.
  --repository FOLDER
                  Puts the packages of all releases and architectures into the signed
                  Debian repository in FOLDER, which is made if it is missing. Builds those
                  that are missing or old.
  --key ID        Signs the repository with this key of gpg; default: your default key.
  --help          Shows this text.

With --release or --arch, the packages are built in a clean Debian made with mmdebstrap,
checked with lintian and put into dist/RELEASE-ARCHITECTURE/. Their version ends with the
release's number, such as +deb13. The default of the other option is this system's. Needs
root or sudo, apt's mirror and 4 GB of free space. ARM is compiled on amd64.
TEXT
}

usage_error() {
    printf 'package.sh: %s; see ./package.sh --help\n' "$1" >&2
    exit 2
}

check=no release='' arch='' repository='' key=''
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --check) check=yes && shift && continue ;;
    --release | --arch | --repository | --key) [ -n "${2-}" ] || usage_error "$1 needs a value" ;;
    *) usage_error "unknown option $1" ;;
    esac
    case $1 in
    --release) release=$2 ;;
    --arch) arch=$2 ;;
    --repository) repository=$2 ;;
    --key) key=$2 ;;
    esac
    shift 2
done
[ -z "$release" ] || is_one_of "$release" "${releases[@]}" || usage_error "the release is one of ${releases[*]}, not $release"
[ -z "$arch" ] || is_one_of "$arch" "${architectures[@]}" || usage_error "the architecture is one of ${architectures[*]}, not $arch"

if [ -n "$repository" ]; then
    [ -z "$release$arch" ] || usage_error "a repository has all releases and architectures: leave out --release and --arch"
    [ "$check" = no ] || usage_error "--check compares two builds and makes no repository"
    install_packages reprepro gnupg git
    for release in "${releases[@]}"; do
        for arch in "${architectures[@]}"; do
            packages_are_new "dist/$release-$arch" || ./package.sh --release "$release" --arch "$arch"
        done
    done
    exec scripts/repository "$repository" "$key" dist
fi
[ -z "$key" ] || usage_error "--key is for --repository"

umask 022 # the packed files have the same modes whoever builds them
work=build-package
output=dist
root=''
if [ -n "$release$arch" ]; then
    : "${release:=$(os_release VERSION_CODENAME)}" "${arch:=$(dpkg --print-architecture)}"
    output=dist/$release-$arch
    work=build-package/$release-$arch
    root=$PWD/$work/root
fi

# build NAME: leaves the packages in $work/NAME
build() {
    local folder=$work/$1
    local log=$folder/log
    rm -rf "$folder"
    copy_sources "$folder/talmero-bios"
    if [ -n "$root" ]; then
        build_apart "$folder"
        return
    fi
    (cd "$folder/talmero-bios" &&
        dpkg-buildpackage --no-sign --build=full) >"$log" 2>&1 ||
        die "the build failed, see $log: $(grep -m 1 -E 'error:|Error:|No space' "$log" || tail -n 1 "$log")"
}

# build_apart FOLDER: the same in a clean Debian. Two releases cannot share a version, because their
# packages differ.
build_apart() {
    sed -i "1s/(\([^)]*\)) [a-z]*;/(\1+deb${release_number[$release]}) $release;/" \
        "$1/talmero-bios/debian/changelog"
    as_root env SOURCE_DATE_EPOCH="$SOURCE_DATE_EPOCH" \
        scripts/clean-build "$release" "$arch" "$root" "$1/talmero-bios" "$1"
}

# Checksums of the packages that dpkg-buildpackage left in a folder.
sums() {
    (cd "$work/$1" && find . -maxdepth 1 -regex '.*\.\(deb\|dsc\|tar\.xz\)' -printf '%f\0' | sort -z | xargs -0 sha256sum --)
}

if [ -n "$root" ]; then
    need_root
    need_space 4000
    install_packages mmdebstrap arch-test dpkg-dev git
    as_root rm -rf "$work"
else
    install_packages "${build_packages[@]}" "${package_packages[@]}"
fi
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
[ -z "$root" ] || as_root rm -rf "$root"
# dist/ may hold an image, too.
mkdir -p "$output"
packed=(-maxdepth 1 -type f -regex '.*\.\(deb\|dsc\|tar\.xz\|buildinfo\|changes\)')
find "$output" "${packed[@]}" -delete
find "$work/first" "${packed[@]}" -exec cp -t "$output" {} +
(cd "$output" && ls -sh -- *.deb)
