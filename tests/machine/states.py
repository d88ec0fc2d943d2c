"""Saved states of a started panel, so that a test begins in two seconds instead of a minute."""

import contextlib
import json
import os
import pathlib
import shutil
import tempfile

from machine import make_overlay
from panel import Panel

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build-machine"
IMAGE = pathlib.Path(os.environ.get("PANEL_IMAGE", ROOT / "dist/talmero-panel.img"))


class State:
    """A saved state: a folder with a disk, the memory and notes, and the machine that it needs.

    options: those of Panel
    """

    def __init__(self, name, **options):
        self.folder = WORK / "states" / name
        self.options = options

    @property
    def disk(self):
        return self.folder / "disk.qcow2"

    def notes(self):
        return json.loads((self.folder / "notes.json").read_text())

    def is_current(self, *sources):
        """Whether the state was made after each of these files."""
        notes = self.folder / "notes.json"
        return notes.exists() and all(notes.stat().st_mtime > source.stat().st_mtime
                                      for source in sources)

    def begin(self, backing):
        """Removes what is left of an older state. Its disk is an overlay of the given one."""
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        make_overlay(self.disk, backing)

    def keep(self, panel, **notes):
        """Saves the running panel. Its disk gets what it still holds in memory: a panel whose
        settings are about to change has been running for a while."""
        panel.shell.run("sync")
        panel.save_state(self.folder)
        (self.folder / "notes.json").write_text(json.dumps(notes, indent=1))


@contextlib.contextmanager
def started(backing, name, **options):
    """A panel that starts from an overlay of a disk or image, or goes on from a State."""
    with tempfile.TemporaryDirectory(prefix="panel-") as folder:
        disk = pathlib.Path(folder) / "disk.qcow2"
        if isinstance(backing, State):
            options = {**backing.options, "state": backing.folder, **options}
            backing = backing.disk
        make_overlay(disk, backing)
        with Panel(disk, folder, name=name, **options) as panel:
            yield panel


def main_page():
    """A panel that has been started for the first time, and shows its main page."""
    state = State("main-page")
    if not state.is_current(IMAGE):
        state.begin(IMAGE)
        with tempfile.TemporaryDirectory(prefix="panel-") as folder:
            with Panel(state.disk, folder, name="main-page") as panel:
                panel.open_main_page()
                panel.wait_for_shell()
                state.keep(panel, **{name: panel.file(f"/opt/talmero/bios/{name}")
                                     for name in ("model", "oem", "fwver", "bios.version")})
    return state
