#!/usr/bin/env bash
# Runs the tests that take too long for test.sh, one after the other.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

mapfile -t known < <(find tests/long -maxdepth 1 -name '*.sh' -printf '%f\n' | sed 's/\.sh$//' | sort)

usage() {
    cat <<TEXT
Usage: tests/long.sh [PART...]

Runs all long tests, or only the given ones. Continues after a failure.
Exit status: 0 if all passed, 1 if any failed, 2 for wrong usage.
docs/reliability.md says what they guarantee.

Parts: ${known[*]}
Each is a script in tests/long with its own options; see its --help.
TEXT
}

for argument in "$@"; do
    case $argument in
    --help) usage && exit 0 ;;
    *) is_one_of "$argument" "${known[@]}" || { usage >&2 && exit 2; } ;;
    esac
done

[ $# -gt 0 ] || set -- "${known[@]}"
summary=()
failed=0
for part in "$@"; do
    printf '=== %s\n' "$part"
    SECONDS=0
    status=0
    "tests/long/$part.sh" || status=$?
    if [ "$status" -eq 0 ]; then
        result=passed
    else
        result="failed with status $status"
        failed=1
    fi
    summary+=("$part: $result after $SECONDS s")
done

echo "=== Summary"
printf '%s\n' "${summary[@]}"
exit "$failed"
