"""Runs docs/many-panels.md as it stands, with the four panels of the example inventory."""

import csv
import os
import re
import shutil
import unittest

from desk import Desk
from fleettest import BUILD, FILES, FleetTest, everything, temporary_folder
from plant import ROOT
from repository import NEW, install_programs, serve_repository

DOCUMENT = ROOT / "docs/many-panels.md"


def read_tasks(text):
    """The commands of each task by its number, one text per block of indented lines.

    What stands between ``` is not run.
    """
    text = re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)
    sections = re.split(r"^## (\d+)\. .*$", text, flags=re.MULTILINE)
    blocks = re.compile(r"(?:^(?:    .*)?\n)+", re.MULTILINE)
    return {
        int(number): [
            re.sub(r"^    ", "", block, flags=re.MULTILINE).strip()
            for block in blocks.findall(section)
            if block.strip()
        ]
        for number, section in zip(sections[1::2], sections[2::2])
    }


class Document(FleetTest):
    @classmethod
    def setUpClass(cls):
        plant, _ = everything()
        cls.four = plant.panels[:4]
        cls.folder = temporary_folder()
        cls.desk = Desk(cls.folder, cls.four, BUILD, FILES / "key")
        for entry in cls.folder.iterdir():
            if entry.is_file():
                entry.unlink()
        os.symlink(ROOT / "fleet", cls.folder / "fleet")
        cls.tasks = read_tasks(DOCUMENT.read_text(encoding="utf-8"))
        cls.enterClassContext(serve_repository())
        for panel in cls.four:
            panel.shell("rm -rf /home/dest/compile; cp /root/bios.ini /opt/talmero/bios")
            panel.shell("rm -f /run/systemctl.log /run/talmero-settings.pending")

    def setUp(self):
        super().setUp()
        self.desk = Document.desk

    def do(self, number, status=0):
        """Runs the commands of a task. Result: what they printed, one text per block."""
        outputs = []
        for block in self.tasks[number]:
            run = self.desk.run("bash", "-euc", block)
            self.assertEqual(run.status, status, f"{block}\n{run.output}")
            outputs.append(run.output)
        return outputs

    def give_other_host_key(self, panel):
        """Until the end of the test: the desk of the other tests knows the present one."""
        panel.shell("mkdir /root/keys; mv /etc/ssh/ssh_host_* /root/keys; ssh-keygen -A")
        self.addCleanup(self.restart_ssh, panel)
        self.addCleanup(panel.shell, "rm /etc/ssh/ssh_host_*; mv /root/keys/* /etc/ssh")
        self.restart_ssh(panel)

    @staticmethod
    def restart_ssh(panel):
        panel.go_away()
        panel.come_back()

    def states(self):
        with open(self.desk.folder / "panels.csv", newline="", encoding="utf-8") as file:
            return {row[0]: row[2] for row in list(csv.reader(file))[1:]}

    def applications(self):
        return [panel.application() for panel in self.four]

    def test_tasks(self):
        self.assertEqual(sorted(self.tasks), list(range(1, 11)))
        everyone = [panel.name for panel in self.four]

        with self.subTest("1. name"):
            install, graph = self.tasks[1]
            self.desk.run("bash", "-euc", install)
            self.desk.folder /= "plant"
            shutil.copy(FILES / "key", self.desk.folder / "panels_key")
            graph = self.desk.run("bash", "-euc", graph).output
            self.assertIn("|--@line_1:\n  |  |  |  |--panel-01\n", graph)

        with self.subTest("2. meet"):
            outputs = self.do(2)
            self.assertEqual(outputs[0].count("pong"), 4)
            self.assertEqual(len((self.desk.folder / "known_hosts").read_text().splitlines()), 4)

        with self.subTest("3. see"):
            self.do(3)
            self.assertEqual(self.states(), {name: "errors" for name in everyone})

        with self.subTest("4. versions"):
            outputs = self.do(4)
            self.assertIn('\n      4 "RV-K21T","12","","",""\n', outputs[0])

        with self.subTest("5. settings"):
            self.do(5)
            stored = [panel.shell("talmero-settings get bios.brightness") for panel in self.four]
            self.assertEqual(stored, ["0.7\n"] * 3 + ["1\n"])

        with self.subTest("6. roll out"):
            for name in ("line1-v1", "line1-v2"):
                self.desk.make_package(name)
            self.do(6)
            self.assertEqual(self.applications(), ["line1-v2"] * 4)

        with self.subTest("7. mend"):
            bad = self.four[2]
            bad.shell("rm -r /home/dest/compile; echo RV-K25T >/opt/talmero/bios/model")
            run = self.desk.run("bash", "-euc", self.tasks[6][-1].splitlines()[-1])
            self.assertEqual(run.named, [bad.name])
            self.desk.keeps_retry_files = True
            bad.shell("echo RV-K21T >/opt/talmero/bios/model")
            outputs = self.do(7)
            self.desk.keeps_retry_files = False
            self.assertEqual(outputs[0].splitlines()[0], bad.name)
            self.assertEqual(self.applications(), ["line1-v2"] * 4)

        with self.subTest("8. put back"):
            self.do(8)
            self.assertEqual(self.applications(), ["line1-v1"] * 4)

        with self.subTest("9. upgrade"):
            for panel in self.four:
                install_programs(panel)
                panel.shell("rm -f /run/systemctl.log")
            shutil.copy(FILES / "repository/talmero.asc", self.desk.folder)
            self.do(9)
            for panel in self.four:
                versions = panel.shell("dpkg-query --show 'talmero-*'")
                self.assertIn(f"talmero-bios\t{NEW}\n", versions)
            calls = [panel.shell("cat /run/systemctl.log || true") for panel in self.four]
            restarts = [call.count("try-restart talmero-session") for call in calls]
            self.assertEqual(restarts, [1, 1, 0, 0])

        with self.subTest("10. replace"):
            new = self.four[2]
            new.shell("rm -r /home/dest/compile; talmero-settings unset bios.brightness")
            self.give_other_host_key(new)
            refused = self.desk.run("bash", "-euc", self.tasks[10][0].splitlines()[1])
            self.assertIn("UNREACHABLE", refused.output)
            self.do(10)
            self.assertEqual(self.applications(), ["line1-v1"] * 4)
            self.assertEqual(new.shell("talmero-settings get bios.brightness"), "0.7\n")
            self.assertEqual(self.states(), {new.name: "errors"})


if __name__ == "__main__":
    unittest.main()
