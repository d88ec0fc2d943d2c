# The releases of Debian that everything here works on, and the architectures that packages are
# built for. Sourced by common.sh.
# shellcheck shell=bash disable=SC2034 # whoever sources this uses them
releases=(bookworm trixie)
declare -A release_number=([bookworm]=12 [trixie]=13)
architectures=(amd64 i386 arm64 armhf)
