#!/bin/bash
# Builds talmero-bios and runs it on a simulated panel, or on a virtual machine.
[ -n "${BASH_VERSION-}" ] || exec bash "$0" "$@" # started as "sh run.sh"
set -u

# shellcheck source=scripts/common.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/scripts/common.sh"

factory=()
machine=no
uefi=()
size=800x600
screenshot=
after=

show_help() {
    cat <<'HELP'
Usage: ./run.sh [OPTIONS]

Installs missing Debian packages, builds talmero-bios and runs it on a simulated
panel. The panel is a window if there is a display. Otherwise a browser shows it,
at the address that is printed. The terminal lists each tool that the program
runs. Ctrl-C stops everything. Apart from the installed packages, nothing outside
the checkout changes.

  --factory           Starts with the factory marker on the panel's USB stick.
  --size WxH          Size of the panel in pixels (default: 800x600).
  --machine           Boots the disk image of ./image.sh in a virtual machine, with the
                      stick plugged in, a DHCP server behind Lan 1 and nobody behind
                      Lan 2. Builds the image first if there is none; the machine itself
                      needs no root. What the panel writes to its disk is discarded.
  --uefi              With --machine: boots by UEFI, not by BIOS.
  --screenshot FILE   Runs the program without a display, saves a screenshot of
                      the panel as PNG and exits.
  --after SECONDS     Time between the program's window appearing and the
                      screenshot (default: 3). Decimals are allowed.
  --help              Shows this text.
HELP
}

usage_error() {
    printf 'run.sh: %s; see ./run.sh --help\n' "$1" >&2
    exit 2
}

while (($#)); do
    case $1 in
    --help)
        show_help
        exit 0
        ;;
    --factory) factory=(--factory) ;;
    --machine) machine=yes ;;
    --uefi) uefi=(--uefi) ;;
    --size | --screenshot | --after)
        [[ -n ${2-} ]] || usage_error "$1 needs a value"
        case $1 in
        --size) size=$2 ;;
        --screenshot) screenshot=$2 ;;
        --after) after=$2 ;;
        esac
        shift
        ;;
    *) usage_error "unknown option $1" ;;
    esac
    shift
done
[[ $size =~ ^[1-9][0-9]{1,3}x[1-9][0-9]{1,3}$ ]] || usage_error "the size must look like 800x600, not like $size"
((${size%x*} >= 240 && ${size#*x} >= 240 && ${size%x*} <= 4096 && ${size#*x} <= 4096)) ||
    usage_error "the size must be from 240x240 to 4096x4096"
[[ -z $after || -n $screenshot ]] || usage_error "--after goes with --screenshot"
[[ -z $after || $after =~ ^([0-9]+\.?[0-9]*|\.[0-9]+)$ ]] ||
    usage_error "--after takes a number of seconds, not $after"

[[ $machine == no || -z $screenshot ]] || usage_error "--machine does not go with --screenshot"
[[ $machine == yes || ${#uefi[@]} -eq 0 ]] || usage_error "--uefi goes with --machine"

# Checked before the build, which takes minutes.
if [[ -n $screenshot ]]; then
    [[ -d $(dirname -- "$screenshot") && ! -d $screenshot ]] ||
        usage_error "cannot write a file $screenshot"
fi

display_is_usable() {
    [[ -n ${DISPLAY-} ]] && xset q >/dev/null 2>&1
}

# In its own session, so that a signal to the process group reaches every compiler.
build() {
    # shellcheck disable=SC2016 # expanded by the inner shell
    setsid bash -c 'source "$1" && build_preset release talmero-bios standin-runtime panel-stick' \
        run.sh "$project_root/scripts/common.sh" &
    # shellcheck disable=SC2064 # expanded now: $! is this build
    trap "kill -TERM -$! 2>/dev/null; wait; exit 143" TERM HUP
    # shellcheck disable=SC2064
    trap "kill -TERM -$! 2>/dev/null; wait; exit 130" INT
    wait $!
    local build_status=$?
    trap - INT TERM HUP
    return "$build_status"
}

# An image for the machine: the stand-in runtime is the maker's own file.
build_image() {
    local overlay=$project_root/build/overlay
    rm -rf "$overlay"
    mkdir -p "$overlay/opt/talmero/hmi" "$overlay/opt/talmero/bios"
    cp "$project_root/simulator/files/opt/talmero/bios/runapp.sh" "$overlay/opt/talmero/bios"
    cp "$project_root/build/bin/standin-runtime" "$overlay/opt/talmero/hmi/runtime"
    "$project_root/image.sh" --model RV-K21T --oem TALMERO --runtime-version 12 --overlay "$overlay"
}

run_machine() {
    local image=$project_root/dist/talmero-panel.img options=("${factory[@]}" "${uefi[@]}") display=web
    if display_is_usable; then
        display=window
    fi
    [[ -x $project_root/build/bin/standin-runtime ]] || need_space 100
    install_packages "${build_packages[@]}" "${machine_packages[@]}" || exit
    build || exit
    [[ -e $image ]] || build_image || exit
    exec "$project_root/simulator/machine" --display "$display" --size "$size" "${options[@]}" \
        "$image" "$project_root/build/simulator/stick"
}

[[ $machine == no ]] || run_machine
need_panel
# shellcheck disable=SC2154 # the lists and the folder come from common.sh
[[ -x $project_root/build/bin/talmero-bios ]] || need_space 100
install_packages "${build_packages[@]}" "${panel_packages[@]}" || exit
build || exit

panel=("$project_root/simulator/panel" --size "$size" --trace "${factory[@]}")
if [[ -n $screenshot ]]; then
    panel+=(--display xorg --screenshot "$screenshot" --after "${after:-3}")
elif display_is_usable; then
    panel+=(--display window)
else
    panel+=(--display web)
fi
exec "${panel[@]}" -- "$project_root/build/bin/talmero-bios"
