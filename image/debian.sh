# Installs a Debian with the project's packages. Sourced by build and by bench/boot-images.
# shellcheck shell=bash disable=SC2154 # they set release, architecture, packages, root, work and log

# The project's own packages are an apt repository for the time of the build, so that apt
# resolves what they depend on.
make_repository() {
    mkdir -p "$work/repository"
    cp "$packages"/talmero-*.deb "$work/repository"
    rm -f "$work"/repository/*-dbgsym_*
    (cd "$work/repository" && dpkg-scanpackages --multiversion . >Packages) 2>>"$log" ||
        die "$packages has no usable packages, see $log"
}

# The names of the packages in the repository.
own_packages() {
    sed -n 's/^Package: //p' "$work/repository/Packages"
}

# make_debian "PACKAGE..." [MMDEBSTRAP-OPTION...]: a Debian in the folder $root
make_debian() {
    local included own options=()
    mapfile -t own < <(own_packages)
    included="$1 ${own[*]}"
    shift
    unshare --mount true 2>/dev/null || options+=(--skip=chroot/mount) # an unprivileged container
    mmdebstrap --mode=root --variant=minbase "${options[@]}" --architectures="$architecture" \
        --include="${included// /,}" "$@" \
        --aptopt='Apt::Install-Recommends "false"' --aptopt='APT::Sandbox::User "root"' \
        "$release" "$root" - >>"$log" 2>&1 <<SOURCES || die "Debian could not be installed, see $log: $(grep -m 1 '^E: ' "$log" || tail -n 1 "$log")"
deb http://deb.debian.org/debian $release main
deb http://deb.debian.org/debian $release-updates main
deb http://security.debian.org/debian-security $release-security main
deb [trusted=yes] copy:$work/repository ./
SOURCES
    sed -i '/copy:/d' "$root/etc/apt/sources.list"
}
