#!/usr/bin/env bash
# Runs test.sh, or each of the other scripts, on the other releases of Debian.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

readonly oldest_root=30 # days

usage() {
    cat <<TEXT
Usage: tests/long/releases.sh [OPTION]... [RELEASE]...

Installs each supported release of Debian other than this system's, or the given ones
of ${releases[*]}, in build-releases/. Copies the sources there and runs ./test.sh as
a user with sudo, who has to install everything else first. The next run goes on with what is
there, unless it is more than $oldest_root days old. Prints one line per release. The first run
takes about half an hour. Needs root or sudo, and apt's mirror.

  --quick    Runs ./test.sh --quick.
  --scripts  Runs ./run.sh, ./package.sh and ./image.sh instead, each on a new Debian. The
             screenshot of the first is build-releases/RELEASE-panel.png.
  --fresh    Starts with a new Debian.
  --help     Shows this text.
TEXT
}

is_new() { # FILE
    [ -n "$(find "$1" -mtime "-$oldest_root" 2>/dev/null)" ]
}

# What a new computer has, with git and a user who may use sudo.
make_root() {
    echo "Installing Debian ${release_number[$release]}"
    rm -rf "$folder"
    mkdir -p "$folder"
    # shellcheck disable=SC2016 # mmdebstrap's shell expands $1
    mmdebstrap --mode=root --variant=minbase --include=git,sudo \
        --customize-hook='chroot "$1" useradd --create-home --shell /bin/bash developer' \
        --customize-hook='echo "developer ALL=(ALL) NOPASSWD: ALL" >"$1/etc/sudoers.d/developer"' \
        "$release" "$root" http://deb.debian.org/debian >"$log" 2>&1 ||
        die "Debian could not be installed, see $log: $(grep -m 1 '^E: ' "$log" || tail -n 1 "$log")"
    echo "127.0.0.1 localhost $(hostname)" >"$root/etc/hosts" # sudo asks for this machine's name
    touch "$folder/made"
}

# Replaces the sources and keeps what the last run built.
put_sources() {
    mkdir -p "$checkout"
    find "$checkout" -mindepth 1 -maxdepth 1 ! -name 'build*' ! -name .git -exec rm -rf {} +
    copy_sources "$checkout"
    chown -R --reference="$root/home/developer" "$checkout"
}

# as_developer COMMAND...: in the folder with the sources
as_developer() {
    # shellcheck disable=SC2016 # the inner shell expands it
    scripts/in-root "$root" runuser -u developer -- env HOME=/home/developer bash -c '
        cd ~/talmero-bios && git init --quiet && exec "$@"' bash "$@" 2>&1 </dev/null | tee "$log"
}

run_tests() {
    { [ "$anew" = no ] && is_new "$folder/made"; } || make_root
    put_sources
    as_developer ./test.sh "${options[@]}"
}

# A new Debian for each, because one script installs what the next one may forget.
run_script() { # COMMAND...
    local start=$SECONDS
    make_root
    put_sources
    as_developer "$@" || return 1
    printf 'Debian %s: %s passed after %s s\n' "${release_number[$release]}" "$1" "$((SECONDS - start))"
}

run_scripts() {
    run_script ./run.sh --screenshot panel.png &&
        cp "$checkout/panel.png" "build-releases/$release-panel.png" &&
        run_script ./package.sh &&
        run_script ./image.sh
}

# try_release RELEASE: prints one line at the end
try_release() {
    local release=$1 result=passed
    local folder=$PWD/build-releases/$release
    [ "$what" = run_tests ] || folder+=-scripts
    local root=$folder/root log=$folder/log
    local checkout=$root/home/developer/talmero-bios
    SECONDS=0
    "$what" || result=failed
    echo "Debian ${release_number[$release]}: $result after $SECONDS s"
    [ "$result" = passed ]
}

anew=no what=run_tests options=() chosen=()
for argument in "$@"; do
    case $argument in
    --quick) options=(--quick) ;;
    --scripts) what=run_scripts ;;
    --fresh) anew=yes ;;
    --help) usage && exit 0 ;;
    *)
        is_one_of "$argument" "${releases[@]}" || { usage >&2 && exit 2; }
        chosen+=("$argument")
        ;;
    esac
done

need_panel
if [ "$(id -u)" -ne 0 ]; then
    exec sudo -- tests/long/releases.sh "$@"
fi
install_packages mmdebstrap git
need_space 6000
if [ "${#chosen[@]}" -eq 0 ]; then
    mapfile -t chosen < <(printf '%s\n' "${releases[@]}" | grep -vxF "$(os_release VERSION_CODENAME)")
fi
failed=no
for name in "${chosen[@]}"; do
    try_release "$name" || failed=yes
done
[ "$failed" = no ]
