#!/bin/bash
# Measures start-up, memory, painting, taps, packages and long lists on the simulated panel.
set -u

# shellcheck source=scripts/common.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/../scripts/common.sh"

runs=20
package_size=64 # MiB
parts=()
store=no
status=0

show_help() {
    cat <<'HELP'
Usage: bench/run.sh [OPTION...] [PART...]

Installs missing packages, builds talmero-bios and its benchmarks (preset "bench"),
and measures the given parts on the simulated panel. The default is all parts:

  start     time until the first frame is on the screen, memory, size and libraries;
            peers: a bare Qt window, lxqt-config and xfce4-settings-manager
  paint     painting of whole pages
  tap       time from a tap until the next page is painted, and from a tap on a key
            of the keypad until its character appears
  settings  reading and writing a settings file with 100,000 keys; peer: QSettings
  list      filling the list with 10,000 and 100,000 packages
  walk      searching for packages among 100,000 files, and growth of the time up to
            a million files; peer: find
  install   installing an application package, and the memory that packages of
            several sizes need; peer: tail, tar and rm
  poll      CPU time of the idle program with its rescue poll, and memory growth in
            an hour of polls; peer: a shell loop that runs xinput at the same rate
  slow      start, tap and paint with a fifth of one processor, as on an old panel;
            no limits

Prints one table. The program and its peer run alternately. The exit status is 1 if a
limit is missed. If there is a peer, the limit applies to the ratio of the medians.
For taps and keys it applies to the slowest, otherwise to the median. The tools that
the program runs, including its pause of one second at the start, are replaced by ones
that return at once. Nothing else should run on the machine meanwhile.

  --runs N            Starts each program 5 N times, and measures its memory N times
                      (default: 20).
  --store             Also puts the rows with a limit into docs/performance.md.
  --package-size MIB  Size of the files in the largest package that is installed
                      (default: 64). 1024 takes some minutes and 3 GiB of memory,
                      because the panel's files are in memory.
  --help              Shows this text.
HELP
}

usage_error() {
    printf 'bench/run.sh: %s; see bench/run.sh --help\n' "$1" >&2
    exit 2
}

while (($#)); do
    case $1 in
    --help)
        show_help
        exit 0
        ;;
    --runs)
        runs=${2-}
        [[ $runs =~ ^[1-9][0-9]{0,3}$ ]] || usage_error "--runs needs a number from 1"
        shift
        ;;
    --package-size)
        package_size=${2-}
        [[ $package_size =~ ^[1-9][0-9]{0,3}$ ]] || usage_error "--package-size needs a number from 1"
        shift
        ;;
    --store) store=yes ;;
    start | paint | tap | settings | slow | list | walk | install | poll) parts+=("$1") ;;
    *) usage_error "unknown option or part $1" ;;
    esac
    shift
done

idle_ticks() { # all processors, 100 per second each
    local idle
    read -r _ _ _ _ idle _ </proc/stat
    echo "$idle"
}

# The program and the X server share the processors. Any other load shifts the ratios.
warn_if_busy() {
    local before share
    before=$(idle_ticks)
    sleep 2
    share=$((($(idle_ticks) - before) / 2 / $(nproc)))
    ((share >= 90)) ||
        echo "bench/run.sh: the machine is only $share % idle, so the figures will be too high" >&2
}

is_wanted() { # PART
    local part
    ((${#parts[@]})) || return 0
    for part in "${parts[@]}"; do
        [[ $part == "$1" ]] && return 0
    done
    return 1
}

# The desktop programs need a message bus to start. The output of the bus and its services is
# discarded.
quietly_on_a_bus='exec 3>&1 4>&2 >/dev/null 2>&1
dbus-run-session -- bash -c "exec \"\$@\" >&3 2>&4" bash "$@"'

measure() { # SIZE PROGRAM ARGS...
    local size=$1 program=$2
    shift 2
    # shellcheck disable=SC2154 # the folder comes from common.sh
    "$project_root/simulator/panel" --build "$project_root/build-bench" --display xvfb \
        --size "$size" -- bash -c "$quietly_on_a_bus" bash \
        "$project_root/build-bench/bin/$program" "$@"
    case $? in
    0) ;;
    1) status=1 ;;
    *) die "cannot measure: $program $*" ;;
    esac
}

