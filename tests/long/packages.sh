#!/usr/bin/env bash
# Tests the Debian packages: builds them twice, installs them on a clean Debian and boots it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/long/packages.sh [OPTION]

Builds the packages twice and checks them with lintian. Creates a minimal Debian of
this release with debootstrap, installs the packages with apt, without recommended
ones, and boots it in the simulated panel. Tests, by touch: countdown, runtime,
settings, a package from a stick, a DHCP lease and a calibration. Also tests that the
session comes back whenever it ends. Takes about six minutes. Needs root or sudo, and
apt's mirror.

  --keep-root   Reuses the Debian of the last run, with the packages installed then.
  --help        Shows this text.
TEXT
}

keep_root=no
for argument in "$@"; do
    case $argument in
    --keep-root) keep_root=yes ;;
    --help) usage && exit 0 ;;
    *) usage >&2 && exit 2 ;;
    esac
done

need_root
if [ "$(id -u)" -ne 0 ]; then
    exec sudo -- "tests/long/packages.sh" "$@"
fi
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${package_packages[@]}" \
    "${clean_root_packages[@]}"
release=$(os_release VERSION_CODENAME)
work=$PWD/build-packages
root=$work/root
mkdir -p "$work/debs/partial" "$work/pictures"

# The mirror that this machine uses.
mirror() {
    # shellcheck disable=SC2016 # apt fills it in
    apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' |
        sed -n "s/ $release\$//p" | head -n 1
}

# apart COMMAND...: runs it with its own mounts and processes, which end with it
apart() {
    unshare --mount --pid --fork --kill-child "$@"
}

make_root() {
    echo "Creating a clean Debian"
    rm -rf "$root"
    debootstrap --variant=minbase "$release" "$root" "$(mirror)" >"$work/debootstrap.log" ||
        die "debootstrap failed, see $work/debootstrap.log"
    cp dist/talmero-bios_*.deb dist/talmero-bios-tools_*.deb dist/talmero-bios-compat_*.deb \
        dist/talmero-bios-guard_*.deb \
        "$root/var/tmp"
    echo "Installing the packages in it"
    # shellcheck disable=SC2016 # the inner shell expands it
    apart bash -c '
        mount -t proc proc "$0/proc" && mount --bind "$1" "$0/var/cache/apt/archives" &&
            exec chroot "$0" env DEBIAN_FRONTEND=noninteractive \
                sh -c "apt-get install -y --no-install-recommends /var/tmp/*.deb"' \
        "$root" "$work/debs" >"$work/install.log" 2>&1 || die "apt failed, see $work/install.log"
    echo "$(grep '^Setting up' "$work/install.log" | grep -vc talmero-) other packages were installed with them"
}

# Looks up every tool that the man page names, on the session's PATH.
check_tools() {
    local tools=() path tool missing=()
    read -r -a tools < <(sed -n '/^Tools: /,/\.$/p' src/talmero-bios.1 | sed 's/Tools: //; s/with//' | tr -d '.' | tr ',\n' '  ' && echo)
    path=$(sed -n 's/^PATH=//p' "$root/usr/share/doc/talmero-bios/examples/xinitrc")
    for tool in "${tools[@]}"; do
        chroot "$root" env PATH="$path" sh -c "command -v $tool" >/dev/null || missing+=("$tool")
    done
    [ "${#missing[@]}" -eq 0 ] || die "the session does not find: ${missing[*]}"
    echo "The session finds ${tools[*]}"
}

check_units() {
    local unit
    for unit in talmero-session.service talmero-stick@sda1.service \
        talmero-guard.service talmero-guard-restore.service talmero-guard-dpkg.service; do
        chroot "$root" systemd-analyze verify --man=no "$unit" || die "systemd refuses $unit"
    done
    echo "systemd accepts the units"
}

# in_cgroups SCRIPT: runs it with all cgroups mounted on /mnt in a private namespace
in_cgroups() {
    # shellcheck disable=SC2016 # the inner shell expands it
    unshare --mount bash -c 'mount -t cgroup2 cgroup /mnt && eval "$1"' in_cgroups "$1"
}

# systemd needs a cgroup of its own. It is removed at the end.
boot() {
    group=/mnt$(sed -n 's/^0:://p' /proc/self/cgroup)/talmero-packages-$$
    export group work root
    # shellcheck disable=SC2016
    trap "in_cgroups 'find \"\$group\" -depth -type d -exec rmdir {} +'" EXIT
    # shellcheck disable=SC2016
    in_cgroups 'mkdir "$group" && echo $$ >"$group/cgroup.procs" && umount /mnt &&
        exec simulator/panel --no-files --share "$work/pictures" -- \
            tests/long/packages/boot-installed.sh "$root" \
            tests/long/packages/session.sh build/bin/sessiontouches "$work/pictures"'
}

if [ "$keep_root" = no ]; then
    ./package.sh --check
    lintian --fail-on error,warning dist/*.changes || die "lintian found errors or warnings"
    echo "lintian found no errors and no warnings"
    make_root
fi
check_tools
check_units
build_preset release standin-runtime panel-stick sessiontouches
echo "Booting it"
boot
