#!/bin/bash
# Measures start-up, memory, painting and taps in the simulated panel.
set -u

# shellcheck source=scripts/common.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/../scripts/common.sh"

runs=20
status=0

show_help() {
    cat <<'HELP'
Usage: bench/run.sh [OPTION]

Installs what is missing, builds talmero-bios and its benchmarks (preset "bench")
and measures in the simulated panel:

  - the start until the first frame is on the screen, and the memory then,
    against a bare window of the toolkit;
  - the painting of whole pages;
  - the time from a tap to the painted next page;
  - the CPU time of the idle program with its rescue poll, against a shell loop that
    runs the same tool at the same rate, and the memory that an hour of polls costs.

Prints one table. The end status is 1 if a target is missed. A target is for the
median. The tools that the program runs, its pause of a second at the start among
them, are replaced by ones that return at once. Let nothing else run meanwhile.

  --runs N   Starts each of the two programs N times, 20 if not given.
  --help     Shows this text.
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
    *) usage_error "unknown option $1" ;;
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
build_preset bench talmero-bios startup painting pollmemory || exit

warn_if_busy
# The columns are those of bench/support/resulttable.cpp.
printf '%-50s %9s %9s %-5s %8s\n' "" median worst "" "at most"
measure 1024x768 startup "$runs"
measure 1024x768 painting pages
measure 800x600 painting taps
measure 1280x800 painting taps
measure 800x600 pollmemory
"$project_root/simulator/panel" --display xorg -- "$project_root/bench/rescuepoll.sh" \
    "$project_root/build-bench/talmero-bios" 60 || status=1
exit "$status"
