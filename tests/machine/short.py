"""The short form of the tests on the machine: a start, one page, one cut, and a start again."""

import pathlib
import tempfile
import time
import unittest

import panel as places
from machine import make_overlay
from machinetest import SETTINGS_FILE
from panel import Panel
from states import IMAGE

CUT_AFTER = 1.5  # s after OK


class Short(unittest.TestCase):
    def test_settings_survive_a_power_cut(self):
        with tempfile.TemporaryDirectory(prefix="panel-") as folder:
            disk = pathlib.Path(folder, "disk.qcow2")
            make_overlay(disk, IMAGE)
            with Panel(disk, folder, name="short-save") as panel:
                panel.open_main_page()
                panel.wait_for_shell()
                before = panel.file(SETTINGS_FILE)
                panel.shell.run("sync")  # the first start also writes
                panel.open_page("miscellaneous")
                panel.choose(places.SCREEN_SAVING, places.SCREEN_SAVING_ROWS, 2)
                panel.tap(*places.OK)
                time.sleep(CUT_AFTER)
                panel.pull_plug()
            with Panel(disk, folder, name="short-start") as panel:
                panel.wait_for_countdown()
                panel.wait_for_shell()
                after = panel.file(SETTINGS_FILE)
                self.assertTrue(after == before or "app.screensaving=10\n" in after,
                                f"{SETTINGS_FILE} is neither old nor new: {after!r}")
                self.assertEqual(panel.failed_units(), [], "failed units")


if __name__ == "__main__":
    unittest.main()
