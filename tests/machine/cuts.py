"""Cuts the power of a panel during a save, starts it again and looks at its files.

Each seed stands for one cut: of one kind of save, at one moment. The results are lines of a table,
one for each cut. A run leaves out the seeds that the table has.
"""

import argparse
import concurrent.futures
import dataclasses
import pathlib
import random
import shlex
import sys
import tempfile
import time
from collections.abc import Callable

import panel as places
import screen
import sticks
from machine import MachineError, make_overlay
from panel import Panel
from states import IMAGE, WORK, State, changed, main_page, started

NAMING_RULES = "/etc/udev/rules.d/70-persistent-net.rules"
SETTINGS = ("/opt/talmero/bios/bios.ini", "/etc/network/interfaces", "/opt/talmero/bios/model",
            "/opt/talmero/bios/oem", "/opt/talmero/bios/fwver", "/opt/talmero/bios/bios.version",
            NAMING_RULES)
APPLICATION = "/home/dest"
MEMBERS, MEMBER_SIZE = 40, 100_000  # files of the application and their size
# s after which a page that came back must have told the truth
FLUSH_LIMIT = 2
# A guard has a second to keep a copy of what was saved, and the machine is slow.
SETTLE_TIME = 5
HEADER = ("| seed | save | cut after, s | page back for, s | countdown after, s | failed units |"
          " bios.ini | interfaces | other settings | installed files | result |\n"
          "|--:|---|--:|--:|--:|---|---|---|---|---|---|\n")


@dataclasses.dataclass(frozen=True)
class Save:
    """A kind of save.

    choose: what a technician does before the last tap
    limit: s after that tap within which a cut comes
    button: the place of the last tap
    has_stick: whether it needs a stick
    from_start: whether the stick must be plugged in at power-on
    installs: whether it replaces the application
    """
    name: str
    choose: Callable
    limit: float = 3
    button: tuple = places.OK
    has_stick: bool = False
    from_start: bool = False
    installs: bool = False


def choose_network(panel):
    panel.open_page("ethernet")
    port = places.LAN[0]
    panel.tap(*port["manual"])
    panel.type_into(port["address"], "192.168.5.77")
    panel.type_into(port["mask"], "255.255.255.0")


def choose_miscellaneous(panel):
    panel.open_page("miscellaneous")
    panel.tap(*places.MOUSE["enable"])
    panel.choose(places.SCREEN_SAVING, places.SCREEN_SAVING_ROWS, 3, current=1)
    panel.choose(places.BRIGHTNESS, places.BRIGHTNESS_ROWS, 2)


def choose_installation(panel):
    panel.open_page("file-transfer")
    panel.choose_package(1)


def choose_factory(panel):
    panel.open_factory_window()
    panel.wait_for_shell()
    panel.wait_for_end_of_start()
    panel.choose(places.MODEL, places.MODEL_ROWS, 3, height=places.FACTORY_LIST_ROW)
    panel.choose(places.TYPE, places.TYPE_ROWS, 1, height=places.FACTORY_LIST_ROW)


# The emulated panel writes the network files about 5 s after the tap.
SAVES = (Save("network", choose_network, limit=9), Save("miscellaneous", choose_miscellaneous),
         Save("factory", choose_factory, button=places.FACTORY_SAVE, has_stick=True, from_start=True),
         Save("installation", choose_installation, limit=15, has_stick=True, installs=True))


def make_sticks(folder, model, runtime):
    """Makes FOLDER/factory.img and FOLDER/installation.img, with an old and a new application."""
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as scratch:
        contents = pathlib.Path(scratch, "contents")
        contents.mkdir()
        for name in ("a-old", "b-new"):
            members = pathlib.Path(scratch, name, "compile")
            members.mkdir(parents=True)
            source = random.Random(name)
            for number in range(MEMBERS):
                (members / f"screen-{number:02}").write_bytes(source.randbytes(MEMBER_SIZE))
            sticks.make_package(contents / f"{name}.kpc", members.parent, version=runtime, target=model)
        sticks.make_vfat(folder / "installation.img", contents)
        for package in contents.iterdir():
            package.unlink()
        (contents / "talmero_setup").touch()
        sticks.make_vfat(folder / "factory.img", contents)


def digests(panel):
    """The digests of the settings and of the installed files, by path."""
    output = panel.shell.run(f"sha256sum {shlex.join(SETTINGS)} 2>/dev/null;"
                             f" find {APPLICATION} -type f -exec sha256sum {{}} +")
    return {path: digest for digest, path in (line.split(maxsplit=1) for line in output.splitlines())}


