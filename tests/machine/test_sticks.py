"""Sticks in the real port, pulled at bad moments too."""

import random
import time

import panel as places
import screen
import sticks
from machinetest import MachineTest

FONTS = "/usr/share/fonts/truetype/freefont"


def application(text):
    return [("compile/project", text.encode())]


class Sticks(MachineTest):
    def install_first(self, panel):
        panel.open_page("file-transfer")
        panel.choose_package(0)
        panel.leave_page()

    def check_installs_from(self, make):
        stick = self.stick("stick", packages=[("line-1.kpc", application("line 1"))], make=make)
        with self.panel() as panel:
            panel.plug_stick("stick", stick)
            panel.wait_for_stick()
            self.install_first(panel)
            self.assertEqual(panel.file("/home/dest/compile/project"), "line 1")
            panel.pull_stick("stick")
            panel.wait_for_stick(False)

    def test_vfat(self):
        self.check_installs_from(sticks.make_vfat)

    def test_exfat(self):
        self.check_installs_from(sticks.make_exfat)

    def test_ext4(self):
        self.check_installs_from(sticks.make_ext4)

    def test_two_sticks(self):
        first, second = (self.stick(name, packages=[(f"{name}.kpc", application(name))])
                         for name in ("one", "two"))
        with self.panel() as panel:
            panel.plug_stick("first", first)
            panel.wait_for_stick()
            panel.plug_stick("second", second)
            panel.wait_for("mountpoint -q /media/usb1")
            installed = []
            for row in (0, 1): # the file system decides which stick comes first
                panel.open_page("file-transfer")
                panel.choose_package(row)
                panel.leave_page()
                installed.append(panel.file("/home/dest/compile/project"))
            self.assertEqual(sorted(installed), ["one", "two"])
            panel.pull_stick("first")
            panel.wait_for_stick(False)
            self.install_first(panel)  # the second stick keeps its place
            panel.shell.run("mountpoint -q /media/usb1")

    def test_pulled_while_listing(self):
        packages = [(f"line-{number:03}.kpc", application("line")) for number in range(30)]
        stick = self.stick("stick", packages=packages)
        with self.panel() as panel:
            panel.plug_stick("stick", stick, rate=20_000)
            panel.wait_for_stick()
            panel.tap(*places.BUTTONS["file-transfer"])
            time.sleep(0.3)
            panel.pull_stick("stick")
            panel.wait_for_page("file-transfer")
            panel.leave_page(places.CANCEL)
            panel.wait_for_stick(False)
            self.check_works(panel)

    def test_pulled_while_installing(self):
        data = random.Random(1).randbytes(4_000_000)
        stick = self.stick("stick", packages=[("line-1.kpc", [("compile/project", data)])])
        with self.panel() as panel:
            panel.plug_stick("stick", stick, rate=1_000_000)
            panel.wait_for_stick()
            panel.open_page("file-transfer")
            panel.choose_package(0)
            panel.tap(*places.OK)
            time.sleep(1)
            panel.pull_stick("stick")
            picture = panel.wait_until("end", lambda picture: screen.shows_main_page(picture)
                                       or screen.dialog(picture), places.SAVE_LIMIT)
            if not screen.shows_main_page(picture):
                panel.close_warning()
            panel.wait_for_main_page()
            panel.wait_for_stick(False)
            self.check_works(panel)

    def check_works(self, panel):
        """The panel still installs, from another stick."""
        stick = self.stick("next", packages=[("next.kpc", application("next"))])
        panel.plug_stick("next", stick)
        panel.wait_for_stick()
        self.install_first(panel)
        self.assertEqual(panel.file("/home/dest/compile/project"), "next")
        self.assertEqual(panel.failed_units(), [])

    def test_bios_update(self):
        stick = self.stick("stick", packages=[("next.mo", [("bios.version", b"99\n")])])
        with self.panel() as panel:
            panel.plug_stick("stick", stick)
            panel.wait_for_stick()
            panel.open_page("system-status")
            panel.tap(*places.UPDATE_BIOS)
            panel.wait_until("picker", screen.dialog)
            panel.tap(*places.PICKER_ROW)
            panel.tap(*places.PICKER_OK)
            panel.wait_for_page("system-status")
            panel.leave_page()
            self.assertEqual(panel.file("/opt/talmero/bios/bios.version").strip(), "99")

    def test_fonts(self):
        font = random.Random(2).randbytes(50_000)
        stick = self.stick("stick", files=[("First.ttf", font), ("Second.TTC", font)])
        with self.panel() as panel:
            panel.plug_stick("stick", stick)
            panel.wait_for_stick()
            panel.open_page("install-fonts")
            for row in (0, 1):
                panel.tap(600, 95 + 50 * row)
                time.sleep(1)
            panel.leave_page()
            self.assertEqual(panel.shell.run(f"ls {FONTS}").split(), ["First.ttf", "Second.TTC"])
            panel.shell.run(f"cmp {FONTS}/First.ttf {FONTS}/Second.TTC")
