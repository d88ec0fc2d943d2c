#!/usr/bin/env bash
# Runs every page and dialog under valgrind. It finds reads of uninitialised memory, which the
# sanitizers of test.sh do not, and lost memory. The program's tools do not run under valgrind.
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
# JIT-compiled regular expressions read a whole vector past the end of the text. Their code has no
# symbols, so these reads cannot be suppressed by name.
simulator/panel --build build-debug --share "$report" --display xvfb -- env QT_ENABLE_REGEXP_JIT=0 \
    valgrind --tool=memcheck --suppressions=tests/valgrind.supp --log-file="$report/log" \
    --child-silent-after-fork=yes --num-callers=40 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite --error-exitcode=99 \
    build-debug/tests/tst_pagecrawl -nocrashhandler -o "$report/tests,txt" >/dev/null 2>&1 || status=$?
grep -a '^Totals' "$report/tests"
grep -aE 'definitely lost:|ERROR SUMMARY' "$report/log"
[ "$status" -eq 0 ] || die "errors or failed tests; see $report/log"
