#!/usr/bin/env bash
# Fuzzes each target for an hour.
exec "$(dirname "${BASH_SOURCE[0]}")/../fuzz/run.sh" 1
