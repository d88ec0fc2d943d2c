#!/usr/bin/env bash
# Runs the tests that need no X server, and makes and verifies packages, on the other processors.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<TEXT
Usage: tests/long/architectures.sh [OPTION]... [ARCHITECTURE]...

For each architecture other than amd64, or the given ones of ${architectures[*]},
builds the tests, for ARM with a cross-compiler, and runs them in a Debian of that
architecture, for ARM with qemu-user: all unit tests, and the widget tests that need no
X server. Makes packages there, which must be those that amd64 makes, byte for byte.
Verifies all hostile packages; the reports must be those of amd64. Prints a line per
test and failures. What was built is in build-architectures/ for the next run. Needs
root or sudo, apt's mirror, 10 GB and, for ARM, about an hour.

  --test NAME   Runs only this test.
  --help        Shows this text.
TEXT
}

usage_error() {
    printf 'architectures.sh: %s; see tests/long/architectures.sh --help\n' "$1" >&2
    exit 2
}

# What the tests need at run time. The -dev packages have the same names in all releases and bring
# the libraries, whose names differ.
readonly run_packages=(qt6-base-dev qt6-serialport-dev libarchive-dev libarchive-tools libfuse3-3
    busybox fonts-dejavu-core fonts-open-sans iproute2 procps python3 x11-xserver-utils xinput)

make_test_root() {
    [ ! -e "$folder/made" ] || return 0
    rm -rf "$root"
    echo "Installing Debian for $architecture"
    local packages="${run_packages[*]}"
    mmdebstrap --mode=root --variant=minbase --architectures="$architecture" --include="${packages// /,}" \
        --aptopt='Apt::Install-Recommends "false"' \
        "$release" "$root" http://deb.debian.org/debian >>"$log" 2>&1 ||
        die "Debian could not be installed, see $log: $(grep -m 1 '^E: ' "$log" || tail -n 1 "$log")"
    touch "$folder/made"
}

# in_builder COMMAND...: in the folder with the sources
in_builder() {
    # shellcheck disable=SC2016 # the inner shell expands it
    scripts/in-root "$builder" sh -c 'cd "$0" && exec "$@"' "$place" "$@"
}

configure() {
    local options=(-DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG"
        -DCMAKE_COMPILE_WARNING_AS_ERROR=ON -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=16)
    [ "$(builder_of "$architecture")" = "$architecture" ] || options+=(
        -DCMAKE_SYSTEM_NAME=Linux
        -DCMAKE_SYSTEM_PROCESSOR="$(dpkg-architecture -f -a"$architecture" -qDEB_HOST_GNU_CPU)"
        -DCMAKE_CXX_COMPILER="$(dpkg-architecture -f -a"$architecture" -qDEB_HOST_GNU_TYPE)-g++"
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake)
    in_builder cmake -S . -B build "${options[@]}"
}

# The names of the tests that need no X server.
list_tests() {
    local excluded=python
    [ "$(builder_of "$architecture")" = "$architecture" ] || excluded='python|native'
    in_builder ctest --test-dir build --show-only --label-regex '^(unit|offscreen)$' --label-exclude "^($excluded)\$" |
        sed -n 's/^ *Test *#[0-9]*: //p'
}

build_tests() {
    echo "Building the tests for $architecture"
    scripts/clean-root "$release" "$architecture" "$builder" "$log" "libfuse3-dev:$architecture"
    find "$builder$place" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} + 2>/dev/null || true
    copy_sources "$builder$place"
    configure >>"$log" 2>&1 || die "cmake could not configure, see $log"
    list_tests >"$folder/tests"
    mapfile -t tests < <(grep -x -- "${only:-.*}" "$folder/tests")
    [ "${#tests[@]}" -gt 0 ] || die "there is no test $only that needs no X server"
    in_builder cmake --build build --parallel "$(nproc)" --target "${tests[@]}" talmero-mkpackage >>"$log" 2>&1 ||
        die "the build for $architecture failed, see $log"
    rm -rf "${root:?}$place"
    mkdir -p "$root$place/build/simulator"
    copy_sources "$root$place"
    cp -a "$builder$place/build/bin" "$root$place/build"
    cp -a build/simulator/stick "$root$place/build/simulator" # amd64's packages
}

