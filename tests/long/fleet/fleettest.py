"""What the tests of the Ansible collection share: the panels, and the desk."""

import atexit
import functools
import os
import pathlib
import random
import tempfile
import unittest

from desk import Desk
from plant import ROOT, Plant

BUILD = pathlib.Path(os.environ["FLEET_BUILD"])
FILES = pathlib.Path(os.environ["FLEET_FILES"])
COUNT = int(os.environ["FLEET_PANELS"])


def temporary_folder():
    """A folder that is removed at the end."""
    folder = tempfile.TemporaryDirectory()
    atexit.register(folder.cleanup)
    return pathlib.Path(folder.name)


def install_collection(desk):
    installed = desk.run("ansible-galaxy", "collection", "install", str(ROOT / "fleet"))
    assert installed.status == 0, installed.output


@functools.lru_cache(maxsize=None)
def everything():
    """The plant and the desk with two applications, which all tests share."""
    plant = Plant(COUNT, BUILD, FILES)
    atexit.register(plant.stop)
    desk = Desk(temporary_folder(), plant.panels, BUILD, FILES / "key")
    data = random.Random(1).randbytes(300000)
    for name in ("old", "new"):
        desk.make_package(name, [("compile/data", data), ("recipes/first", b"1\n")])
    for panel in plant.panels:
        panel.shell("cp /opt/talmero/bios/bios.ini /root")
    install_collection(desk)
    return plant, desk


class FleetTest(unittest.TestCase):
    """A test with all panels, which are as they started except for what their names say."""

    def setUp(self):
        self.plant, self.desk = everything()
        self.panels = self.plant.panels
        self.names = [panel.name for panel in self.panels]
        for panel in self.panels:
            panel.come_back()

    def panel(self, number):
        return self.panels[number - 1]

    def shell(self, script):
        """Runs a script in every panel. Result: what they printed."""
        return [panel.shell(script) for panel in self.panels]

    def assert_run(self, run, named=(), changed=None):
        """It names exactly these panels, and changes exactly these."""
        self.assertEqual(run.named, sorted(named), run.output)
        self.assertEqual(run.status == 0, not named, run.output)
        if changed is not None:
            self.assertEqual(run.changed, sorted(changed), run.output)