# shellcheck disable=SC2154 # the lists come from common.sh
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${bench_packages[@]}" \
    "${peer_packages[@]}" || exit
build_preset bench talmero-bios startup painting filling walking installing settingsfile \
    pollmemory || exit

# Limits this shell to a fifth of a processor, in slices of 5 ms. In a longer slice, a whole start
# could run at full speed.
limit_processor() {
    local group
    if [[ -w /sys/fs/cgroup/cpu/cgroup.procs ]]; then
        group=/sys/fs/cgroup/cpu/talmero-bench-$BASHPID
        mkdir "$group" && echo 5000 >"$group/cpu.cfs_period_us" && echo 1000 >"$group/cpu.cfs_quota_us"
    elif grep -qs cpu /sys/fs/cgroup/cgroup.subtree_control; then
        group=/sys/fs/cgroup/talmero-bench-$BASHPID
        mkdir "$group" && echo "1000 5000" >"$group/cpu.max"
    else
        return 1
    fi && echo "$BASHPID" >"$group/cgroup.procs"
}

# Without the column of the limits, which are for a whole processor.
measure_slowly() ( # in a subshell, so that the limit ends with it
    limit_processor || {
        echo "bench/run.sh: this machine cannot limit processor time: skipping part \"slow\"" >&2
        exit 0
    }
    echo "with a fifth of a processor:"
    {
        measure 1024x768 startup 5
        measure 800x600 painting taps 10
        measure 1280x800 painting taps 10
        measure 1280x800 painting pages 10
    } | cut -c1-98
    exit 0
)

measure_parts() {
    # bench/support/resulttable.cpp prints the same columns.
    printf '%-48s %9s %9s %-5s %6s %15s %8s\n' "what; peer" ours peer "" ratio spread "at most"
    ! is_wanted start || measure 1024x768 startup "$runs" lxqt-config xfce4-settings-manager
    ! is_wanted paint || measure 1280x800 painting pages
    if is_wanted tap; then
        measure 800x600 painting taps
        measure 1280x800 painting taps
        measure 800x600 painting keys
    fi
    ! is_wanted settings || measure 800x600 settingsfile
    ! is_wanted list || measure 800x600 filling
    ! is_wanted walk || measure 800x600 walking
    ! is_wanted install || measure 800x600 installing "$package_size"
    if is_wanted poll; then
        measure 800x600 pollmemory
        "$project_root/simulator/panel" --display xorg -- "$project_root/bench/rescuepoll.sh" \
            "$project_root/build-bench/bin/talmero-bios" || status=1
    fi
    ! is_wanted slow || measure_slowly
    return "$status"
}

machine() {
    printf '%s, %s processors, %s MiB of memory, Linux %s, %s' \
        "$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)" "$(nproc)" \
        "$(awk '/^MemTotal/ { print int($2 / 1024) }' /proc/meminfo)" "$(uname -r)" \
        "$(date +%Y-%m-%d)"
}

# The rows with a limit, and the header. An indented row needs the row above it.
rows_with_limits() { # FILE
    awk '
        /^what;/ { print }
        /^[^ ]/ { above = $0 }
        /(met|MISSED)$/ { if (/^ / && above != shown) print above; print; shown = above }' "$1"
}

# Replaces the table between the two marks.
store_table() { # FILE
    local document=$project_root/docs/performance.md
    {
        sed '/^<!-- table -->$/q' "$document"
        printf '\n%s\n\n```text\n' "$(machine)"
        rows_with_limits "$1"
        printf '```\n\n'
        sed -n '/^<!-- end of table -->$/,$p' "$document"
    } >"$document.new"
    mv "$document.new" "$document"
}

warn_if_busy
table=$(mktemp)
trap 'rm -f "$table"' EXIT
measure_parts | tee "$table"
status=${PIPESTATUS[0]}
[[ $store == no ]] || store_table "$table"
exit "$status"