# in_panel COMMAND...: in a simulated panel whose programs are those of the architecture
in_panel() {
    simulator/panel --no-files --display none --share "$shared" -- \
        tests/long/architectures/enter.sh "$root" "$place" "$shared" "$@"
}

run_test() { # NAME
    local status=0
    in_panel "build/bin/$1" -maxwarnings 0 >"$folder/logs/$1" 2>&1 </dev/null || status=$?
    printf '%-8s %-24s %s\n' "$architecture" "$1" \
        "$(grep -a '^Totals' "$folder/logs/$1" || echo "ended with status $status")"
    [ "$status" -eq 0 ] || grep -aA 3 -E '^(FAIL!|XPASS|QFATAL)' "$folder/logs/$1" || true
    return "$status"
}

run_tests() {
    rm -rf "$folder/logs"
    mkdir -p "$folder/logs"
    export -f run_test in_panel
    export folder architecture root place shared
    # shellcheck disable=SC2016 # the inner shell expands it
    printf '%s\0' "${tests[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'run_test "$1"' run_test
}

# Makes packages on this processor and verifies the hostile ones.
compare_packages() {
    in_panel tests/long/architectures/packages.sh "$shared" >"$folder/report" 2>>"$log" ||
        die "the packages could not be made for $architecture, see $log"
    if cmp -s "$shared/report" "$folder/report"; then
        printf '%-8s packages made and %s reports of verify: as on amd64\n' "$architecture" \
            "$(grep -c '^status' "$folder/report")"
    else
        echo "$architecture: packages differ from those of amd64, see diff $shared/report $folder/report"
        return 1
    fi
}

# The hostile packages, one with a file of 3 GiB, and what amd64 makes of them.
make_reference() {
    rm -rf "$shared"
    mkdir -p "$shared/contents"
    echo "Making the packages"
    python3 tests/robustness/hostile/make-sticks --all 1 "$shared/hostile"
    truncate --size 3G "$shared/contents/huge"
    build/bin/talmero-mkpackage make --kind application --version 12 --target RV-K21T \
        --output "$shared/hostile/packages/huge-file.kpc" "$shared/contents"
    cp "$shared/hostile/packages/huge-file.kpc" "$shared/hostile/packages/huge-package.kpc"
    truncate --size 3G "$shared/hostile/packages/huge-package.kpc"
    simulator/panel --no-files --display none --share "$shared" -- \
        tests/long/architectures/packages.sh "$shared" >"$shared/report"
}

try_architecture() {
    local folder=$PWD/build-architectures/$architecture
    local builder=$folder/builder root=$folder/root log=$folder/log failed=no
    local tests=()
    mkdir -p "$folder"
    : >"$log"
    make_test_root
    build_tests
    run_tests || failed=yes
    [ -n "$only" ] || compare_packages || failed=yes
    echo "$architecture: $([ "$failed" = no ] && echo passed || echo failed)"
    [ "$failed" = no ]
}

only='' chosen=() all=("$@")
while [ $# -gt 0 ]; do
    case $1 in
    --help) usage && exit 0 ;;
    --test) only=${2:?test} && shift ;;
    *)
        is_one_of "$1" "${architectures[@]}" || usage_error "the architecture is one of ${architectures[*]}, not $1"
        chosen+=("$1")
        ;;
    esac
    shift
done
[ "${#chosen[@]}" -gt 0 ] || chosen=(i386 arm64 armhf)

need_panel
if [ "$(id -u)" -ne 0 ]; then
    exec sudo -- tests/long/architectures.sh "${all[@]}"
fi
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${arm_packages[@]}" mmdebstrap arch-test dpkg-dev \
    python3-seccomp
if [ "${accepts_arm:-no}" = no ]; then
    accepts_arm=yes exec scripts/with-arm tests/long/architectures/without-pidfd tests/long/architectures.sh "${all[@]}"
fi
need_space 10000
release=$(os_release VERSION_CODENAME)
readonly place=/build/tests/talmero-bios shared=$PWD/build-architectures/shared
build_preset release talmero-mkpackage panel-stick
mkdir -p "$shared"
[ -n "$only" ] || make_reference
failed=no
for architecture in "${chosen[@]}"; do
    try_architecture || failed=yes
done
[ "$failed" = no ]
