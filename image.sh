#!/usr/bin/env bash
# Builds the disk image of a panel.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: ./image.sh [OPTION]...

Builds dist/talmero-panel.img: the whole disk of a panel, with this system's release of
Debian, 12 or 13, and the packages of ./package.sh, which is run first unless dist/ is up
to date. Write it to the panel's disk, or try it with ./run.sh --machine. It boots by BIOS
and by UEFI. Needs root or sudo, apt's mirror and 4 GB of free space.

  --model NAME            The panel's model, such as RV-K21T.
  --oem NAME              The OEM name that firmware packages must carry.
  --runtime-version N     The version of the HMI runtime that --overlay brings.
  --overlay FOLDER        Copies the files in FOLDER to the same places on the panel, such
                          as FOLDER/opt/talmero/bios/runapp.sh. They belong to root there.
  --size MB               Size of the disk (default: 1000). /home takes what the system
                          leaves.
  --arch NAME             Builds dist/talmero-panel-NAME.img for another architecture: i386, or
                          arm64 for a machine that boots by UEFI.
  --ssh-key FILE          Lets the owner of this public key log in as root by ssh, over Lan 1
                          only. Nothing else can be reached then, see the integrator's guide.
  --test                  Builds dist/talmero-panel-test.img instead, for tests: a root
                          shell without a password and the kernel's console on the first
                          serial port; a tablet counts as the panel's touch controller.
  --help                  Shows this text.
TEXT
}

usage_error() {
    printf 'image.sh: %s; see ./image.sh --help\n' "$1" >&2
    exit 2
}

model='' oem='' runtime_version='' overlay='' ssh_key='' size=1000 kind=plain arch='' runner=()
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --test) kind='test' && shift && continue ;;
    --model | --oem | --runtime-version | --overlay | --ssh-key | --size | --arch) ;;
    *) usage_error "unknown option $1" ;;
    esac
    [ -n "${2-}" ] || usage_error "$1 needs a value"
    case $1 in
    --model) model=$2 ;;
    --oem) oem=$2 ;;
    --runtime-version) runtime_version=$2 ;;
    --overlay) overlay=$2 ;;
    --ssh-key) ssh_key=$2 ;;
    --size) size=$2 ;;
    --arch) arch=$2 ;;
    esac
    shift 2
done
for name in "$model" "$oem"; do
    [[ $name != *[[:cntrl:]]* ]] || usage_error "a model or OEM name is one line of text"
done
[[ $runtime_version =~ ^[0-9]{0,9}$ ]] || usage_error "the runtime's version is a number, not $runtime_version"
[[ $size =~ ^[1-9][0-9]{2,6}$ ]] || usage_error "the size is a number of MB from 100 to 9999999, not $size"
need_debian
release=$(os_release VERSION_CODENAME) own_arch=$(dpkg --print-architecture)
: "${arch:=$own_arch}"
is_one_of "$arch" "${image_architectures[@]}" ||
    usage_error "the architecture is one of ${image_architectures[*]}, not $arch"
kernel=$(kernel_of "$release" "$arch")
[ -n "$kernel" ] || usage_error "Debian ${release_number[$release]} has no kernel for $arch; build the image on an older one"
image=dist/talmero-panel packages=dist
[ "$kind" = plain ] || image+=-test
if [ "$arch" != "$own_arch" ]; then
    image+=-$arch packages=dist/$release-$arch
fi
image+=.img
if [ -n "$overlay" ]; then
    { [ -d "$overlay" ] && [ -r "$overlay" ] && [ -x "$overlay" ]; } ||
        usage_error "$overlay is not a folder that can be read"
    overlay=$(realpath -- "$overlay")
fi
if [ -n "$ssh_key" ]; then
    [ -r "$ssh_key" ] || usage_error "$ssh_key is not a file that can be read"
    [[ $(<"$ssh_key") =~ ^(ssh-|ecdsa-|sk-)[a-z0-9@.-]+\ [A-Za-z0-9+/=]+(\ [[:print:]]*)?$ ]] ||
        usage_error "$ssh_key is not one public key of ssh"
    ssh_key=$(realpath -- "$ssh_key")
fi

need_root
case $arch in
amd64 | i386) image_packages+=("${pc_packages[@]}") ;;
arm64) image_packages+=("${arm_packages[@]}") runner=(scripts/with-arm) ;;
esac
install_packages "${image_packages[@]}"
need_space 4000
if [ "$packages" = dist ]; then
    packages_are_new dist || ./package.sh
else
    packages_are_new "$packages" || ./package.sh --arch "$arch"
fi

as_root env SOURCE_DATE_EPOCH="$(source_date)" "${runner[@]}" image/build "$release" "$arch" "$packages" \
    "$image" "$kind" "$size" "$overlay" "$model" "$oem" "$runtime_version" "$ssh_key" "$(id -u):$(id -g)"
ls -sh "$image"
