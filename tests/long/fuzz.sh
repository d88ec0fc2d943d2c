#!/usr/bin/env bash
# An hour of fuzzing for each target.
exec "$(dirname "${BASH_SOURCE[0]}")/../robustness/fuzz/run.sh" 1
