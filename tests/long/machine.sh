#!/usr/bin/env bash
# Tests the disk image of a panel in a virtual machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/machine.sh [OPTION]... [TEST...]

Boots the disk image of a panel in QEMU, with an emulated processor, and operates it by
touch: start, pages, network, sticks, factory window. Then cuts the power during saves.
Builds the image first unless it is newer than the sources. Takes about an hour; see
docs/reliability.md. A failed test leaves a picture of the screen and says where.

TEST is a file of tests/machine, a class or a function, such as test_network or
test_pages.Pages.test_calibration_is_kept. With TEST, no power is cut.

  --short              Only a start, a page, a power cut and another start.
  --figures            Only prints when the session starts and the program's memory.
  --cuts FIRST-LAST    Only the power cuts with these seeds (default of a whole run: 1-8).
                       Results are kept in build-machine/; a later run with other seeds
                       adds to them.
  --without-guard      The same without the package talmero-bios-guard.
  --jobs N             Machines at a time during the cuts (default: 2).
  --arch NAME          Tests the image for i386 or arm64 (default: amd64).
  --image FILE         Tests this image, which must have been made with --test, --model,
                       --oem and --runtime-version.
  --help               Shows this text.
TEXT
}

usage_error() {
    printf 'machine.sh: %s; see tests/long/machine.sh --help\n' "$1" >&2
    exit 2
}

short=no figures=no cuts='' image='' arch=amd64 cut_options=() tests=()
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --short) short=yes && shift && continue ;;
    --figures) figures=yes && shift && continue ;;
    --without-guard) cut_options+=(--without-guard) && shift && continue ;;
    --cuts | --jobs | --image | --arch) [ -n "${2-}" ] || usage_error "$1 needs a value" ;;
    -*) usage_error "unknown option $1" ;;
    *) tests+=("$1") && shift && continue ;;
    esac
    case $1 in
    --cuts) cuts=$2 ;;
    --jobs) cut_options+=(--jobs "$2") ;;
    --image) image=$2 ;;
    --arch) arch=$2 ;;
    esac
    shift 2
done
[[ -z $cuts || $cuts =~ ^[0-9]+(-[0-9]+)?$ ]] || usage_error "--cuts takes seeds such as 1-50, not $cuts"
is_one_of "$arch" "${image_architectures[@]}" ||
    usage_error "the architecture is one of ${image_architectures[*]}, not $arch"
[ -z "$image" ] || [ -r "$image" ] || usage_error "there is no image $image"

run_tests() {
    (cd tests/machine && python3 -m unittest --verbose "$@")
}

run_cuts() {
    python3 tests/machine/cuts.py --seeds "$1" "${cut_options[@]}"
}

# Whether the image is newer than every file that it is made of.
image_is_new() {
    local newer
    [ -e "$1" ] || return 1
    # shellcheck disable=SC2185 # the paths come from git
    newer=$(list_sources ':!fleet' ':!tests' ':!bench' ':!docs' ':!*.md' |
        find -files0-from - -prune -newer "$1" -print -quit)
    [ -z "$newer" ]
}

case $arch in
i386) machine_test_packages+=(ovmf-ia32) ;;
arm64) machine_test_packages+=(qemu-system-arm qemu-efi-aarch64) ;;
esac
# test.sh leaves the short run out where QEMU cannot be installed.
if ! (install_packages "${machine_test_packages[@]}"); then
    [ "$short" = no ] || exit 77
    exit 1
fi
if [ -z "$image" ]; then
    image=dist/talmero-panel-test.img
    [ "$arch" = "$(dpkg --print-architecture)" ] || image=dist/talmero-panel-test-$arch.img
    image_is_new "$image" || ./image.sh --test --arch "$arch" --model RV-K21T --oem TALMERO --runtime-version 12
fi
PANEL_IMAGE=$(realpath -- "$image") PANEL_ARCHITECTURE=$arch
export PANEL_IMAGE PANEL_ARCHITECTURE
if [ "$short" = yes ]; then
    run_tests short
    exit
elif [ "$figures" = yes ]; then
    exec python3 tests/machine/figures.py
fi
install_packages "${build_packages[@]}"
build_preset release talmero-mkpackage
if [ -n "$cuts" ]; then
    run_cuts "$cuts"
elif [ "${#tests[@]}" -gt 0 ]; then
    run_tests "${tests[@]}"
else
    mapfile -t tests < <(cd tests/machine && find . -name 'test_*.py' -printf '%f\n' | sed 's/\.py$//' | sort)
    run_tests "${tests[@]}"
    run_cuts 1-8
fi
