# Installing packages and building, shared by the scripts.
# shellcheck shell=bash

project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export project_root
# shellcheck source=scripts/systems.sh
. "$project_root/scripts/systems.sh"

# Debian packages by purpose. The names are those of all releases in systems.sh; clang, llvm and
# libclang-rt-dev stand for the release's own version.
# shellcheck disable=SC2034
build_packages=(g++ ninja-build cmake mold qt6-base-dev qt6-base-private-dev qt6-serialport-dev
    libgl-dev libarchive-dev zlib1g-dev libfuse3-dev)
# shellcheck disable=SC2034
package_packages=(build-essential dpkg-dev debhelper git)
# shellcheck disable=SC2034
clean_root_packages=(debootstrap lintian)
# shellcheck disable=SC2034
test_packages=(mandoc systemd reprepro gnupg)
# shellcheck disable=SC2034
check_packages=(clang-format clang-tidy cppcheck shellcheck ansible-core ansible-lint)
# shellcheck disable=SC2034
coverage_packages=(gcovr)
# shellcheck disable=SC2034
fuzz_packages=(clang libclang-rt-dev llvm python3)
# shellcheck disable=SC2034
bench_packages=(libxcb1-dev libxcb-damage0-dev)
# The peers of the benchmarks.
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

# What the virtual machine of run.sh needs.
# shellcheck disable=SC2034
machine_packages=(qemu-system-x86 qemu-system-gui ovmf mtools novnc websockify)
# What the tests on that machine need besides.
# shellcheck disable=SC2034
machine_test_packages=(qemu-system-x86 qemu-utils ovmf mtools fdisk e2fsprogs exfatprogs python3 busybox
    reprepro gnupg openssh-client ansible-core)
# What image.sh needs, and what the image consists of besides our own packages.
# shellcheck disable=SC2034
image_packages=(mmdebstrap arch-test dpkg-dev e2fsprogs mtools fdisk grub-common git)
# The boot loaders. That of ARM can only be downloaded, because no other processor has the package.
# shellcheck disable=SC2034
pc_packages=(grub-pc-bin grub-efi-amd64-bin grub-efi-ia32-bin)
# shellcheck disable=SC2034
arm_packages=(qemu-user-static)
# shellcheck disable=SC2034
system_packages=(initramfs-tools lz4 systemd-sysv udev xserver-xorg-core
    xserver-xorg-input-libinput xserver-xorg-video-fbdev fontconfig fonts-dejavu-core fonts-open-sans)

# What ssh needs on a panel besides, and what Ansible needs there.
# shellcheck disable=SC2034
ssh_packages=(openssh-server nftables python3 python3-apt)
# What the test of many panels needs, and what it unpacks into each panel: installed on this machine,
# a server would start.
# shellcheck disable=SC2034
fleet_packages=(ansible-core openssh-client python3 reprepro gnupg)
# shellcheck disable=SC2034
fleet_panel_packages=(openssh-server openssh-sftp-server libwrap0 python3-apt python-apt-common)

# Prints one line on standard error and exits.
die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Reads the command line of a script that takes only seeds into the array "seeds"; the default is 1
# and 2. The script defines usage().
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

# is_one_of WORD WORD...: whether the first is among the others
is_one_of() {
    local word
    for word in "${@:2}"; do
        [ "$word" != "$1" ] || return 0
    done
    return 1
}

# Runs a command as root, with sudo if necessary.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

has_terminal() {
    { : </dev/tty; } 2>/dev/null
}

# Exits if as_root() would fail. Asks for the password now rather than in the middle of the work.
need_root() {
    [ "$(id -u)" -ne 0 ] || return 0
    command -v sudo >/dev/null || die "this needs root: run it as root or install sudo"
    ! sudo --non-interactive true 2>/dev/null || return 0
    has_terminal || die "sudo asks for a password: run this in a terminal, or as root"
    sudo true || die "this needs root: sudo refused"
}

# Exits if the simulated panel cannot be created, so that nobody waits for the build in vain.
need_panel() {
    need_root
    as_root unshare --mount true 2>/dev/null ||
        die "root may not mount here: the simulated panel needs a machine or a privileged container"
}

# need_space MEGABYTES: exits if less is free on the disk with the checkout.
need_space() {
    local free
    free=$(df --output=avail --block-size=1M "$project_root" | tail -n 1)
    [ "$free" -ge "$1" ] ||
        die "the build needs $1 MB in $project_root, but only $((free)) MB are free"
}

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# os_release KEY: what this system says of itself
os_release() {
    sed -n "s/^$1=\"\\?\\([^\"]*\\)\"\\?$/\\1/p" /etc/os-release 2>/dev/null || true
}

