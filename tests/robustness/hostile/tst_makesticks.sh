#!/usr/bin/env bash
# A failure of the hostile tests is found again by its seed.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
# shellcheck source=tests/support/checks.sh
source "$root/tests/support/checks.sh"

make_sticks() { # SEED FOLDER
    "$root/tests/robustness/hostile/make-sticks" "$1" "$work/$2"
}

# The endless file has no contents that could be compared, and the paths of "deep" are too long.
contents() { # FOLDER
    (cd "$work/$1" && find . -type f -size -100M ! -path './trees/deep/*' -exec sha256sum {} + | sort)
}

differs() { # FOLDER FOLDER
    ! cmp <(contents "$1") <(contents "$2")
}

make_sticks 7 first && make_sticks 7 again && make_sticks 8 other || exit 1
check "same seed, same bytes" cmp <(contents first) <(contents again)
check "other seed, other bytes" differs first other
[ "$failures" -eq 0 ]
