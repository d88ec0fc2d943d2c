#!/bin/bash
# Builds talmero-bios and runs it on a simulated panel.
[ -n "${BASH_VERSION-}" ] || exec bash "$0" "$@" # was started as "sh run.sh"
set -u

# shellcheck source=scripts/common.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/scripts/common.sh"

factory=()
size=800x600
screenshot=
after=

show_help() {
    cat <<'HELP'
Usage: ./run.sh [OPTIONS]

Installs what is missing, builds talmero-bios and runs it on a simulated panel.
The panel is a window where there is a display; otherwise it is shown in the
browser, and the address is printed. The terminal shows one line for each tool
that the program runs. Ctrl-C ends everything. Nothing outside the checkout is
changed, apart from the packages that had to be installed.

  --factory           Starts with the factory marker on the panel's USB stick.
  --size WxH          Size of the panel in pixels, 800x600 if not given.
  --screenshot FILE   Needs no display: runs the program, saves a picture of the
                      panel as PNG and ends.
  --after SECONDS     Takes the picture so long after the program's window came
                      up, 3 if not given. Decimals are allowed.
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

# Told before the build, not after it.
if [[ -n $screenshot ]]; then
    [[ -d $(dirname -- "$screenshot") && ! -d $screenshot ]] ||
        usage_error "cannot write a file $screenshot"
fi

display_is_usable() {
    [[ -n ${DISPLAY-} ]] && xset q >/dev/null 2>&1
}

# In a session of its own, so that all the compilers can be ended with it.
build() {
    # shellcheck disable=SC2016 # expanded by the inner shell
    setsid bash -c 'source "$1" && build_preset release talmero-bios standin-runtime panel-stick' \
        run.sh "$project_root/scripts/common.sh" &
    # shellcheck disable=SC2064 # the number of this build is wanted
    trap "kill -TERM -$! 2>/dev/null; wait; exit 143" TERM HUP
    # shellcheck disable=SC2064
    trap "kill -TERM -$! 2>/dev/null; wait; exit 130" INT
    wait $!
    local build_status=$?
    trap - INT TERM HUP
    return "$build_status"
}

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
