"""Prints when the session of an installed panel starts, and the memory of its program."""

import re

from states import IMAGE, started


def session_start(panel):
    """Seconds from the kernel's start until the session's unit is started."""
    answer = panel.shell.run(
        "systemctl show --property ActiveEnterTimestampMonotonic --value talmero-session.service")
    return int(answer) / 1e6


def memory(panel):
    """The program's memory in MB, with pages shared between processes counted in part (PSS)."""
    rollup = panel.shell.run("cat /proc/$(pidof talmero-bios)/smaps_rollup")
    return int(re.search(r"^Pss: +(\d+) kB", rollup, re.MULTILINE).group(1)) / 1e3


def main():
    with started(IMAGE, "figures") as panel:
        panel.open_main_page()
        panel.wait_for_shell()
        panel.wait_for_end_of_start()
        print(f"session started {session_start(panel):.0f} s after the kernel")
        print(f"memory of the program on its main page (PSS): {memory(panel):.1f} MB")


if __name__ == "__main__":
    main()
