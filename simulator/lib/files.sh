# The panel's own files and its USB stick. Sourced.
# shellcheck shell=bash

install_files() {
    [[ $files == yes ]] || return 0
    mkdir -p /opt/talmero/hmi /home/dest /media/usb0 /usr/share/fonts/truetype/freefont &&
        # a stick is a separate file system, so moving a file off it copies the file
        mount -t tmpfs panel /media/usb0 &&
        cp -r "$simulator/files/." / || fail "cannot install the panel's files"
    if [[ -x $build/simulator/standin-runtime ]]; then
        cp "$build/simulator/standin-runtime" /opt/talmero/hmi/runtime
    fi
    if [[ -d $build/simulator/stick ]]; then
        cp -r "$build/simulator/stick/." /media/usb0
    fi
    if [[ $factory == yes ]]; then
        : >/media/usb0/talmero_setup
    fi
}
