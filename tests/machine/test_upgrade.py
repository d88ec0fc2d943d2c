"""An update of the programs from a repository, and power cuts during it."""

import shutil
import time

import panel as places
from machine import WEB_SERVER
from machinetest import MachineTest
from repository import RELEASE, make_repository
from states import IMAGE, WORK, State, changed, disk_of, main_page

SOURCE = "/etc/apt/sources.list.d/talmero.list"
KEY = "/etc/apt/keyrings/talmero.asc"
DPKG_LOG = "/var/log/dpkg.log"
REPAIR = "talmero-guard-dpkg.service"
# What dpkg has just written into its log when the power fails.
CUTS = ("startup archives unpack", "status half-installed talmero-bios:",
        "status unpacked talmero-bios:", "status half-configured talmero-bios:")


class Upgrade(MachineTest):
    @classmethod
    def setUpClass(cls):
        """A panel that knows the repository and has asked it what there is."""
        folder = WORK / "states" / IMAGE.stem / "repository"
        cls.state = State("upgrade", web=folder)
        if not cls.state.is_current(main_page().disk):
            with changed(cls.state, main_page(), web=folder) as panel:
                shutil.rmtree(folder, ignore_errors=True)
                old = panel.shell.run("dpkg-query -W -f '${Version}' talmero-bios")
                new = f"{old}+1"
                names = make_repository(folder, old, new)
                cls.use_repository(panel)
                cls.state.keep(panel, old=old, new=new, names=names)
        notes = cls.state.notes()
        cls.old, cls.new, cls.names = notes["old"], notes["new"], notes["names"]
        cls.upgrade = f"apt-get install --yes --quiet {' '.join(cls.names)}"

    @staticmethod
    def use_repository(panel):
        # The saved panel's clock shows when it was saved, and apt refuses a list from the future.
        panel.shell.run(f"date --set=@{int(time.time())}")
        panel.shell.run("rm /etc/apt/sources.list; mkdir -p /etc/apt/keyrings")
        panel.shell.run(f"busybox wget -q -O {KEY} http://{WEB_SERVER}/talmero.asc")
        panel.shell.run(f"echo 'deb [signed-by={KEY}] http://{WEB_SERVER}/ {RELEASE} main' >{SOURCE}")
        panel.shell.run("apt-get update --quiet")

    def versions(self, panel):
        """The versions of the packages, or the state of those that are not installed properly."""
        output = panel.shell.run("dpkg-query -W -f '${db:Status-Status} ${Version}\\n' " + " ".join(self.names))
        return {line.removeprefix("installed ") for line in output.splitlines()}

    def require_whole_start(self, panel):
        panel.wait_for_countdown()
        panel.tap(*places.COUNTDOWN)
        panel.wait_for_main_page()
        panel.wait_for_shell()
        panel.wait_for_end_of_start()
        journal = panel.shell.run(f"journalctl --boot --no-pager --unit {REPAIR}")
        self.assertEqual(panel.failed_units(), [], journal)

    def test_programs_are_updated(self):
        with self.panel(self.state) as panel:
            server = panel.file("/tmp/.X0-lock")
            panel.shell.run(self.upgrade)
            self.assertEqual(self.versions(panel), {self.new})
            self.assertEqual(panel.file("/tmp/.X0-lock"), server, "the session ended")
            panel.shell.run("sync")
            panel.reset()
            self.require_whole_start(panel)

    def test_interrupted_update_is_repaired(self):
        for event in CUTS:
            with self.subTest(event):
                self.cut_at(event, self.upgrade)

    def test_interrupted_repetition_is_repaired(self):
        """The package is cut while its own version is unpacked again, so apt has no newer one."""
        self.cut_at(f"status half-installed talmero-bios:[^ ]* {self.new}$",
                    f"sh -c '{self.upgrade}; {self.upgrade} --reinstall'")

    def test_interrupted_update_is_repaired_from_the_repository(self):
        """apt's archives did not reach the disk."""
        self.cut_at("status unpacked talmero-bios:", self.upgrade, before="rm /var/cache/apt/archives/*.deb; sync")

    def cut_at(self, event, command, before=""):
        """Cuts the power when a command has made dpkg log an event, after the command "before"."""
        cut = State("upgrade-cut", **self.state.options)
        with changed(cut, self.state) as panel:
            panel.shell.run(f": >{DPKG_LOG}; setsid {command} >/dev/null 2>&1 &")
            panel.shell.run(f"tail -n +1 -F {DPKG_LOG} | grep -q -m 1 '{event}'; {before}")
            panel.pull_plug()
        with self.panel(disk_of(cut), **cut.options) as panel:
            self.require_whole_start(panel)
            self.assertEqual(panel.shell.run("dpkg --audit"), "")
            self.assertLessEqual(self.versions(panel), {self.old, self.new})
            panel.shell.run("apt-get check")
