import functools
import hashlib
import json
import os
import unittest

from fleettest import COUNT, FleetTest

BATCH = max(2, COUNT // 5)

FILL_DISK = """
cp -a /home/dest /root
mount -t tmpfs -o size=1m,mode=755 full /home/dest
cp -a /root/dest/. /home/dest
rm -r /root/dest
head -c 2M /dev/zero >/home/dest/filler 2>/dev/null || true
"""
EMPTY_DISK = """
rm /home/dest/filler
cp -a /home/dest /root
umount /home/dest
rm -rf /home/dest
mv /root/dest /home
"""
LET_GO_WHEN_COPIED = """
setsid bash -c '
    until [ -e /tmp/talmero-fleet.kpc ]; do sleep 0.02; done
    /usr/local/bin/end-ssh' >/dev/null 2>&1 &
"""
LET_GO_WHILE_INSTALLING = """
cat >/usr/local/bin/talmero-install <<'END'
#!/bin/sh
/usr/local/bin/end-ssh
exec /usr/bin/talmero-install "$@"
END
chmod 755 /usr/local/bin/talmero-install
"""
KEEP_BUSY = """
setsid flock /run/talmero-install.lock sleep infinity >/dev/null 2>&1 &
echo $! >/run/busy
"""


class Application(FleetTest):
    def setUp(self):
        """Every panel has the old application, with the record that a roll-out leaves."""
        super().setUp()
        old = self.desk.folder / "old.kpc"
        record = {"digest": hashlib.sha256(old.read_bytes()).hexdigest(), "file": old.name}
        for panel in self.panels:
            if panel.application() != "old":
                panel.install(old)
            panel.shell(f"echo '{json.dumps(record)}' >/home/dest/compile/.talmero-package")

    def play(self, *arguments, **variables):
        variables = {"application_package": "new.kpc", "rollout_batch": BATCH, **variables}
        return self.desk.play("application", *arguments, **variables)

    def have(self, application, panels):
        """Exactly these panels have an application, and the others the old one."""
        names = {panel.name for panel in panels}
        expected = {name: application if name in names else "old" for name in self.names}
        self.assertEqual(self.plant.applications(), expected)

    def nothing_is_left(self):
        names = "-name '*.kpc' -o -name 'talmero-bios.*' -o -path '/tmp/.ansible/*' -type f"
        for panel in self.panels:
            self.assertEqual(panel.shell(f"find /tmp /home {names}"), "", panel.name)

    def fill_disk(self, panel):
        """Leaves no room beside the application. Result: a function that gives it back."""
        panel.shell(FILL_DISK)
        return self.undone(lambda: panel.shell(EMPTY_DISK))

    def make_another_model(self, panel):
        panel.shell("echo RV-K25T >/opt/talmero/bios/model")
        return self.undone(lambda: panel.shell("echo RV-K21T >/opt/talmero/bios/model"))

    def let_go_when_copied(self, panel):
        """Lets the panel go away as soon as the package lies on it."""
        panel.shell(LET_GO_WHEN_COPIED)
        return self.undone(panel.come_back)

    def undone(self, undo):
        """Lets a function run once: when it is called, or after the test."""
        once = functools.lru_cache(maxsize=None)(undo)
        self.addCleanup(once)
        return once

    def test_rehearsal_changes_nothing(self):
        before = self.plant.states()
        self.assert_run(self.play("--check"), changed=self.names)
        self.assertEqual(self.plant.states(), before)

    def test_three_bad_panels(self):
        full, wrong, away = bad = [self.panel(3), self.panel(COUNT // 2 + 2), self.panel(COUNT - 1)]
        good = [panel for panel in self.panels if panel not in bad]
        bad_names = [panel.name for panel in bad]
        mend_full, mend_wrong = self.fill_disk(full), self.make_another_model(wrong)
        before = {panel.name: panel.state() for panel in (full, wrong)}
        mend_away = self.let_go_when_copied(away)
        run = self.play(rollout_failures=3)
        self.assert_run(run, named=bad_names)
        self.have("new", good)
        self.assertEqual({panel.name: panel.state() for panel in (full, wrong)}, before)
        self.assertRegex(run.output, rf"fatal: \[{full.name}\].*MB are free for it")
        self.assertRegex(run.output, rf"fatal: \[{wrong.name}\].*panel: .*Panel Model")
        self.assertRegex(run.output, rf"fatal: \[{away.name}\].*UNREACHABLE")

        # Without mending, and then after it.
        states = self.plant.states()
        self.assert_run(self.play(rollout_failures=3), named=bad_names, changed=[])
        self.assertEqual(self.plant.states(), states)
        mend_full()
        mend_wrong()
        mend_away()
        (self.desk.folder / "bad").write_text("\n".join(bad_names))
        self.assert_run(self.play("--limit", "@bad"), changed=bad_names)
        self.have("new", self.panels)
        self.nothing_is_left()
        states = self.plant.states()
        self.assert_run(self.play(), changed=[])
        self.assertEqual(self.plant.states(), states)

    def test_stops_after_the_batch_with_the_first_failure(self):
        bad = self.panel(3)
        self.make_another_model(bad)
        run = self.play()
        self.assert_run(run, named=[bad.name])
        self.have("new", [panel for panel in self.panels[: 1 + BATCH] if panel is not bad])
        self.assertEqual(run.visited, self.names[: 1 + BATCH])

    def test_stops_if_the_first_panel_fails(self):
        self.make_another_model(self.panel(1))
        run = self.play(rollout_failures=1000)
        self.assert_run(run, named=self.names[:1])
        self.have("new", [])

    def test_panel_that_goes_away_while_it_installs(self):
        """It completes the installation, and the next roll-out finds it in order."""
        away = self.panel(2)
        away.shell(LET_GO_WHILE_INSTALLING)
        run = self.play()
        away.shell("rm /usr/local/bin/talmero-install")
        self.assert_run(run, named=[away.name])
        away.wait_until(lambda: away.application() == "new", "did not complete the installation")
        away.come_back()
        self.assert_run(self.play("--limit", away.name), changed=[])
        self.have("new", self.panels[: 1 + BATCH])

    def test_application_from_a_stick_is_replaced(self):
        self.desk.make_package("stick")
        panel = self.panel(2)
        self.assert_run(self.play("--limit", panel.name), changed=[panel.name])
        panel.install(self.desk.folder / "stick.kpc")
        self.assert_run(self.play("--limit", panel.name), changed=[panel.name])
        self.have("new", [panel])

    def test_incomplete_application_is_noticed(self):
        """tar cannot write one of the files, which talmero-install does not report."""
        panel = self.panel(2)
        panel.shell("rm -rf /home/dest/recipes; mkdir -p /home/dest/recipes/first/in-the-way")
        run = self.play("--limit", panel.name)
        self.assert_run(run, named=[panel.name])
        self.assertIn("not complete: recipes/first", run.output)
        self.assertNotIn(".talmero-package", panel.shell("ls -A /home/dest/compile"))
        panel.shell("rm -r /home/dest/recipes")
        self.assert_run(self.play("--limit", panel.name), changed=[panel.name])
        self.nothing_is_left()

    def test_busy_panel_is_named(self):
        panel = self.panel(2)
        panel.shell(KEEP_BUSY)
        run = self.play("--limit", panel.name)
        panel.shell("kill -- -$(cat /run/busy)")
        self.assert_run(run, named=[panel.name])
        self.assertIn("another program is installing a package", run.output)
        self.have("new", [])

    def test_package_that_is_refused_at_the_desk(self):
        os.makedirs(self.desk.folder / "escaping/compile")
        os.symlink("/etc", self.desk.folder / "escaping/compile/link")
        (self.desk.folder / "text.kpc").write_text("no package")
        packages = (
            (self.desk.make_package("escaping"), "leads out"),
            (self.desk.make_package("runtime", kind="firmware"), "it is no application"),
            ("text.kpc", "a package has at least 36"),
            ("none.kpc", "there is no file"),
        )
        states = self.plant.states()
        for package, reason in packages:
            run = self.play(application_package=str(package))
            self.assert_run(run, named=self.names[:1], changed=[])
            self.assertIn(reason, run.output)
        self.assertEqual(self.plant.states(), states)


if __name__ == "__main__":
    unittest.main()
