# The releases of Debian that everything here works on, and the architectures that packages are
# built for. Sourced by common.sh.
# shellcheck shell=bash disable=SC2034 # whoever sources this uses them
releases=(bookworm trixie)
declare -A release_number=([bookworm]=12 [trixie]=13)
architectures=(amd64 i386 arm64 armhf)
image_architectures=(amd64 i386 arm64)

# kernel_of RELEASE ARCHITECTURE: the package with the kernel; nothing if Debian has none
kernel_of() {
    case $1-$2 in
    bookworm-i386) echo linux-image-686-pae ;; # the last release with a kernel for it
    *-i386) ;;
    *) echo "linux-image-$2" ;;
    esac
}

# The architecture of the Debian in which packages for this one are built.
builder_of() {
    case $1 in
    i386) echo i386 ;;
    *) echo amd64 ;;
    esac
}
