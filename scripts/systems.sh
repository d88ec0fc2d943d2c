# The releases of Debian and the architectures that packages are built for. Sourced by scripts.
# shellcheck shell=bash disable=SC2034 # whoever sources this uses them
releases=(bookworm trixie)
architectures=(amd64 i386 arm64 armhf)

# The number of a release of Debian.
release_number() {
    case $1 in
    bookworm) echo 12 ;;
    trixie) echo 13 ;;
    esac
}
