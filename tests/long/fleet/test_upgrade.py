"""Upgrades from a repository with the real packages. Only two panels have them."""

import unittest

from fleettest import FILES, FleetTest, everything
from repository import NEW, install_programs, serve_repository

REPOSITORY = "http://192.168.1.5/talmero"
KEY = f"{FILES}/repository/talmero.asc"

# dpkg notes this when it has unpacked the new version.
CUT_WHILE_UNPACKING = f"""
sed -i '/^Package: talmero-bios$/,/^$/ {{
    s/^Status: .*/Status: install reinstreq half-installed/
    s/(= [^)]*) | net-tools/(= {NEW})/
}}' /var/lib/dpkg/status
"""


class Upgrade(FleetTest):
    @classmethod
    def setUpClass(cls):
        plant, _ = everything()
        cls.enterClassContext(serve_repository())
        cls.chosen = plant.panels[4:6]  # those before are for test_document
        for panel in cls.chosen:
            install_programs(panel)

    def play(self, *arguments, **variables):
        variables = {"upgrade_repository": REPOSITORY, "upgrade_key": KEY, **variables}
        limit = ["--limit", ",".join(self.chosen_names())]
        return self.desk.play("upgrade", *limit, *arguments, **variables)

    def chosen_names(self):
        return [panel.name for panel in self.chosen]

    def versions(self):
        form = r"${db:Status-Status} ${Version}\n"
        query = f"dpkg-query --show --showformat='{form}' 'talmero-*' | sort -u"
        return [panel.shell(query) for panel in self.chosen]

    def other_packages(self):
        """A digest of all packages that are not the panel's own."""
        query = "dpkg-query --show | grep -v talmero- | sha256sum"
        return [panel.shell(query) for panel in self.chosen]

    def test_upgrade(self):
        """A rehearsal, an upgrade over two interrupted ones, a repetition, and a repair."""
        others = self.other_packages()
        before = [panel.state() for panel in self.chosen]
        self.assert_run(self.play("--check"), changed=self.chosen_names())
        self.assertEqual([panel.state() for panel in self.chosen], before)

        cut, interrupted = self.chosen
        cut.shell(CUT_WHILE_UNPACKING)
        interrupted.put(FILES / "new" / "tools.deb", "/root/tools.deb")
        interrupted.shell("dpkg --unpack /root/tools.deb")
        cut, interrupted = self.versions()
        self.assertIn("half-installed", cut)
        self.assertIn("unpacked", interrupted)
        self.assert_run(self.play(upgrade_version=NEW), changed=self.chosen_names())
        self.assertEqual(self.versions(), [f"installed {NEW}\n"] * 2)
        self.assertEqual(self.other_packages(), others)

        self.assert_run(self.play(upgrade_version=NEW), changed=[])
        self.chosen[0].shell(CUT_WHILE_UNPACKING)  # with no newer version that would replace it
        self.assert_run(self.play(upgrade_version=NEW), changed=self.chosen_names()[:1])
        self.assertEqual(self.versions(), [f"installed {NEW}\n"] * 2)

        run = self.play(upgrade_version="1.2")
        self.assert_run(run, named=self.chosen_names()[:1], changed=[])
        self.assertIn(f"talmero-bios {NEW}, ", run.output)
        self.assertIn("instead of 1.2", run.output)

    def test_other_key_is_refused(self):
        (self.desk.folder / "other.asc").write_bytes((FILES / "other.asc").read_bytes())
        before = self.versions()
        run = self.play(upgrade_key="other.asc")
        self.assert_run(run, named=self.chosen_names()[:1])
        self.assertIn("not signed", run.output)
        self.assertEqual(self.versions(), before)


if __name__ == "__main__":
    unittest.main()
