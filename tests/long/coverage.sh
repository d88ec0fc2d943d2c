#!/usr/bin/env bash
# Measures which lines of the program and of the tools the tests run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

readonly needed=95 # percent of the lines of src/

usage() {
    cat <<TEXT
Usage: tests/long/coverage.sh [OPTION]

Builds for coverage, runs every test, and prints per file which lines of src/ and
tools/ no test runs. Fails if a test fails or less than $needed percent of src/ is run.

  --keep    Counts what the last run has left in build-coverage; runs no test.
  --help    Shows this text.

Programs that are killed do not count.
TEXT
}

keep=no
[ $# -le 1 ] || { usage >&2 && exit 2; }
case "${1:-}" in
    "") ;;
    --keep) keep=yes ;;
    --help) usage && exit 0 ;;
    *) usage >&2 && exit 2 ;;
esac

build=$project_root/build-coverage
counters=$build/coverage # a folder for each test
sum=$build/coverage-sum

# The sum of what all tests have run. gcov wants the counters beside what the compiler wrote about
# the code, of files too that no test runs. What Qt's tools have generated is not ours.
add_up() {
    local test tests
    find "$counters" -mindepth 1 -type d -empty -delete # a test that runs none of our code has none
    tests=("$counters"/*)
    rm -rf "$sum" "$sum.new"
    cp -r "${tests[0]}" "$sum"
    for test in "${tests[@]:1}"; do
        gcov-tool merge -o "$sum.new" "$sum" "$test"
        rm -rf "$sum"
        mv "$sum.new" "$sum"
    done
    (cd "$build" && find src tools -name '*.gcno' -exec cp --parents --link -t "$sum" -- {} +)
    find "$sum" \( -name 'mocs_*' -o -name 'qrc_*' \) -delete
}

count_lines() {
    gcovr --root . --filter src/ --filter tools/ "$@"
}

# Leaves out the files of which all lines are run. A long name has a line for itself.
unfinished() {
    sed -E '/\.(cpp|h)$/ { N; s/\n// }' | grep -v '100%'
}

install_packages "${build_packages[@]}" "${panel_packages[@]}" "${coverage_packages[@]}"
status=0
if [ "$keep" = no ]; then
    build_preset coverage
    find "$build" -name '*.gcda' -delete # of the last run, and of the build
    ctest --preset coverage --parallel "$((2 * $(nproc) + 2))" || status=1
fi
add_up
count_lines --json "$sum/lines.json" "$sum"

echo "tools/, without the files of which all lines are run:"
count_lines --add-tracefile "$sum/lines.json" --exclude src/ | unfinished
echo "src/, likewise:"
count_lines --add-tracefile "$sum/lines.json" --exclude tools/ --fail-under-line "$needed" |
    unfinished || status=1
exit "$status"
