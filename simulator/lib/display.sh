# The panel's display, which is always ":0", and its helpers. Sourced.
# shellcheck shell=bash

readonly touch_name="PenMount USB Touchscreen"
readonly touch_socket=/run/panel/touch.socket
readonly finger_socket=/run/panel/finger.socket
readonly vnc_socket=/run/panel/vnc.socket
readonly server_options=(-noreset -nolisten tcp -dpi 96)

start_display() {
    case $display in
    xvfb) start_xvfb :0 "$size" ;;
    xorg) start_xorg ;;
    xephyr) start_xephyr ;;
    window) start_window ;;
    web)
        start_xorg
        start_web
        ;;
    esac
    if [[ $display != none ]]; then
        export DISPLAY=:0
    fi
    if [[ -n $screenshot ]]; then
        watch_for_window
    fi
}

# start_ready NAME COMMAND...: starts a server and waits until it writes a line to descriptor 3. The
# line is in $answer. Fails after 30 s, or if the server ends first.
start_ready() {
    local name=$1 pipe=/run/panel/$1.ready log=/run/panel/$1.log
    shift
    mkfifo "$pipe"
    # shellcheck disable=SC2016
    start_server "$log" sh -c 'exec 3>"$0" "$@"' "$pipe" "$@"
    if ! IFS= read -r -t 30 answer <"$pipe"; then
        printf '%s\n' "$(tail -n 5 "$log")" >&2
        fail "$name did not start; the lines above are the end of its log"
    fi
}

start_xvfb() { # DISPLAY SIZE
    start_ready Xvfb Xvfb "$1" -screen 0 "$2x24" "${server_options[@]}" -displayfd 3
}

write_xorg_conf() {
    local width=${size%x*} height=${size#*x}
    # The dummy driver ignores the timing, but the numbers must be consistent.
    local htotal=$((width + 160)) vtotal=$((height + 30))
    local clock=$((htotal * vtotal * 60 / 1000))
    # outside this range the driver rejects the mode or picks another
    ((clock >= 12000)) || clock=12000
    ((clock <= 300000)) || clock=300000
    cat <<CONF
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
    Option "DontVTSwitch" "true"
EndSection
Section "InputDevice"
    Identifier "$touch_name"
    Driver "inputtest"
    Option "SocketPath" "$touch_socket"
    Option "DeviceType" "PointerAbsolute"
    Option "SendCoreEvents" "true"
EndSection
Section "Device"
    Identifier "memory"
    Driver "dummy"
    VideoRam 262144
EndSection
Section "Monitor"
    Identifier "panel"
    HorizSync 1-1000
    VertRefresh 1-1000
    Modeline "$size" $((clock / 1000)).$(printf %03d $((clock % 1000))) $width $((width + 40)) $((width + 80)) $htotal $height $((height + 5)) $((height + 10)) $vtotal
    Option "PreferredMode" "$size"
EndSection
Section "Screen"
    Identifier "screen"
    Device "memory"
    Monitor "panel"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "$size"
        Virtual $width $height
    EndSubSection
EndSection
Section "ServerLayout"
    Identifier "layout"
    Screen "screen"
    InputDevice "$touch_name"
EndSection
CONF
}

start_xorg() {
    local server=/usr/lib/xorg/Xorg # its wrapper would need a console
    [[ -x $server ]] || server=Xorg
    write_xorg_conf >/run/panel/xorg.conf
    start_ready Xorg "$server" :0 -config /run/panel/xorg.conf -logfile /run/panel/xorg.log \
        "${server_options[@]}" -novtswitch -sharevts -displayfd 3
    start_ready finger "$simulator/finger" serve --size "$size" --device "$touch_socket" \
        --socket "$finger_socket" --ready 3
}

start_xephyr() {
    local width=${size%x*} height=${size#*x} side
    side=$((width > height ? width : height)) # room for either orientation
    start_xvfb :1 "${side}x$side"
    DISPLAY=:1 start_ready Xephyr Xephyr :0 -screen "$size" "${server_options[@]}" -displayfd 3
}

# Only the window's server can reach the user's display.
start_window() {
    local width=${size%x*} height=${size#*x}
    reaching_out=yes start_ready Xephyr \
        nsenter --mount=/proc/self/fd/20 --net=/proc/self/fd/21 --uts=/proc/self/fd/22 \
        --ipc=/proc/self/fd/23 unshare --mount --propagation private \
        /bin/sh "$simulator/lib/window-server.sh" "$PANEL_HOST_DISPLAY" "$PANEL_HOST_XAUTHORITY" \
        -screen "${width}x$height" "${server_options[@]}" -displayfd 3
    ln -s "/proc/$server/root/tmp/.X11-unix/X$answer" /tmp/.X11-unix/X0
}

# Polled, because neither server reports that it is ready.
wait_for_page() {
    local try
    for ((try = 0; try < 200; try++)); do
        if [[ -S $vnc_socket ]] && nsenter --net=/proc/self/fd/21 \
            bash -c "exec 3<>/dev/tcp/127.0.0.1/$web_port" 2>/dev/null; then
            return 0
        fi
        sleep 0.05
    done
    tail -n 5 /run/panel/x11vnc.log /run/panel/websockify.log >&2
    return 1
}

# The web page is in the machine's network, the display in the panel's.
start_web() {
    local page="http://127.0.0.1:$web_port/vnc.html?autoconnect=1&resize=scale"
    start_server /run/panel/x11vnc.log x11vnc -display :0 -unixsock "$vnc_socket" -rfbport 0 \
        -forever -shared -nopw -noipv6 -no6 -nosel -noxrecord -skip_lockkeys \
        -pipeinput "reopen:'$simulator/finger' pipe --socket $finger_socket"
    reaching_out=yes start_server /run/panel/websockify.log nsenter --net=/proc/self/fd/21 \
        websockify --web /usr/share/novnc --unix-target "$vnc_socket" "127.0.0.1:$web_port"
    wait_for_page || fail "the page for the browser did not come up"
    echo "The panel is shown at $page"
}
