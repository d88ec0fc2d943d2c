import unittest

from fleettest import FleetTest


class Settings(FleetTest):
    WANTED = {"bios.brightness": 0.7, "app.buzzer": None, "app.screensaving": 30}

    def setUp(self):
        super().setUp()
        for panel in self.panels:
            panel.shell("cp /root/bios.ini /opt/talmero/bios")
            panel.shell("rm -f /run/systemctl.log /run/talmero-settings.pending")

    def play(self, wanted, *arguments):
        return self.desk.play("settings", *arguments, settings_wanted=wanted)

    def restarts(self, panel):
        return panel.shell("cat /run/systemctl.log 2>/dev/null || true").count("restart ")

    def test_settings_are_stored_and_applied_once(self):
        before = self.plant.states()
        rehearsal = self.play(self.WANTED, "--check", "--diff")
        self.assert_run(rehearsal, changed=self.names)
        self.assertIn("+bios.brightness=0.7", rehearsal.output)
        self.assertEqual(self.plant.states(), before)
        self.assertEqual({self.restarts(panel) for panel in self.panels}, {0})

        self.assert_run(self.play(self.WANTED), changed=self.names)
        for panel in self.panels:
            self.assertEqual(panel.shell("talmero-settings get bios.brightness"), "0.7\n")
            self.assertEqual(panel.shell("talmero-settings get app.buzzer || true"), "")
            self.assertEqual(self.restarts(panel), 1)

        after = self.plant.states()
        self.assert_run(self.play(self.WANTED), changed=[])
        self.assertEqual(self.plant.states(), after)
        self.assertEqual({self.restarts(panel) for panel in self.panels}, {1})

    def test_refused_value_changes_nothing(self):
        before = self.plant.states()
        for wanted in ({**self.WANTED, "ethernet.eth0.mask": "24"}, {"app.buzzer": True}):
            run = self.play(wanted)
            self.assert_run(run, named=self.names[:1], changed=[])
            self.assertEqual(run.visited, self.names[:1])
        self.assertIn("app.buzzer: write a text", run.output)
        self.assertEqual(self.plant.states(), before)

    def test_interrupted_run_is_completed(self):
        """As if the connection were lost after the settings were stored."""
        panel = self.panel(3)
        run = self.play(self.WANTED, "-e", "settings_apply=false", "--limit", panel.name)
        self.assert_run(run, changed=[panel.name])
        self.assertEqual(self.restarts(panel), 0)
        self.assert_run(self.play(self.WANTED, "--limit", panel.name), changed=[panel.name])
        self.assertEqual(self.restarts(panel), 1)
        self.assert_run(self.play(self.WANTED, "--limit", panel.name), changed=[])
        self.assertEqual(self.restarts(panel), 1)


if __name__ == "__main__":
    unittest.main()
