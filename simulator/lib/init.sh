#!/bin/bash
# The panel's first process. "panel" starts it in new namespaces. When it ends, the kernel ends
# everything else in the panel.
set -u

eval "$PANEL_CONFIG"
unset -v PANEL_CONFIG
panel_error=125
caller_folder=$PWD

# shellcheck disable=SC2317 # used by the files sourced below
fail() {
    printf 'panel: %s\n' "$1" >&2
    exit "$panel_error"
}

for topic in rootfs far-side network serial files tools display screenshot command; do
    # shellcheck source=/dev/null
    source "$simulator/lib/$topic.sh"
done

# The kernel drops signals to a first process that has no handler for them.
trap 'end_by_signal 1' HUP
trap 'end_by_signal 2' INT
trap 'end_by_signal 15' TERM

make_root
enter_root
set_environment
start_network
start_serial
install_files
install_tools
start_tracing
start_display
finish_network
finish_serial
run_command
exit "$status"
