"""What the tests on the machine share."""

import pathlib
import tempfile
import unittest

import sticks
from states import main_page, started

SETTINGS_FILE = "/opt/talmero/bios/bios.ini"
INTERFACES_FILE = "/etc/network/interfaces"
RUNTIME = "/opt/talmero/bios/runapp.sh"


class MachineTest(unittest.TestCase):
    """A test on a panel of its own. Each works on a copy, so their order does not matter."""

    longMessage = True

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="sticks-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def panel(self, backing=None, **options):
        """A panel that shows its main page, or starts from a disk."""
        return started(backing or main_page(), self._testMethodName, **options)

    def stick(self, name, files=(), packages=(), make=sticks.make_vfat):
        """Makes a stick. files: pairs of name and bytes. packages: pairs of file name and members,
        which are pairs of path and bytes. Result: its file."""
        contents = self.folder / name
        contents.mkdir()
        for file, data in files:
            (contents / file).write_bytes(data)
        for file, members in packages:
            self.make_package(contents / file, members)
        path = self.folder / f"{name}.img"
        make(path, contents)
        return path

    def make_package(self, path, members):
        """Makes a package that fits the panel. Its kind follows from the extension."""
        versions = main_page().notes()
        kind, version, target = {
            ".kpc": ("application", int(versions["fwver"]), versions["model"].strip()),
            ".fmw": ("firmware", int(versions["fwver"]) + 1, versions["oem"].strip()),
            ".mo": ("bios", int(versions["bios.version"]) + 1, ""),
        }[path.suffix]
        contents = self.folder / f"{path.name}.members"
        for member, data in members:
            file = contents / member
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(data)
        sticks.make_package(path, contents, kind=kind, version=version, target=target)

    def settings(self, panel):
        """The settings file as a dictionary."""
        lines = panel.file(SETTINGS_FILE).splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def require_good_start(self, panel):
        panel.wait_for_shell()
        self.assertEqual(panel.failed_units(), [], "failed units")
