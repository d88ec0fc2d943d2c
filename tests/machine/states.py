"""Saved states of a started panel, so that a test begins in a second instead of a minute."""

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
        self.folder = WORK / "states" / IMAGE.stem / name
        self.options = options

    @property
    def disk(self):
        return self.folder / "disk.qcow2"

    @property
    def _notes_file(self):
        return self.folder / "notes.json"

    def notes(self):
        return json.loads(self._notes_file.read_text())

    def write_notes(self, **notes):
        self._notes_file.write_text(json.dumps(notes, indent=1))

    def is_current(self, source):
        """Whether the state is complete, and newer than the disk from which it was made."""
        return self._notes_file.exists() and self._notes_file.stat().st_mtime > source.stat().st_mtime

    def begin(self, backing):
        """Removes what is left of an older state and makes its disk, an overlay of another."""
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        make_overlay(self.disk, backing)

    def keep(self, panel, **notes):
        """Saves the running panel. It writes everything to its disk before: a panel whose settings
        are about to change has been running for a while."""
        panel.shell.run("sync")
        panel.save_state(self.folder)
        self.write_notes(**notes)


@contextlib.contextmanager
def on_disk(disk, backing, name, options):
    """A panel with this disk, which goes on from "backing" if that is a State."""
    if isinstance(backing, State):
        options = {**backing.options, "state": backing.folder, **options}
    with tempfile.TemporaryDirectory(prefix="panel-") as folder:
        with Panel(disk, folder, name=name, **options) as panel:
            yield panel


def disk_of(backing):
    return backing.disk if isinstance(backing, State) else backing


@contextlib.contextmanager
def started(backing, name, **options):
    """A panel that starts from a disk, or goes on from a State. Neither is changed."""
    with tempfile.TemporaryDirectory(prefix="panel-") as folder:
        disk = pathlib.Path(folder, "disk.qcow2")
        make_overlay(disk, disk_of(backing))
        with on_disk(disk, backing, name, options) as panel:
            yield panel


@contextlib.contextmanager
def changed(state, backing, **options):
    """A panel like started(), whose state is to be kept as "state"."""
    state.begin(disk_of(backing))
    with on_disk(state.disk, backing, state.folder.name, options) as panel:
        yield panel


def main_page():
    """A panel after its first start, on its main page."""
    state = State("main-page")
    if not state.is_current(IMAGE):
        with changed(state, IMAGE) as panel:
            panel.open_main_page()
            panel.wait_for_shell()
            panel.wait_for_end_of_start()
            state.keep(panel, **{name: panel.file(f"/opt/talmero/bios/{name}")
                                 for name in ("model", "oem", "fwver", "bios.version")})
    return state