class Preparation:
    """Makes the states in which the saves begin: everything is chosen, only the last tap is
    missing. Their notes have the digests of all files before and after the save."""

    def __init__(self, guarded):
        self.guarded = guarded
        self.prefix = "guarded" if guarded else "unguarded"
        self.sticks = WORK / "states" / IMAGE.stem / f"sticks-{self.prefix}"

    def stick(self, save):
        return self.sticks / f"{save.name}.img"

    def state(self, save):
        return State(f"{self.prefix}-{save.name}", sticks=[self.stick(save)] if save.has_stick else [])

    def states(self):
        """Makes the states that are missing or older than the image. Result: all by save."""
        settled = State(f"{self.prefix}-settled")
        if not settled.is_current(main_page().disk):
            self._settle(settled)
        for save in SAVES:
            state = self.state(save)
            if not state.is_current(settled.disk):
                self._begin(save, state, settled)
        return {save.name: self.state(save) for save in SAVES}

    def _settle(self, state):
        """A panel that has been in use: with settings and an application."""
        with changed(state, main_page()) as panel:
            if not self.guarded:
                panel.shell.run("dpkg --purge talmero-bios-guard")
            make_sticks(self.sticks, panel.file("/opt/talmero/bios/model").strip(),
                        panel.file("/opt/talmero/bios/fwver").strip())
            panel.open_page("ethernet")
            for port in places.LAN:
                panel.tap(*port["dhcp"])
            panel.leave_page()
            panel.open_page("miscellaneous")
            panel.choose(places.SCREEN_SAVING, places.SCREEN_SAVING_ROWS, 1)
            panel.leave_page()
            panel.plug_stick("stick0", self.sticks / "installation.img")
            panel.wait_for_stick()
            panel.open_page("file-transfer")
            panel.choose_package(0)
            panel.leave_page()
            panel.pull_stick("stick0")
            panel.wait_for_stick(False)
            time.sleep(SETTLE_TIME)
            state.keep(panel)

    def _begin(self, save, state, settled):
        """Does everything but the last tap. Then lets the save end once, to learn its result."""
        options = {"sticks": [self.stick(save)]} if save.from_start else {}
        with changed(state, settled.disk if save.from_start else settled, **options) as panel:
            if save.has_stick and not save.from_start:
                panel.plug_stick("stick0", self.stick(save))
                panel.wait_for_stick()
            save.choose(panel)
            before = digests(panel)
            state.keep(panel, before=before)
        with started(state, f"{save.name}-save") as panel:
            panel.tap(*save.button)
            if save.button == places.OK:
                panel.wait_for_main_page(places.SAVE_LIMIT)
            else:
                panel.wait_for(f"[ -s {NAMING_RULES} ]")
            time.sleep(SETTLE_TIME)
            after = digests(panel)
        if before == after:
            raise MachineError(f"the {save.name} save changes nothing")
        state.write_notes(before=before, after=after)


class Cut:
    """One cut, and what is left after it."""

    def __init__(self, seed, save, state):
        self.seed, self.save, self.state = seed, save, state
        self.moment = random.Random(f"{save.name} {seed}").uniform(0, save.limit)
        self.page_back = None  # s before the cut
        self.countdown = None  # s after the power came back
        self.failed_units = []
        self.fates = {}  # by path: same, old, new or lost
        self.faults = []

    def make(self):
        name = f"cut-{self.seed}"
        with tempfile.TemporaryDirectory(prefix="panel-") as folder:
            disk = pathlib.Path(folder, "disk.qcow2")
            make_overlay(disk, self.state.disk)
            with Panel(disk, folder, name=name, state=self.state.folder, **self.state.options) as panel:
                time.sleep(1)  # for the tablet and the stick
                panel.tap(*self.save.button)
                self._cut(panel)
            began = time.monotonic()
            with Panel(disk, folder, name=name) as panel:
                panel.wait_for_countdown()
                self.countdown = time.monotonic() - began
                panel.tap(*places.COUNTDOWN)
                panel.wait_for_main_page()
                panel.wait_for_shell()
                panel.wait_for_end_of_start()  # a broken network file fails a unit after the countdown
                self._look(panel)

    def _cut(self, panel):
        end = time.monotonic() + self.moment
        back_since = None
        while (left := end - time.monotonic()) > 0:
            if back_since is None and screen.shows_main_page(panel.picture()):
                back_since = time.monotonic()
            time.sleep(min(left, 0.05))
        panel.pull_plug()
        if back_since is not None:
            self.page_back = time.monotonic() - back_since

    def _look(self, panel):
        self.failed_units = panel.failed_units()
        if self.failed_units:
            self.faults.append("failed units")
        notes, found = self.state.notes(), digests(panel)
        for path in {**notes["before"], **notes["after"]}:
            self.fates[path] = fate(*(state.get(path) for state in (notes["before"], notes["after"], found)))
        for path in SETTINGS:
            if self.fates.get(path) == "lost":
                text = panel.file(path)
                left = "is absent" if text is None else f"has {len(text)} bytes"
                self.faults.append(f"{path} {left}")
        if {self.fates[path] for path in SETTINGS[:2]} == {"old", "new"}:
            self.faults.append("bios.ini and interfaces disagree")
        if not self.save.installs and self._installed("lost"):
            self.faults.append("files missing that nobody had touched")
        if (self.page_back or 0) > FLUSH_LIMIT and self._installed("lost", "old"):
            self.faults.append("files missing that the page had reported")

    def _installed(self, *fates):
        return sum(fate in fates for path, fate in self.fates.items() if path.startswith(APPLICATION))

    def cells(self):
        """The cells of its line in the table."""
        others = {self.fates.get(path) for path in SETTINGS[2:]}
        installed = ", ".join(f"{self._installed(fate)} {fate}" for fate in ("old", "new", "lost")
                              if self._installed(fate))
        return (str(self.seed), self.save.name, f"{self.moment:.2f}", seconds(self.page_back),
                seconds(self.countdown), " ".join(self.failed_units) or "none",
                *(self.fates.get(path, "unknown") for path in SETTINGS[:2]),
                next((fate for fate in ("lost", "new", "old") if fate in others), "same"),
                installed or "same", "; ".join(self.faults) or "good")


