# Takes the screenshot of the display. Sourced.
# shellcheck shell=bash

# The watcher must be ready before the command starts, or it misses the first window. It does not
# report that it is ready, so this sets a property until the watcher sees one.
watch_for_window() {
    local line='' try
    mkfifo /run/panel/windows
    start_server /run/panel/windows.log \
        sh -c 'exec xev -root -event substructure -event property >/run/panel/windows'
    exec 31</run/panel/windows
    for ((try = 0; try < 50; try++)); do
        xprop -root -f WATCHED 8s -set WATCHED yes
        IFS= read -r -t 0.1 line <&31
        [[ -n $line ]] && return
    done
    fail "cannot watch for the command's window"
}

command_runs() {
    kill -0 "$command_process" 2>/dev/null
}

wait_for_window() {
    local line quarters=0
    while command_runs && ((quarters < 60)); do
        if IFS= read -r -t 0.25 line <&31; then
            [[ $line == MapNotify* ]] && return
        else
            quarters=$((quarters + 1))
        fi
    done
}

take_screenshot() {
    wait_for_window
    command_runs && sleep "$after"
    if ! command_runs; then
        wait "$command_process"
        fail "the command ended before the picture was taken, with status $?"
    fi
    "$simulator/panel-screenshot" - >&24 || fail "cannot take the picture"
}