# Exits if this is no release of Debian that the lists of packages are for.
need_debian() {
    local name
    if [ "$(os_release ID)" = debian ] && is_one_of "$(os_release VERSION_CODENAME)" "${releases[@]}"; then
        return
    fi
    name=$(os_release PRETTY_NAME)
    die "this is ${name:-an unknown system}, but Debian ${release_number[bookworm]} or ${release_number[trixie]} is needed"
}

# explain_apt OUTPUT_OF_UPDATE OUTPUT_OF_INSTALL: one line that says why apt-get failed.
explain_apt() {
    local reason
    reason=$(grep -m 1 'No space left on device' <<<"$2" || grep -m 1 '^E: ' <<<"$2" || tail -n 1 <<<"$2")
    case $reason in
    "E: Unable to locate"* | "E: Package "*)
        # apt knows no packages without its lists, so the cause is whatever kept them from loading.
        reason=$(grep -m 1 'Failed to fetch' <<<"$1" || echo "$reason")
        ;;
    esac
    reason=${reason#[EW]:}
    echo "${reason# }"
}

# Installs the given Debian packages that are missing. Silent if none is.
install_packages() {
    local package updated installed missing=()
    need_debian
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    need_root
    echo "Installing, which can take some minutes: ${missing[*]}"
    # A broken source matters only if a package cannot be installed.
    updated=$(as_root env LC_ALL=C.UTF-8 apt-get update -qq 2>&1) || true
    # A fresh system may be updating itself and hold the lock.
    installed=$(as_root env LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
        --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}" 2>&1) ||
        die "the packages could not be installed: $(explain_apt "$updated" "$installed")"
}

# build_preset PRESET [TARGET...]: configures and builds a preset of CMakePresets.json; all targets
# by default. Silent if everything is up to date.
build_preset() {
    local preset=$1 folder=build-$1 fresh=()
    shift
    [ "$preset" != release ] || folder=build
    cd "$project_root" || die "cannot enter $project_root"
    { [ -w . ] && { [ ! -e build ] || [ -w build ]; }; } ||
        die "cannot write in $project_root: it belongs to another user"
    case $project_root in
    *[\#\;\"\\\<\>\|\?\[\]]*)
        die "CMake cannot build below $project_root: rename the folder, it has one of # ; \" \\ < > | ? [ ]"
        ;;
    esac
    # CMake refuses a folder that was configured for make, and forgets all options when the compiler
    # changes: the fuzz targets were once built with clang++-14.
    ! grep -qsE '^CMAKE_GENERATOR:.*Makefiles|^CMAKE_CXX_COMPILER:.*clang\+\+-14$' "$folder/CMakeCache.txt" ||
        fresh=(--fresh)
    cmake "${fresh[@]}" --preset "$preset" >/dev/null || die "cmake could not configure the preset $preset"
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1+--target "$@"} |
        sed --unbuffered '/^ninja: no work to do/d'
    [ "${PIPESTATUS[0]}" -eq 0 ] || die "the build of the preset $preset failed"
}

# list_sources [PATHSPEC...]: the files of the checkout, with uncommitted changes and without build
# results, each followed by a zero byte.
list_sources() {
    # git refuses a checkout of another user otherwise
    git -c safe.directory='*' ls-files -z --cached --others --exclude-standard "$@" 2>/dev/null |
        while IFS= read -r -d '' file; do
            [ ! -e "$file" ] || printf '%s\0' "$file"
        done
}

# copy_sources FOLDER: makes a folder with a copy of the sources; the files keep their times, so that
# a build folder in it stays useful
copy_sources() {
    mkdir -p "$1"
    list_sources . | xargs -0 --no-run-if-empty cp --parents -P --preserve=mode,timestamps -t "$1" || true
    [ -e "$1/debian/control" ] ||
        die "the files could not be copied to $1: this must be a git checkout with enough free space"
}

# packages_are_new FOLDER: whether it has packages newer than every file that they are made of
packages_are_new() {
    local package newer
    package=$(find "$1" -maxdepth 1 -name 'talmero-bios_*.deb' -print -quit 2>/dev/null)
    [ -n "$package" ] || return 1
    # shellcheck disable=SC2185 # the paths come from git
    newer=$(list_sources ':!image.sh' ':!image' ':!fleet' ':!tests' ':!bench' ':!simulator' ':!*.sh' |
        find -files0-from - -prune -newer "$package" -print -quit)
    [ -z "$newer" ]
}

# The time stamp of everything that is packed: the last commit's, or the changelog's without git.
source_date() {
    git -c safe.directory='*' log -1 --format=%ct 2>/dev/null || dpkg-parsechangelog --show-field Timestamp
}
