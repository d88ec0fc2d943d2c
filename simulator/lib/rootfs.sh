# The panel's root file system: the machine's own, under a layer that takes all writes and is
# discarded at the end. Sourced.
# shellcheck shell=bash

# The panel has its own, empty versions of these.
readonly fresh_folders=(/tmp /run /media)

is_below() { # PATH FOLDER: true for the folder itself too
    [[ $1/ == "${2%/}"/* ]]
}

is_fresh() {
    local folder
    for folder in "${fresh_folders[@]}" /home /dev /proc /sys; do
        is_below "$1" "$folder" && return 0
    done
    return 1
}

# The staging folder is covered during set-up, so it must not contain anything that is needed.
choose_staging() {
    local needed
    for staging in /mnt /srv /media /opt; do
        [[ -d $staging ]] || continue
        for needed in "$checkout" "$build" "$caller_folder" "${shares[@]}"; do
            is_below "$needed" "$staging" && continue 2
        done
        return 0
    done
    fail "no free folder to build the panel in"
}

# overlay SOURCE: shows the folder in the new root; writes go to memory
layers=0
overlay() {
    local layer=$staging/layer$((layers++))
    mkdir -p "$layer/upper" "$layer/work" "$root$1" || return
    # redirect_dir makes renaming a folder of the lower layer work as on a real disk
    mount -t overlay -o "lowerdir=${1//:/\\:},upperdir=$layer/upper,workdir=$layer/work,redirect_dir=on" \
        panel "$root$1" 2>/dev/null && return
    # some file systems cannot be a lower layer
    mount -o bind,ro "$1" "$root$1" || fail "cannot show $1 in the panel"
}

# A panel's /home is empty, and on the same file system as its /opt. In an upper layer, a device 0:0
# hides the entry below it, if it exists before the overlay is mounted.
hide_home() {
    mkdir -p "$staging/layer0/upper" && mknod "$staging/layer0/upper/home" c 0 0 ||
        fail "cannot hide /home"
}

# An overlay of / does not include the other file systems mounted below it.
add_file_systems() {
    local target needed
    while read -r _ _ _ _ target _; do
        printf -v target %b "$target" # mountinfo writes blanks in octal
        [[ $target != / && -d $target ]] || continue
        is_fresh "$target" && continue
        is_below "$target" "$staging" && continue
        for needed in /usr /var /opt /root /etc /srv; do
            if is_below "$target" "$needed"; then
                overlay "$target"
                continue 2
            fi
        done
        for needed in "$checkout" "$build" "$caller_folder"; do
            if is_below "$needed" "$target"; then
                overlay "$target"
                continue 2
            fi
        done
    done <<<"$host_mounts"
}

# The checkout may be below /tmp or /home, which are empty in the panel.
add_hidden_folders() {
    local folder
    for folder in "$checkout" "$build" "$caller_folder"; do
        if is_fresh "$folder" && [[ -d $folder && ! -d $root$folder ]]; then
            overlay "$folder"
        fi
    done
}

add_shares() {
    local folder
    for folder in "${shares[@]}"; do
        mkdir -p "$root$folder" && mount --bind "$folder" "$root$folder" ||
            fail "cannot share $folder"
    done
}

# Only the devices that every program expects: no disk, serial port or clock of the machine.
make_dev() {
    local nodes=(/dev/null /dev/zero /dev/full /dev/random /dev/urandom /dev/tty)
    [[ -c /dev/fuse ]] && nodes+=(/dev/fuse)
    mount -t tmpfs -o mode=755 panel "$root/dev" &&
        cp -a "${nodes[@]}" "$root/dev" &&
        cp -a /dev/null "$root/dev/console" && # the real one belongs to the machine
        mkdir -m 1777 "$root/dev/shm" "$root/dev/mqueue" "$root/dev/pts" &&
        mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 panel "$root/dev/pts" &&
        ln -s pts/ptmx "$root/dev/ptmx" &&
        ln -s /proc/self/fd /proc/self/fd/0 "$root/dev" && mv "$root/dev/0" "$root/dev/stdin" &&
        ln -s /proc/self/fd/1 "$root/dev/stdout" &&
        ln -s /proc/self/fd/2 "$root/dev/stderr" || return
    mount -t mqueue panel "$root/dev/mqueue" 2>/dev/null # some kernels lack it
    return 0
}

make_kernel_folders() {
    mount -t proc -o nosuid,nodev,noexec panel "$root/proc" || return
    echo panel >/proc/sys/kernel/hostname || return
    # most of its settings are the machine's
    mount -o bind,ro "$root/proc/sys" "$root/proc/sys" || return
    if [[ -e $root/proc/sysrq-trigger ]]; then
        mount --bind "$root/dev/null" "$root/proc/sysrq-trigger" || return
    fi
    mount -t sysfs -o ro,nosuid,nodev,noexec panel "$root/sys" 2>/dev/null ||
        mount -o bind,ro /sys "$root/sys"
}

make_root() {
    local folder host_mounts
    host_mounts=$(</proc/self/mountinfo)
    choose_staging
    mount -t tmpfs -o mode=755 panel "$staging" || fail "cannot mount a memory file system"
    root=$staging/root
    hide_home
    overlay /
    mkdir "$root/home"
    for folder in "${fresh_folders[@]}"; do
        [[ -d $root$folder ]] || mkdir -p "$root$folder"
        mount -t tmpfs -o mode=1777 panel "$root$folder" || fail "cannot make $folder"
    done
    chmod 755 "$root/run" "$root/media"
    make_dev || fail "cannot make /dev"
    make_kernel_folders || fail "cannot make /proc and /sys"
    add_file_systems
    add_hidden_folders
    add_shares
}

enter_root() {
    cd "$root" && mkdir -p "$root/run/old-root" && pivot_root . run/old-root && cd / &&
        umount -l /run/old-root && rmdir /run/old-root || fail "cannot enter the panel"
    mkdir -p /run/panel /run/lock /run/user /tmp/.X11-unix && mkdir -m 700 /run/user/0
    chmod 1777 /tmp/.X11-unix /run/lock
    echo "simulated panel" >/run/talmero-panel # the tests refuse to run without it
    cd "$caller_folder" 2>/dev/null || cd /
}