def fate(before, after, found):
    """What became of a file, from its digests; None stands for no file."""
    if found not in (before, after):
        return "lost"
    if before == after:
        return "same"
    return "old" if found == before else "new"


def seconds(value):
    return "" if value is None else f"{value:.1f}"


def read_table(path):
    """The cells of each line, without the header."""
    lines = path.read_text().splitlines()[2:] if path.exists() else []
    return [[cell.strip() for cell in line.strip("| ").split("|")] for line in lines]


def summary(rows):
    """A table with one line for each kind of save."""
    lines = ["| save | cuts | countdown | failed unit | setting lost | disagreement | files missing |"
             " slowest countdown, s |", "|---|--:|--:|--:|--:|--:|--:|--:|"]
    for save in SAVES:
        mine = [row for row in rows if row[1] == save.name]
        counts = [sum(word in row[10] for row in mine)
                  for word in ("failed units", "/", "disagree", "missing")]
        times = [float(row[4]) for row in mine if row[4]]
        cells = (save.name, len(mine), len(times), *counts, max(times, default=""))
        lines.append("| " + " | ".join(map(str, cells)) + " |")
    return "\n".join(lines)


def seed_range(text):
    first, _, last = text.partition("-")
    return range(int(first), int(last or first) + 1)


def make_cut(seed, states):
    """Result: the cut, which is bad if anything unexpected happened."""
    save = SAVES[seed % len(SAVES)]
    cut = Cut(seed, save, states[save.name])
    try:
        cut.make()
    except (MachineError, OSError) as error:
        cut.faults.append(str(error).replace("\n", " ").replace("|", "/"))
    return cut


def run(seeds, jobs, guarded, table):
    """Makes the cuts that the table does not have. Result: whether all cuts in it are good."""
    known = {int(row[0]) for row in read_table(table)}
    left = [seed for seed in seeds if seed not in known]
    states = Preparation(guarded).states() if left else {}
    if not table.exists():
        table.write_text(HEADER)
    began = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool, open(table, "a") as file:
        cuts = [pool.submit(make_cut, seed, states) for seed in left]
        for number, cut in enumerate(concurrent.futures.as_completed(cuts), 1):
            line = "| " + " | ".join(cut.result().cells()) + " |"
            print(line, file=file, flush=True)
            print(f"{number}/{len(left)}, {(time.monotonic() - began) / number:.0f} s each: {line}",
                  flush=True)
    rows = read_table(table)
    print(summary(rows))
    return all(row[10] == "good" for row in rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seeds", type=seed_range, default=seed_range("1-8"), metavar="FIRST-LAST")
    parser.add_argument("--jobs", type=int, default=2, help="machines at a time (default: 2)")
    parser.add_argument("--without-guard", action="store_true",
                        help="removes the package talmero-bios-guard first")
    parser.add_argument("--table", type=pathlib.Path, help="default: build-machine/cuts-*.md")
    options = parser.parse_args()
    guarded = not options.without_guard
    table = options.table or WORK / ("cuts-guarded.md" if guarded else "cuts-unguarded.md")
    good = run(options.seeds, options.jobs, guarded, table)
    return 0 if good or options.without_guard else 1


if __name__ == "__main__":
    sys.exit(main())
