# Ends servers of the panel. Sourced by "network" and "serial".
# shellcheck shell=bash

# end_server PID_FILE NAME: does nothing if the server is not running
end_server() {
    local process try
    { read -r process <"$1"; } 2>/dev/null || return 0
    kill "$process" 2>/dev/null
    for ((try = 0; try < 100; try++)); do
        kill -0 "$process" 2>/dev/null || return 0
        sleep 0.02
    done
    fail "$2 did not end"
}
