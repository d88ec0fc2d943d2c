# The command line of "panel". Sourced.
# shellcheck shell=bash

display=none
size=800x600
build=
factory=no
files=yes
trace=no
screenshot=
after=3
shares=()
command=()

readonly usage_error=2
readonly panel_error=125 # the panel itself failed; commands hardly use this status

fail() {
    printf 'panel: %s\n' "$1" >&2
    exit "${2:-$panel_error}"
}

show_help() {
    cat <<'HELP'
Usage: simulator/panel [OPTIONS] [--] COMMAND [ARGS...]

Creates a throw-away touch panel from this machine and runs COMMAND in it.
COMMAND sees this machine's files under their own paths and can change them; all
changes are discarded at the end. In /home, /tmp, /run and /media it sees only the
checkout. The panel has no disk and cannot set the clock. It has its own network,
which simulator/network controls, and loopback plugs in its serial ports, which
simulator/serial replaces.
This needs root, or sudo. The exit status is that of COMMAND, 128 plus the signal
number if a signal ended it, or 125 if the panel could not be created.

  --display none      No display. This is the default.
  --display xvfb      A plain display in memory.
  --display xorg      A display in memory with a touch controller. Brightness
                      works, and simulator/finger can touch the screen.
  --display xephyr    A display in memory that can be rotated.
  --display window    A window on your display. It can be rotated.
  --display web       Like xorg, shown in a browser at the address that is
                      printed. A mouse press in the browser touches the panel.
  --size WxH          Size of the display in pixels (default: 800x600).
  --share DIR         What COMMAND writes into this folder is kept. Can be given
                      several times.
  --build DIR         Folder with the built programs, such as the stand-in for the
                      HMI runtime (default: "build" in the checkout).
  --factory           Puts the factory marker on the USB stick.
  --no-files          Leaves out the panel's own files and those on the stick.
  --trace             Prints one line on standard error for each tool that COMMAND
                      runs. Repeated lines are shortened to one.
                      /run/panel/tools.log in the panel has every line.
  --screenshot FILE   Saves a screenshot of the display as PNG, then ends the
                      panel with status 0.
  --after SECONDS     Time between the first window appearing and the screenshot
                      (default: 3). Decimals are allowed.
  --help              Shows this text.
HELP
}

parse_options() {
    while (($#)); do
        case $1 in
        --help)
            show_help
            exit 0
            ;;
        --factory) factory=yes ;;
        --no-files) files=no ;;
        --trace) trace=yes ;;
        --display | --size | --share | --build | --screenshot | --after)
            (($# > 1)) || fail "$1 needs a value; see --help" "$usage_error"
            take_value "$1" "$2"
            shift
            ;;
        --)
            shift
            break
            ;;
        -*) fail "unknown option $1; see --help" "$usage_error" ;;
        *) break ;;
        esac
        shift
    done
    command=("$@")
    ((${#command[@]})) || fail "no command given; see --help" "$usage_error"
}

take_value() {
    case $1 in
    --display)
        [[ $2 =~ ^(none|xvfb|xorg|xephyr|window|web)$ ]] ||
            fail "unknown display $2; see --help" "$usage_error"
        display=$2
        ;;
    --size)
        [[ $2 =~ ^[1-9][0-9]{1,3}x[1-9][0-9]{1,3}$ ]] ||
            fail "the size must look like 800x600, not like $2" "$usage_error"
        size=$2
        ;;
    --share) shares+=("$2") ;;
    --build) build=$2 ;;
    --screenshot) screenshot=$2 ;;
    --after)
        [[ $2 =~ ^([0-9]+\.?[0-9]*|\.[0-9]+)$ ]] ||
            fail "--after takes a number of seconds, not $2" "$usage_error"
        after=$2
        ;;
    esac
}

# Separate from the parsing, because a folder may be readable only by root.
check_options() {
    local i
    for i in "${!shares[@]}"; do
        [[ -d ${shares[i]} ]] || fail "no folder ${shares[i]} to share" "$usage_error"
        shares[i]=$(readlink -f -- "${shares[i]}")
    done
    checkout=$(dirname -- "$simulator")
    build=$(readlink -m -- "${build:-$checkout/build}")
    [[ -z $screenshot || $display != none ]] ||
        fail "--screenshot needs a display" "$usage_error"
}
