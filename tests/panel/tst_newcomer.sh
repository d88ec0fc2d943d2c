#!/usr/bin/env bash
# If a machine lacks something, run.sh and test.sh print one line that names it. Runs as root in the
# simulated panel, with stand-ins for apt, cmake, ctest and sudo.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
[ -e /run/talmero-panel ] || exit 1
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"

readonly user=65534
readonly as_user=(setpriv --reuid "$user" --clear-groups)
readonly checkout=$work/checkout
readonly stand_ins=$work/stand-ins

stand_in() { # NAME SHELL_TEXT
    printf '#!/bin/sh\n%s\n' "$2" >"$stand_ins/$1" && chmod 755 "$stand_ins/$1"
}

be_system() { # ID CODENAME NAME
    printf 'ID=%s\nVERSION_CODENAME=%s\nPRETTY_NAME="%s"\n' "$@" >/etc/os-release
}

# A machine that has everything.
prepare() {
    rm -rf "$checkout" "$stand_ins"
    mkdir -p "$checkout/scripts" "$checkout/simulator" "$stand_ins"
    cp "$root/run.sh" "$root/test.sh" "$root/package.sh" "$root/image.sh" "$checkout"
    cp "$root/scripts/common.sh" "$root/scripts/systems.sh" "$checkout/scripts"
    # shellcheck disable=SC2016
    stand_in panel 'echo "panel $*"' && mv "$stand_ins/panel" "$checkout/simulator"
    stand_in dpkg-query 'printf installed'
    stand_in cmake ''
    # shellcheck disable=SC2016
    stand_in ctest 'echo "ctest $*"'
    # shellcheck disable=SC2016
    stand_in sudo '[ "$1" != --non-interactive ] || shift; "$@"'
    stand_in unshare '' # succeeds, although the stand-in for sudo gives no rights
    be_system debian bookworm "Debian GNU/Linux 12 (bookworm)"
    chmod 755 "$work"
    chown -R "$user" "$checkout"
}

# failing_apt UPDATE INSTALL: an apt-get that fails, and the texts that it prints
failing_apt() {
    stand_in dpkg-query 'exit 1'
    stand_in apt-get "case \$1 in update) cat >&2 <<'TEXT'
$1
TEXT
;; *) cat <<'TEXT' && exit 100
$2
TEXT
esac"
}

# one_line STATUS PATTERN COMMAND...: without a terminal, it prints one line only, which matches
one_line() {
    local expected=$1 pattern=$2 actual
    shift 2
    PATH=$stand_ins:$PATH timeout 20 setsid --wait "$@" </dev/null 2>&1 | sed '/^Installing/d' >"$work/said"
    actual=${PIPESTATUS[0]}
    cat "$work/said"
    [ "$actual" -eq "$expected" ] && [ "$(wc -l <"$work/said")" -eq 1 ] && grep -qxE -- "$pattern" "$work/said"
}

# both PATTERN COMMAND...: run.sh and test.sh print the same line after their names
both() {
    local pattern=$1 script
    shift
    for script in run.sh test.sh; do
        one_line 1 "$script: $pattern" "$@" "$checkout/$script" || return
    done
}

everything_is_there() {
    one_line 0 'panel --size 800x600 --trace --display web -- .*/build/bin/talmero-bios' "${as_user[@]}" "$checkout/run.sh" &&
        one_line 0 'ctest --preset release --parallel [0-9]+ --label-exclude machine --output-log build/tests.log' "${as_user[@]}" "$checkout/test.sh" --quick
}

# The folder of a build, and what runs beside the tests, are stand-ins.
whole_test_uses_the_machine() {
    mkdir -p "$checkout/build" "$checkout/tests/robustness/fuzz"
    printf '#!/bin/sh\n' | tee "$checkout/scripts/check-code.sh" >"$checkout/tests/robustness/fuzz/run.sh"
    chmod 755 "$checkout/scripts/check-code.sh" "$checkout/tests/robustness/fuzz/run.sh"
    echo '100% tests passed' >"$checkout/build/tests.log"
    chown -R "$user" "$checkout"
    PATH=$stand_ins:$PATH "${as_user[@]}" "$checkout/test.sh" </dev/null >"$work/whole" 2>&1 &&
        PATH=$stand_ins:$PATH "${as_user[@]}" "$checkout/test.sh" --no-machine </dev/null >"$work/part" 2>&1 &&
        diff "$work/part" "$work/whole" | tee "$work/difference" | grep '^>' &&
        [ "$(sed -n 's/^> //p' "$work/difference")" = 'ctest --preset release --label-regex machine' ] &&
        [ "$(wc -l <"$work/difference")" -eq 2 ]
}

in_a_folder_with_blanks() {
    mv "$checkout" "$work/my own checkout" && mkdir "$checkout" && cd / &&
        one_line 0 'panel .* -- .*/my own checkout/build/bin/talmero-bios' "${as_user[@]}" "$work/my own checkout/run.sh"
}

started_by_sh() {
    one_line 2 'run.sh: unknown option --wrong; see ./run.sh --help' sh "$checkout/run.sh" --wrong &&
        one_line 2 'test.sh: unknown option --wrong; see ./test.sh --help' sh "$checkout/test.sh" --wrong
}

