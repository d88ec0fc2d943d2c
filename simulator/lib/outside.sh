# The part of "panel" that runs on the machine, outside the panel. Sourced.
# shellcheck shell=bash

web_port=
status=0

# A script's background command ignores INT, and bash cannot undo that. The panel must end on INT
# however it was started.
accept_interrupts() {
    if [[ $(trap -p INT QUIT) ]]; then
        exec env --default-signal=INT,QUIT "$simulator/panel" "$@"
    fi
}

become_root() {
    ((EUID)) || return 0
    type -P sudo >/dev/null || fail "this needs root: run it as root or install sudo"
    # sudo may drop the variables that point to the user's display, and those of a build for tests
    local name kept=("XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}")
    for name in $(compgen -e); do
        case $name in
        DISPLAY | ASAN_* | GCOV_* | LSAN_* | UBSAN_*) kept+=("$name=${!name}") ;;
        esac
    done
    exec sudo -- env "${kept[@]}" "$simulator/panel" "$@"
}

# The panel must not see the variables of a desktop session, or a test would depend on who runs it.
forget_the_callers_session() {
    local name
    export PANEL_HOST_DISPLAY=${DISPLAY-} PANEL_HOST_XAUTHORITY=${XAUTHORITY:-${HOME-}/.Xauthority}
    for name in $(compgen -e); do
        case $name in
        DBUS_* | SESSION_* | WAYLAND_* | QT_* | XDG_* | GTK_* | GDK_* | DESKTOP_* | LC_* | SUDO_COMMAND)
            unset -v "$name"
            ;;
        DISPLAY | XAUTHORITY | LANG | LANGUAGE | BASH_ENV | ENV | MAIL | OLDPWD | TMPDIR | _)
            unset -v "$name"
            ;;
        esac
    done
}

prepare_outside() {
    case $display in
    window)
        [[ -n $PANEL_HOST_DISPLAY ]] || fail "--display window needs a display; DISPLAY is not set"
        keep_host_namespaces
        ;;
    web)
        find_free_port
        keep_host_namespaces
        ;;
    esac
    if [[ -n $screenshot ]]; then
        open_screenshot
    fi
}

# The panel passes these to the one helper that must reach the user's display or browser. The helper
# is a process of the panel, so it always ends with the panel.
keep_host_namespaces() {
    exec 20</proc/self/ns/mnt 21</proc/self/ns/net 22</proc/self/ns/uts 23</proc/self/ns/ipc
}

find_free_port() {
    for ((web_port = 6080; web_port < 6180; web_port++)); do
        (exec 3<>"/dev/tcp/127.0.0.1/$web_port") 2>/dev/null || return 0
    done
    fail "no free port from 6080 to 6179 for the browser"
}

# Opened outside, so that the panel can write this file and no other.
open_screenshot() {
    { exec 24>"$screenshot"; } 2>/dev/null || fail "cannot write $screenshot"
    if [[ -n ${SUDO_UID-} && -n ${SUDO_GID-} ]]; then
        chown "$SUDO_UID:$SUDO_GID" "$screenshot"
    fi
}

# unshare ignores INT and TERM, so they go directly to its child, the panel's first process.
pass_on() {
    local first=
    { read -r first <"/proc/$panel_process/task/$panel_process/children"; } 2>/dev/null
    if [[ -n $first ]]; then
        kill -s "$1" "${first%% *}" 2>/dev/null
    else
        kill -s KILL "$panel_process" 2>/dev/null
    fi
    stopped_by=$1
}

wait_for_panel() {
    local name
    stopped_by=
    for name in INT TERM HUP; do
        # shellcheck disable=SC2064 # expanded now, in the loop
        trap "pass_on $name" "$name"
    done
    while kill -0 "$panel_process" 2>/dev/null; do
        wait "$panel_process" 2>/dev/null
        status=$?
    done
    if [[ -n $stopped_by ]]; then
        status=$((128 + $(kill -l "$stopped_by")))
    fi
    if [[ -n $screenshot && ! -s $screenshot ]]; then
        rm -f -- "$screenshot"
    fi
}
