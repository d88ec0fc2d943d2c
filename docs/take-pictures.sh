#!/usr/bin/env bash
# Takes the pictures of the documents from the real program on the simulated panel.
# Usage: docs/take-pictures.sh (after a build of the preset release)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What the panel's shell runs: touches and pictures, with time for the program in between.
# shellcheck disable=SC2016 # the panel's shell expands it
steps='
    tap() { simulator/finger send "tap $1 $2" >/dev/null; sleep 0.7; }
    picture() { simulator/panel-screenshot "docs/pictures/$1.png"; }
    build/talmero-bios 2>/dev/null &
    program=$!
    sleep 2.5
    picture countdown
    tap 400 450
    picture main-page
    tap 400 415 # Ethernet
    tap 400 514 # the second address
    picture ethernet
    tap 50 16
    tap 400 522
    picture miscellaneous
    tap 50 16
    tap 650 415
    tap 400 181 # a package for the next runtime version
    picture file-transfer
    tap 750 16
    picture warning
    tap 520 300
    tap 150 415
    tap 400 136 # two rows
    tap 400 226
    picture install-fonts
    tap 50 16
    tap 150 522
    picture system-status
    tap 700 517
    tap 300 165 # a row of the picker
    picture bios-picker
    kill $program'
simulator/panel --display xorg --share docs/pictures -- bash -c "$steps"

# Both pages of the factory window, without the calibration that comes before it.
# shellcheck disable=SC2016 # the panel's shell expands it
steps='
    mkdir /tmp/tools
    printf "#!/bin/sh\n" >/tmp/tools/xCal
    chmod +x /tmp/tools/xCal
    PATH=/tmp/tools:$PATH build/talmero-bios 2>/dev/null &
    program=$!
    sleep 5
    simulator/panel-screenshot docs/pictures/factory-setup.png
    simulator/finger send "tap 755 26"
    sleep 0.5
    simulator/finger send "tap 268 367"
    sleep 1
    simulator/panel-screenshot docs/pictures/factory-test.png
    kill $program'
simulator/panel --display xorg --factory --share docs/pictures -- bash -c "$steps"
