# Stand-ins for tools of the machine, and the trace of the tools that run. Sourced.
# shellcheck shell=bash

readonly traced_tools=(xrandr xset xinput date hwclock ifconfig dhclient tar du rm mv sync
    sleep beep xCal)
readonly real_tools=/usr/lib/talmero-panel # the tools that the stand-ins replace and may still call
readonly trace_log=/run/panel/tools.log
readonly trace_pipe=/run/panel/tools.pipe

install_tools() {
    local covered=(/usr/bin/date)
    local busybox
    if [[ $display == xephyr || $display == window ]] && [[ -x /usr/bin/xinput ]]; then
        covered+=(/usr/bin/xinput)
        cp --remove-destination "$simulator/tools/xinput" /run/panel/xinput
    fi
    mkdir -p "$real_tools" && cp "${covered[@]}" "$real_tools" &&
        cp --remove-destination "$simulator/tools/"{date,beep,xCal} /usr/bin &&
        cp --remove-destination "$simulator/tools/hwclock" /usr/sbin || fail "cannot install the tools"
    if [[ -e /run/panel/xinput ]]; then
        mv -f /run/panel/xinput /usr/bin/xinput
    fi
    if [[ -d $build/simulator/ifupdown/files ]]; then
        cp -r "$build/simulator/ifupdown/files/." / || fail "cannot install ifupdown"
    fi
    # the program reads the classic format, which current net-tools no longer print
    busybox=$(type -P busybox) && ln -sf "$busybox" /usr/sbin/ifconfig
}

start_tracing() {
    local tool wrappers=()
    [[ $trace == yes ]] || return 0
    for tool in "${traced_tools[@]}"; do
        # a tool that is missing on the machine must be missing for the program too
        type -P "$tool" >/dev/null && wrappers+=("$tool")
    done
    mkdir /run/panel/tools && cp "$simulator/tools/trace" /run/panel/trace || fail "cannot trace tools"
    for tool in "${wrappers[@]}"; do
        echo "/run/panel/trace /run/panel/tools/$tool"
    done | xargs -n 2 ln -s
    : >"$trace_log"
    mkfifo "$trace_pipe"
    exec 30<>"$trace_pipe" # kept open, so that no tool waits for a reader
    follow_trace &
    follower=$!
    command_path=/run/panel/tools:$PATH
}

# Shortens repeats, because the rescue poll runs xinput five times a second.
follow_trace() {
    local line last='' repeated=no
    while IFS= read -r line <&30 && [[ -n $line ]]; do
        if [[ $line != "$last" ]]; then
            printf '%s\n' "$line"
            repeated=no
        elif [[ $repeated == no ]]; then
            printf '%s (repeated runs not shown)\n' "$line"
            repeated=yes
        fi
        last=$line
    done >&2
}

end_tracing() {
    [[ $trace == yes ]] || return 0
    echo >&30 # an empty line ends the follower after the last tool's line
    wait "$follower"
}
