# Runs the command and exits with its status. Sourced.
# shellcheck shell=bash

status=0
command_process=

# Root in the panel has no power over the machine: even the real tools cannot reach its clock,
# kernel and devices.
readonly dropped=-sys_time,-sys_boot,-sys_module,-syslog,-sys_rawio,-mknod
readonly without_rights=(setpriv --bounding-set "$dropped" --inh-caps "$dropped" --)

set_environment() {
    PATH=/usr/sbin:/usr/bin:/sbin:/bin
    export PATH LC_ALL=C.UTF-8 HOME=/root USER=root LOGNAME=root SHELL=/bin/bash
    export XDG_RUNTIME_DIR=/run/user/0
    unset -v "${!SUDO_@}"
}

# A session of its own keeps Ctrl-C away from the servers: only the command must get it.
start_server() { # LOG COMMAND...
    local log=$1
    shift
    (
        exec 24>&-
        [[ ${reaching_out-} == yes ]] || exec 20<&- 21<&- 22<&- 23<&-
        exec setsid "${without_rights[@]}" "$@" </dev/null >"$log" 2>&1
    ) &
    server=$!
}

run_command() {
    unset -v "${!PANEL_@}"
    # bash starts background commands without input and with Ctrl-C ignored; this restores both.
    env --default-signal=INT,QUIT PATH="${command_path:-$PATH}" \
        "${without_rights[@]}" "${command[@]}" \
        <&0 20<&- 21<&- 22<&- 23<&- 24>&- 30<&- &
    command_process=$!
    exec 20<&- 21<&- 22<&- 23<&-
    if [[ -n $screenshot ]]; then
        take_screenshot
        end_command
    else
        wait "$command_process" 2>/dev/null # bash would print a message for a signal
        status=$?
    fi
    end_tracing
}

# Gives the command two seconds to finish.
end_command() {
    local tenth
    [[ -n $command_process ]] || return 0
    kill -TERM "$command_process" 2>/dev/null
    for ((tenth = 0; tenth < 20; tenth++)); do
        kill -0 "$command_process" 2>/dev/null || return 0
        sleep 0.1
    done
}

end_by_signal() {
    trap '' HUP INT TERM
    end_command
    exit $((128 + $1))
}
