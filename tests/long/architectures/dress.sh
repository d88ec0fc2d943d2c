#!/usr/bin/env bash
# Puts the panel's files and stand-ins for its tools into this Debian and runs a command, with a
# screen that nobody sees. enter.sh calls it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../../.."
# read by what is sourced
# shellcheck disable=SC2034
simulator=$PWD/simulator build=$PWD/build display=none files=yes factory=no trace=no

fail() {
    echo "dress.sh: $1" >&2
    exit 1
}

# shellcheck source=simulator/lib/files.sh
. simulator/lib/files.sh
# shellcheck source=simulator/lib/tools.sh
. simulator/lib/tools.sh
install_files
install_tools
mkdir -p /run/panel/network /run/lock
mkdir -p /run/user && mkdir -m 700 /run/user/0
export USER=root LOGNAME=root SHELL=/bin/bash XDG_RUNTIME_DIR=/run/user/0 QT_QPA_PLATFORM=offscreen
export QTEST_FUNCTION_TIMEOUT=3600000 # ms, because ARM is emulated
# bash stays: as the first process, it must wait for those whose parents have ended.
"$@"
