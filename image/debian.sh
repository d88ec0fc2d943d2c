# Installs a Debian with the project's packages. Sourced by build and by bench/boot-images.
# shellcheck shell=bash disable=SC2154 # they set root, work and log

# The project's own packages are an apt repository for the time of the build, so that apt
# resolves what they depend on.
make_repository() {
    mkdir -p "$work/repository"
    cp dist/talmero-*.deb "$work/repository"
    rm -f "$work"/repository/*-dbgsym_*
    (cd "$work/repository" && dpkg-scanpackages --multiversion . >Packages) 2>>"$log" ||
        die "dist/ has no usable packages, see $log"
}

# The names of the packages in the repository.
own_packages() {
    sed -n 's/^Package: //p' "$work/repository/Packages"
}

# make_debian "PACKAGE..." [MMDEBSTRAP-OPTION...]: a Debian in the folder $root, of this system's
# release, because the packages in dist/ were built on it
make_debian() {
    local packages own release options=()
    release=$(os_release VERSION_CODENAME)
    mapfile -t own < <(own_packages)
    packages="$1 ${own[*]}"
    shift
    unshare --mount true 2>/dev/null || options+=(--skip=chroot/mount) # an unprivileged container
    mmdebstrap --mode=root --variant=minbase "${options[@]}" --include="${packages// /,}" "$@" \
        --aptopt='Apt::Install-Recommends "false"' --aptopt='APT::Sandbox::User "root"' \
        "$release" "$root" - >>"$log" 2>&1 <<SOURCES || die "Debian could not be installed, see $log: $(grep -m 1 '^E: ' "$log" || tail -n 1 "$log")"
deb http://deb.debian.org/debian $release main
deb http://deb.debian.org/debian $release-updates main
deb http://security.debian.org/debian-security $release-security main
deb [trusted=yes] copy:$work/repository ./
SOURCES
    sed -i '/copy:/d' "$root/etc/apt/sources.list"
}
