# Shared by run.sh, test.sh and bench/run.sh: what they install and how they build.
# shellcheck shell=bash

project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export project_root

# Debian package names, by what needs them. Read by run.sh and test.sh.
# shellcheck disable=SC2034
build_packages=(g++ make cmake qt6-base-dev qt6-base-private-dev qt6-serialport-dev libgl-dev
    libarchive-dev zlib1g-dev libfuse3-dev)
# shellcheck disable=SC2034
package_packages=(dpkg-dev debhelper git)
# shellcheck disable=SC2034
clean_root_packages=(debootstrap lintian)
# shellcheck disable=SC2034
test_packages=(mandoc)
# shellcheck disable=SC2034
check_packages=(clang-format clang-tidy cppcheck shellcheck)
# shellcheck disable=SC2034
coverage_packages=(gcovr)
# shellcheck disable=SC2034
fuzz_packages=(clang-14 libclang-rt-14-dev llvm-14 python3)
# shellcheck disable=SC2034
bench_packages=(libxcb1-dev libxcb-damage0-dev)
# What the benchmarks measure against.
# shellcheck disable=SC2034
peer_packages=(binutils dbus lxqt-config xfce4-settings)
# shellcheck disable=SC2034
valgrind_packages=(valgrind)
# shellcheck disable=SC2034
picture_packages=(pngquant)
# shellcheck disable=SC2034
panel_packages=(util-linux libarchive-tools iproute2 busybox python3 procps isc-dhcp-client dnsmasq-base
    xserver-xorg-core xserver-xorg-video-dummy xserver-xephyr xvfb x11-utils
    x11-xserver-utils xdotool xinput xinput-calibrator imagemagick
    openbox x11vnc novnc websockify fonts-dejavu-core fonts-open-sans)

# One line on stderr, then the end.
die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Reads the command line of a script that takes nothing but seeds into the array seeds: 1 and 2 if
# it is empty. The script's own usage() tells the rest.
read_seeds() {
    local argument
    seeds=()
    for argument in "$@"; do
        case $argument in
        --help) usage && exit 0 ;;
        *[!0-9]* | "") usage >&2 && exit 2 ;;
        *) seeds+=("$argument") ;;
        esac
    done
    [ "${#seeds[@]}" -gt 0 ] || seeds=(1 2)
}

# Runs a command as root: directly, or through sudo where the user is not root.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "this needs root: run it as root or install sudo"
    fi
}

# Ends with one line if as_root() would fail. Asks for the password now, not in the middle.
need_root() {
    as_root true || die "this needs root: sudo did not give it"
}

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Installs what is missing of the given Debian packages. Says and does nothing if all are there.
install_packages() {
    local package said missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    echo "Installing: ${missing[*]}"
    need_root
    # What is wrong with a source matters only if a package does not come. One line says it then.
    as_root apt-get update -qq >/dev/null 2>&1 || true
    said=$(as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" 2>&1 >/dev/null) ||
        die "could not install ${missing[*]}; is there a network? $(grep -m 1 '^E:' <<<"$said")"
}

# Configures and builds a preset of CMakePresets.json: build_preset PRESET [TARGET...], all targets
# if none is given. Says nothing if all is up to date.
build_preset() {
    local preset=$1
    shift
    cd "$project_root" || die "cannot enter $project_root"
    { [ -w . ] && { [ ! -e build ] || [ -w build ]; }; } ||
        die "cannot write in $project_root: it belongs to another user"
    cmake --preset "$preset" >/dev/null || die "cmake could not configure the preset $preset"
    # CMake names each target whose generated code it looks at, even if nothing is to be done.
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1+--target "$@"} |
        sed --unbuffered '/Automatic .* for target/d'
    [ "${PIPESTATUS[0]}" -eq 0 ] || die "the build of the preset $preset failed"
}
