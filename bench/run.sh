#!/bin/bash
# Measures start-up, memory, painting, taps, packages and long lists in the simulated panel.
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

Installs what is missing, builds talmero-bios and its benchmarks (preset "bench")
and measures in the simulated panel the parts that are named, all if none is:

  start    the start until the first frame is on the screen, the memory then, the
           size and the libraries, against a bare window of the toolkit, and against
           lxqt-config and xfce4-settings-manager;
  paint    the painting of whole pages;
  tap      the time from a tap to the painted next page, and from a key of the
           keypad to its character;
  settings reading and writing a settings file of 100,000 keys against QSettings;
  list     filling the list of packages with 10,000 and 100,000 of them;
  walk     the search for packages among 100,000 files against find, and its growth
           up to a million;
  install  the installation of an application package against tail, tar and rm, and
           the memory that packages of several sizes take;
  poll     the CPU time of the idle program with its rescue poll, against a shell
           loop that runs the same tool at the same rate, and the memory that an
           hour of polls costs;
  slow     start, tap and paint once more with a fifth of one processor, as on an
           old panel. They have no targets.

Prints one table, ours and the peer's in turn. The end status is 1 if a target is
missed. A target is for the ratio of the medians, where there is a peer, for the
worst of all taps and keys, and for the median otherwise. The tools that the program
runs, its pause of a second at the start among them, are replaced by ones that return
at once. Let nothing else run meanwhile.

  --runs N            Starts each of the programs N times, 20 if not given.
  --store             Puts the table into docs/performance.md too.
  --package-size MIB  Files in the largest package that is installed, together, 64 if
                      not given. 1024 takes some minutes, and 3 GiB of memory, in
                      which the panel keeps its files.
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

idle_ticks() { # of all processors, 100 a second each
    local idle
    read -r _ _ _ _ idle _ </proc/stat
    echo "$idle"
}

# The program and the X server take turns on the processors; a third party shifts the ratios.
warn_if_busy() {
    local before share
    before=$(idle_ticks)
    sleep 2
    share=$((($(idle_ticks) - before) / 2 / $(nproc)))
    ((share >= 90)) ||
        echo "bench/run.sh: the machine is only $share % idle, figures will be too high" >&2
}

is_wanted() { # PART
    local part
    ((${#parts[@]})) || return 0
    for part in "${parts[@]}"; do
        [[ $part == "$1" ]] && return 0
    done
    return 1
}

# The programs of desktops end without a message bus: there is one for all. What its server and
# the services that it starts say is thrown away.
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

# A fifth of a processor for what follows in this shell, in slices of 5 ms: within longer ones a
# whole start would run at full speed.
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

# Without the columns of the targets: these are for a whole processor.
measure_slowly() ( # in a process of its own, which takes the limit along
    limit_processor || {
        echo "bench/run.sh: this machine cannot limit a processor, part \"slow\" is left out" >&2
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
    # The columns are those of bench/support/resulttable.cpp.
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

# Puts the table in place of the one between the two marks.
store_table() { # FILE
    local document=$project_root/docs/performance.md
    {
        sed '/^<!-- table -->$/q' "$document"
        printf '\n%s\n\n```text\n' "$(machine)"
        cat "$1"
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
