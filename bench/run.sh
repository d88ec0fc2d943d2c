#!/bin/bash
# Measures start-up, memory, painting, taps, packages and long lists in the simulated panel.
set -u

# shellcheck source=scripts/common.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/../scripts/common.sh"

runs=20
package_size=64 # MiB
parts=()
status=0

show_help() {
    cat <<'HELP'
Usage: bench/run.sh [OPTION...] [PART...]

Installs what is missing, builds talmero-bios and its benchmarks (preset "bench")
and measures in the simulated panel the parts that are named, all if none is:

  start    the start until the first frame is on the screen, and the memory then,
           against a bare window of the toolkit;
  paint    the painting of whole pages;
  tap      the time from a tap to the painted next page;
  list     filling the list of packages with 10,000 and 100,000 of them;
  walk     the search for packages among 100,000 files against find, and its growth
           up to a million;
  install  the installation of an application package against tail, tar and rm, and
           the memory that packages of several sizes take;
  poll     the CPU time of the idle program with its rescue poll, against a shell
           loop that runs the same tool at the same rate, and the memory that an
           hour of polls costs.

Prints one table. The end status is 1 if a target is missed. A target is for the
median. The tools that the program runs, its pause of a second at the start among
them, are replaced by ones that return at once. Let nothing else run meanwhile.

  --runs N            Starts each of the two programs N times, 20 if not given.
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
    start | paint | tap | list | walk | install | poll) parts+=("$1") ;;
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

measure() { # SIZE PROGRAM ARGS...
    local size=$1 program=$2
    shift 2
    # shellcheck disable=SC2154 # the folder comes from common.sh
    "$project_root/simulator/panel" --build "$project_root/build-bench" --display xvfb \
        --size "$size" -- "$project_root/build-bench/bench/$program" "$@"
    case $? in
    0) ;;
    1) status=1 ;;
    *) die "cannot measure: $program $*" ;;
    esac
}

# shellcheck disable=SC2154 # the lists come from common.sh
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${bench_packages[@]}" || exit
build_preset bench talmero-bios startup painting filling walking installing pollmemory || exit

warn_if_busy
# The columns are those of bench/support/resulttable.cpp.
printf '%-50s %9s %9s %-5s %8s\n' "" median worst "" "at most"
! is_wanted start || measure 1024x768 startup "$runs"
! is_wanted paint || measure 1024x768 painting pages
if is_wanted tap; then
    measure 800x600 painting taps
    measure 1280x800 painting taps
fi
! is_wanted list || measure 800x600 filling
! is_wanted walk || measure 800x600 walking
! is_wanted install || measure 800x600 installing "$package_size"
if is_wanted poll; then
    measure 800x600 pollmemory
    "$project_root/simulator/panel" --display xorg -- "$project_root/bench/rescuepoll.sh" \
        "$project_root/build-bench/talmero-bios" 60 || status=1
fi
exit "$status"
