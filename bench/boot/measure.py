#!/usr/bin/env python3
"""Compares the time from the kernel's start to the countdown of two disks.

Usage: measure.py [--rounds N] OURS USUAL, raw images with a root shell on the first serial port.
Each round starts ours with both cables in, ours with both cables out, and the usual one with both
cables in, so that a change in the machine's speed affects all alike. Exits with 1 if a limit is
missed.
"""

import argparse
import pathlib
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/machine"))

import machine  # noqa: E402
import screen  # noqa: E402

START_LIMIT = 600  # s
STEP = 0.2  # s between two looks at the screen, which cost the machine some time
CABLES_OUT_LIMIT, USUAL_LIMIT = 1.1, 0.6  # ratios


def seconds_to_countdown(image, cables):
    """Starts a machine. Result: what its clock showed at the first frame; it begins with the kernel."""
    with tempfile.TemporaryDirectory(prefix="boot-") as folder:
        disk = f"{folder}/disk.qcow2"
        machine.make_overlay(disk, image)
        with machine.Machine(disk, folder, cables=(cables, cables)) as panel:
            end = time.monotonic() + START_LIMIT
            while screen.shown_count(panel.picture()) is None:
                if time.monotonic() > end:
                    raise machine.MachineError(f"no countdown within {START_LIMIT} s")
                time.sleep(STEP)
            first_frame = time.monotonic()
            panel.shell.wait_until_ready(START_LIMIT)
            # The answer takes a while on a busy machine, so the clock is read between two others.
            before = time.monotonic()
            clock = float(panel.shell.run("cat /proc/uptime").split()[0])
            return clock - ((before + time.monotonic()) / 2 - first_frame)


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("ours", type=pathlib.Path)
    parser.add_argument("usual", type=pathlib.Path)
    arguments = parser.parse_args()

    kinds = {"ours, cables in": (arguments.ours, True), "ours, cables out": (arguments.ours, False),
             "usual, cables in": (arguments.usual, True)}
    times = {kind: [] for kind in kinds}
    for number in range(arguments.rounds):
        for kind, setting in kinds.items():
            times[kind].append(seconds_to_countdown(*setting))
            print(f"round {number + 1}, {kind}: {times[kind][-1]:.1f} s", flush=True)

    medians = {kind: statistics.median(values) for kind, values in times.items()}
    for kind, values in times.items():
        print(f"{kind:18} {medians[kind]:6.1f} s  {min(values):.1f}..{max(values):.1f}")
    missed = False
    for what, ratio, limit in (
            ("cables out / cables in", medians["ours, cables out"] / medians["ours, cables in"],
             CABLES_OUT_LIMIT),
            ("ours / usual", medians["ours, cables in"] / medians["usual, cables in"], USUAL_LIMIT)):
        missed |= ratio > limit
        print(f"{what:22} {ratio:5.2f}  at most {limit}  {'missed' if ratio > limit else 'met'}")
    return int(missed)


if __name__ == "__main__":
    sys.exit(main())
