#!/usr/bin/env bash
# Fuzzes the parsers. They open no files and run no tools, so no simulated panel is needed.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/common.sh
. "$here/../../../scripts/common.sh"

usage() {
    cat <<'TEXT'
Usage: tests/robustness/fuzz/run.sh [OPTION...] HOURS [TARGET...]

Builds the fuzz targets and runs each for HOURS hours. Prints a table: inputs,
inputs per second, processor time, and inputs that reached new code. Then prints
how many lines of the code under test were reached. The next run starts with the
inputs found, which are in build-fuzz/corpus. The first input that fails ends its
target and is stored in build-fuzz/failures.

  --seconds N  Runs each target for N seconds; then HOURS must be omitted.
  --jobs N     Runs N targets at the same time (default: one per processor).
  --help       Shows this text.
TEXT
}

usage_error() {
    usage >&2
    exit 2
}

seconds=
jobs=$(nproc)
while [[ ${1:-} == --* ]]; do
    case $1 in
        --help) usage && exit 0 ;;
        --seconds) seconds=${2:-} ;;
        --jobs) jobs=${2:-} ;;
        *) usage_error ;;
    esac
    shift 2 || usage_error
done
if [ -z "$seconds" ]; then
    [[ ${1:-} =~ ^[0-9]+$ ]] || usage_error
    seconds=$(($1 * 3600))
    shift
fi
[[ $seconds =~ ^[1-9][0-9]*$ && $jobs =~ ^[1-9][0-9]*$ ]] || usage_error

mapfile -t all < <(sed -n 's/^panel_add_fuzzer(\(.*\))$/\1/p' "$here/CMakeLists.txt")
targets=("${@:-${all[@]}}")
for target in "${targets[@]}"; do
    [[ " ${all[*]} " == *" $target "* ]] || die "unknown target $target; known are ${all[*]}"
done

install_packages "${build_packages[@]}" "${fuzz_packages[@]}"
build_preset fuzz
output=$project_root/build-fuzz
mkdir -p "$output"/{failures,logs,profiles}

# shellcheck disable=SC2317 # xargs calls it
fuzz() {
    local target=$1 corpus=$output/corpus/$1 log=$output/logs/$1
    mkdir -p "$corpus"
    LSAN_OPTIONS=suppressions=$project_root/tests/leaks.supp:print_suppressions=0 \
    LLVM_PROFILE_FILE=$output/profiles/raw-$target \
        bash -c 'times=$1; shift; "$@"; status=$?; times >"$times"; exit $status' fuzz "$log.times" \
        "$output/bin/fuzz_$target" -max_total_time="$seconds" -max_len=4096 -timeout=10 \
        -rss_limit_mb=2048 -print_final_stats=1 -dict="$here/words.dict" \
        -artifact_prefix="$output/failures/$target-" \
        "$corpus" "$here/corpus/$target" >"$log" 2>&1 && return
    grep -aE 'ERROR|SUMMARY|Test unit written' "$log" >&2 || tail -n 5 "$log" >&2
    echo "$target failed; run it on that file again: $output/bin/fuzz_$target FILE" >&2
    return 1
}
export -f fuzz
export here output seconds

echo "Fuzzing ${#targets[@]} targets for $seconds s each, $jobs at a time"
failed=0
# shellcheck disable=SC2016 # the inner shell expands it
printf '%s\0' "${targets[@]}" | xargs -0 -n 1 -P "$jobs" bash -c 'fuzz "$1"' fuzz || failed=1

statistic() {
    sed -n "s/^stat::$2: *//p" "$output/logs/$1"
}

# Seconds of processor time of the children, from the output of the shell's "times".
processor_time() {
    sed -n '2s/[ms]/ /gp' "$output/logs/$1.times" | awk '{ printf "%.0f", $1 * 60 + $2 + $3 * 60 + $4 }'
}

row='%-14s %12s %10s %8s %8s\n'
# shellcheck disable=SC2059 # the row is its format
printf "$row" target inputs "per s" "CPU s" new
for target in "${targets[@]}"; do
    # shellcheck disable=SC2059
    printf "$row" "$target" "$(statistic "$target" number_of_executed_units)" \
        "$(statistic "$target" average_exec_per_sec)" "$(processor_time "$target")" \
        "$(statistic "$target" new_units_added)"
done

echo "Lines of the parsers that were reached"
llvm-profdata merge -o "$output/profiles/merged" \
    "${targets[@]/#/$output/profiles/raw-}"
llvm-cov export --summary-only --instr-profile="$output/profiles/merged" \
    "${targets[@]/#/--object=$output/bin/fuzz_}" |
    python3 -c 'import json, os, sys
for file in json.load(sys.stdin)["data"][0]["files"]:
    lines = file["summary"]["lines"]
    if "/src/" in file["filename"] and lines["covered"] > 0:
        name = os.path.relpath(file["filename"], sys.argv[1])
        print("%-32s %4d of %4d" % (name, lines["covered"], lines["count"]))' "$project_root"
exit "$failed"