wrong_package_options() {
    one_line 2 'package.sh: unknown option --fast; see ./package.sh --help' "$checkout/package.sh" --fast &&
        one_line 2 'package.sh: --arch needs a value; see ./package.sh --help' "$checkout/package.sh" --arch &&
        one_line 2 'package.sh: the release is one of bookworm trixie, not sid; .*' "$checkout/package.sh" --release sid &&
        one_line 2 'package.sh: the architecture is one of amd64 i386 arm64 armhf, not riscv64; .*' \
            "$checkout/package.sh" --check --release trixie --arch riscv64 &&
        one_line 2 'package.sh: a repository has all releases and architectures: leave out --release and --arch; .*' \
            "$checkout/package.sh" --repository "$work/repository" --arch amd64 &&
        one_line 2 'package.sh: --check compares two builds and makes no repository; .*' \
            "$checkout/package.sh" --repository "$work/repository" --check &&
        one_line 2 'package.sh: --key is for --repository; .*' "$checkout/package.sh" --key maker@example.com
}

no_sudo() {
    mv "$stand_ins/sudo" "$work/no-sudo"
    find /usr/bin/sudo /bin/sudo -delete 2>/dev/null
    both 'this needs root: run it as root or install sudo' "${as_user[@]}"
}

sudo_without_terminal() {
    stand_in sudo 'echo "sudo: a terminal is required" >&2; echo "sudo: a password is required" >&2; exit 1'
    both 'sudo asks for a password: run this in a terminal, or as root' "${as_user[@]}"
}

sudo_that_refuses() {
    stand_in sudo 'exit 1'
    one_line 1 $'run.sh: this needs root: sudo refused\r?' \
        script --quiet --return --command "${as_user[*]} '$checkout/run.sh'" /dev/null
}

container_without_rights() {
    rm "$stand_ins/unshare"
    both 'root may not mount here: .*' setpriv --bounding-set -sys_admin
}

disk_is_small() {
    mkdir "$work/small" && mount -t tmpfs -o size=5m small "$work/small" &&
        cp -a "$checkout/." "$work/small" &&
        one_line 1 "run.sh: the build needs 100 MB in $work/small, but only [45] MB are free" \
            "$work/small/run.sh" &&
        umount "$work/small"
}

folder_that_cmake_refuses() {
    cp -a "$checkout" "$checkout #1" &&
        one_line 1 "run.sh: CMake cannot build below $checkout #1: .*" "$checkout #1/run.sh"
}

folder_with_special_characters() {
    cp -a "$checkout" "$checkout's (\$1)" && cd / &&
        one_line 0 'panel .* -- .*/build/bin/talmero-bios' "${as_user[@]}" "$checkout's (\$1)/run.sh"
}

readonly no_name="Temporary failure resolving 'deb.debian.org'"

no_network() {
    failing_apt "W: Failed to fetch http://deb/InRelease  $no_name" "E: Failed to fetch http://deb/a.deb  $no_name
E: Unable to fetch some archives, maybe run apt-get update or try with --fix-missing?"
    both "the packages could not be installed: Failed to fetch http://deb/a.deb  $no_name"
}

no_network_and_no_lists() {
    failing_apt "W: Failed to fetch http://deb/InRelease  $no_name
W: Some index files failed to download." "E: Unable to locate package g++
E: Unable to locate package make"
    both "the packages could not be installed: Failed to fetch http://deb/InRelease  $no_name"
}

debian_13() {
    be_system debian trixie "Debian GNU/Linux 13 (trixie)"
    everything_is_there
}

# is_refused NAME: every script says that it cannot work on the system with this name
is_refused() {
    local script
    for script in run.sh test.sh package.sh image.sh; do
        one_line 1 "$script: this is $1, but Debian 12 or 13 is needed" "$checkout/$script" || return
    done
}

other_systems() {
    be_system ubuntu noble "Ubuntu 24.04 LTS" && is_refused "Ubuntu 24.04 LTS" &&
        be_system debian bullseye "Debian 11" && is_refused "Debian 11" &&
        be_system debian "" Debian && is_refused Debian &&
        rm /etc/os-release && is_refused "an unknown system"
}

disk_full_while_unpacking() {
    failing_apt '' 'Unpacking g++ ...
dpkg: error processing archive g++.deb (--unpack):
 failed to write (No space left on device)
Errors were encountered while processing:
E: Sub-process /usr/bin/dpkg returned an error code (1)'
    both 'the packages could not be installed: failed to write \(No space left on device\)'
}

# on_a_new_machine NAME FUNCTION
on_a_new_machine() {
    prepare
    check "$@"
}

on_a_new_machine "builds and runs on a complete machine" everything_is_there
on_a_new_machine "boots the panel's disk in a whole test.sh" whole_test_uses_the_machine
on_a_new_machine "runs in a folder with blanks, from another folder" in_a_folder_with_blanks
on_a_new_machine "can also be started by sh" started_by_sh
on_a_new_machine "refuses packages for an unknown system" wrong_package_options
on_a_new_machine "names a missing sudo" no_sudo
on_a_new_machine "says that sudo has no terminal" sudo_without_terminal
on_a_new_machine "says that sudo refuses" sudo_that_refuses
on_a_new_machine "names a container without rights" container_without_rights
on_a_new_machine "names a disk that is too small" disk_is_small
on_a_new_machine "names a folder that CMake refuses" folder_that_cmake_refuses
on_a_new_machine "runs in a folder with special characters" folder_with_special_characters
on_a_new_machine "names the missing network" no_network
on_a_new_machine "names the missing network when apt has no package lists" no_network_and_no_lists
on_a_new_machine "runs on Debian 13" debian_13
on_a_new_machine "names a system that is not supported" other_systems
on_a_new_machine "names a disk that gets full while unpacking" disk_full_while_unpacking

[ "$failures" -eq 0 ]
