#!/usr/bin/env bash
# Every page and dialog under valgrind: reads of what was never written, which no sanitizer of the
# usual run sees, and memory that is lost. The program's tools run as they are.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

case "${1:-}" in
    "") ;;
    --help) echo "Usage: tests/long/valgrind.sh" && exit 0 ;;
    *) echo "Usage: tests/long/valgrind.sh" >&2 && exit 2 ;;
esac
install_packages "${build_packages[@]}" "${panel_packages[@]}" "${valgrind_packages[@]}"
build_preset debug tst_pagecrawl panel-stick panel-ifupdown standin-runtime
report=build-debug/valgrind
rm -rf "$report"
mkdir -p "$report"

status=0
# Compiled regular expressions read a vector's width at once, past the end of their text, and leave
# no name behind by which that could be told from an error.
simulator/panel --build build-debug --share "$report" --display xvfb -- env QT_ENABLE_REGEXP_JIT=0 \
    valgrind --tool=memcheck --suppressions=tests/valgrind.supp --log-file="$report/log" \
    --child-silent-after-fork=yes --num-callers=40 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite --error-exitcode=99 \
    build-debug/bin/tst_pagecrawl -nocrashhandler -o "$report/tests,txt" >/dev/null 2>&1 || status=$?
grep -a '^Totals' "$report/tests"
grep -aE 'definitely lost:|ERROR SUMMARY' "$report/log"
[ "$status" -eq 0 ] || die "errors or failed tests; see $report/log"
