#!/usr/bin/env bash
# Takes the pictures of the documents from the real program on the simulated panel.
# Usage: docs/take-pictures.sh (after a build of the preset release)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Runs in the panel: pictures of the countdown, the main settings page, the Ethernet page with
# the keypad, and the miscellaneous page.
# shellcheck disable=SC2016 # the panel's shell expands it
steps='
    build/talmero-bios 2>/dev/null &
    program=$!
    sleep 2.5
    simulator/panel-screenshot docs/pictures/countdown.png
    simulator/finger send "tap 400 450"
    sleep 0.5
    simulator/panel-screenshot docs/pictures/main-page.png
    simulator/finger send "tap 400 415"
    sleep 0.5
    simulator/finger send "tap 400 514"
    sleep 0.5
    simulator/panel-screenshot docs/pictures/ethernet.png
    simulator/finger send "tap 50 16"
    sleep 0.5
    simulator/finger send "tap 400 522"
    sleep 0.5
    simulator/panel-screenshot docs/pictures/miscellaneous.png
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
