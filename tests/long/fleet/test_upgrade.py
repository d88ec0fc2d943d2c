"""Upgrades from a repository with the real packages. Only two panels have them."""

import unittest

from fleettest import FILES, FleetTest, everything
from repository import NEW, OLD, install_programs, serve_repository

VARIABLES = [
    "-e",
    "upgrade_repository=http://192.168.1.5/talmero",
    "-e",
    f"upgrade_key={FILES}/repository/talmero.asc",
]


class Upgrade(FleetTest):
    @classmethod
    def setUpClass(cls):
        plant, _ = everything()
        cls.enterClassContext(serve_repository())
        cls.chosen = plant.panels[4:6]  # those before are for test_document
        for panel in cls.chosen:
            install_programs(panel)

    def play(self, *arguments):
        return self.desk.play(
            "upgrade", *VARIABLES, "--limit", ",".join(self.chosen_names()), *arguments
        )

    def chosen_names(self):
        return [panel.name for panel in self.chosen]

    def versions(self):
        query = "dpkg-query --show --showformat='${db:Status-Status} ${Version}\\n' 'talmero-*' | sort -u"
        return [panel.shell(query) for panel in self.chosen]

    def test_upgrade(self):
        """A rehearsal, an upgrade over an interrupted one, and a repetition."""
        others = [
            panel.shell("dpkg-query --show | grep -v talmero- | sha256sum") for panel in self.chosen
        ]
        before = [panel.state() for panel in self.chosen]
        self.assert_run(self.play("--check"), changed=self.chosen_names())
        self.assertEqual([panel.state() for panel in self.chosen], before)

        interrupted = self.chosen[1]
        interrupted.put(FILES / "new" / "tools.deb", "/root/tools.deb")
        interrupted.shell("dpkg --unpack /root/tools.deb")
        self.assertIn("unpacked", self.versions()[1])
        self.assert_run(self.play("-e", f"upgrade_version={NEW}"), changed=self.chosen_names())
        self.assertEqual(self.versions(), [f"installed {NEW}\n"] * 2)
        self.assertEqual(
            [
                panel.shell("dpkg-query --show | grep -v talmero- | sha256sum")
                for panel in self.chosen
            ],
            others,
        )

        self.assert_run(self.play("-e", f"upgrade_version={NEW}"), changed=[])
        run = self.play("-e", "upgrade_version=1.2")
        self.assert_run(run, named=self.chosen_names()[:1], changed=[])
        self.assertIn(f"talmero-bios {NEW}, ", run.output)
        self.assertIn("instead of 1.2", run.output)
        self.assertNotEqual(OLD, NEW)

    def test_other_key_is_refused(self):
        (self.desk.folder / "other.asc").write_bytes((FILES / "other.asc").read_bytes())
        before = self.versions()
        run = self.play("-e", "upgrade_key=other.asc")
        self.assert_run(run, named=self.chosen_names()[:1])
        self.assertIn("not signed", run.output)
        self.assertEqual(self.versions(), before)


if __name__ == "__main__":
    unittest.main()
