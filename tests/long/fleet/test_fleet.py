"""What the Ansible collection does with many panels at once. fleet.sh runs it."""

import csv
import html.parser
import json
import os
import pathlib
import random
import subprocess
import tempfile
import unittest

from desk import Desk
from plant import ROOT, Plant

BUILD = pathlib.Path(os.environ["FLEET_BUILD"])
FILES = pathlib.Path(os.environ["FLEET_FILES"])
COUNT = int(os.environ["FLEET_PANELS"])
BATCH = max(2, COUNT // 5)


def setUpModule():
    # pylint: disable=global-statement
    global plant, desk, folder
    plant = Plant(COUNT, BUILD, FILES)
    unittest.addModuleCleanup(plant.stop)
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    desk = Desk(folder.name, plant.panels, BUILD, FILES / "key")
    data = random.Random(1).randbytes(300000)
    for name in ("old", "new"):
        desk.make_package(name, {"compile/data": data, "recipes/first": b"1\n"})
    installed = desk.run("ansible-galaxy", "collection", "install", str(ROOT / "fleet"))
    assert installed.status == 0, installed.output


class FleetTest(unittest.TestCase):
    """A test with all panels, which are as they started except for what their names say."""

    def setUp(self):
        self.names = [panel.name for panel in plant.panels]

    def panel(self, number):
        return plant.panels[number - 1]

    def assert_run(self, run, named=(), changed=None):
        """It names exactly these panels, and changes exactly these."""
        self.assertEqual(run.named, sorted(named), run.output)
        self.assertEqual(run.status == 0, not named, run.output)
        if changed is not None:
            self.assertEqual(run.changed, sorted(changed), run.output)


class Table(html.parser.HTMLParser):
    """The cells of a page's table, and the resources that it loads."""

    def __init__(self, text):
        super().__init__()
        self.rows, self.resources, self.in_cell = [], [], False
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.resources += [value for name, value in attrs if name in ("src", "href")]
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.rows[-1].append("")
            self.in_cell = True

    def handle_endtag(self, tag):
        if tag in ("td", "th"):
            self.in_cell = False

    def handle_data(self, data):
        if self.in_cell:
            self.rows[-1][-1] += data


class Status(FleetTest):
    def read_tables(self):
        with open(desk.folder / "panels.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.reader(file))
        page = Table((desk.folder / "panels.html").read_text(encoding="utf-8"))
        return rows, page

    def test_each_panel_has_a_row(self):
        hostile = '=1+1,"<script>&\\'
        gone, strange, empty = self.panel(2), self.panel(3), self.panel(4)
        before = plant.states()
        gone.go_away()
        strange.shell(f"cp -a /opt/talmero/bios/model /root/model; printf '%s\\n' '{hostile}' >/opt/talmero/bios/model")
        empty.shell("mv /usr/bin/talmero-doctor /root")
        run = desk.play("status")
        strange.shell("mv /root/model /opt/talmero/bios/model")
        empty.shell("mv /root/talmero-doctor /usr/bin")
        gone.come_back()
        self.assert_run(run, changed=[])
        self.assertEqual(plant.states(), before)

        rows, page = self.read_tables()
        self.assertEqual([row[0] for row in rows], ["panel", *self.names])
        self.assertEqual({len(row) for row in rows}, {len(rows[0])})
        states = {row[0]: row[2] for row in rows[1:]}
        self.assertEqual(states.pop(gone.name), "does not answer")
        self.assertEqual(states.pop(empty.name), "cannot be asked")
        self.assertEqual(set(states.values()), {"errors"}) # no panel has a display here
        self.assertEqual(rows[3][3], "'" + hostile)
        self.assertEqual(rows[1][3:7], ["RV-K21T", "TALMERO", "12", "3"])
        self.assertEqual(rows[1][1].split()[0], "hall_1")
        self.assertIn("display: ", rows[1][-1])

        self.assertEqual(page.resources, [])
        self.assertEqual(page.rows[3][3], hostile)
        unquoted = [[cell.removeprefix("'") if cell[1:2] == "=" else cell for cell in row] for row in rows]
        self.assertEqual([[" ".join(cell.split()) for cell in row] for row in page.rows],
                         [[" ".join(cell.split()) for cell in row] for row in unquoted])


class Settings(FleetTest):
    WANTED = {"bios.brightness": 0.7, "app.buzzer": None, "app.screensaving": 30}

    def setUp(self):
        super().setUp()
        for panel in plant.panels:
            panel.shell("cp --preserve=mode /root/bios.ini /opt/talmero/bios 2>/dev/null || cp /opt/talmero/bios/bios.ini /root;"
                        " rm -f /run/systemctl.log /run/talmero-settings.pending")

    def play(self, wanted, *arguments):
        return desk.play("settings", "-e", json.dumps({"settings_wanted": wanted}), *arguments)

    def restarts(self, panel):
        return panel.shell("cat /run/systemctl.log 2>/dev/null || true").count("restart ")

    def test_settings_are_stored_and_applied_once(self):
        before = plant.states()
        rehearsal = self.play(self.WANTED, "--check", "--diff")
        self.assert_run(rehearsal, changed=self.names)
        self.assertIn("+bios.brightness=0.7", rehearsal.output)
        self.assertEqual(plant.states(), before)
        self.assertEqual({self.restarts(panel) for panel in plant.panels}, {0})

        self.assert_run(self.play(self.WANTED), changed=self.names)
        for panel in plant.panels:
            self.assertEqual(panel.shell("talmero-settings get bios.brightness; talmero-settings get app.buzzer || true"),
                             "0.7\n")
            self.assertEqual(self.restarts(panel), 1)

        after = plant.states()
        self.assert_run(self.play(self.WANTED), changed=[])
        self.assertEqual(plant.states(), after)
        self.assertEqual({self.restarts(panel) for panel in plant.panels}, {1})

    def test_refused_value_changes_nothing(self):
        before = plant.states()
        for wanted in ({**self.WANTED, "ethernet.eth0.mask": "24"}, {"app.buzzer": True}):
            run = self.play(wanted)
            self.assert_run(run, named=self.names[:1], changed=[])
            self.assertEqual(run.visited, self.names[:1])
        self.assertIn("app.buzzer: write a text", run.output)
        self.assertEqual(plant.states(), before)

    def test_interrupted_run_is_completed(self):
        """As if the connection were lost after the settings were stored."""
        panel = self.panel(3)
        self.assert_run(self.play(self.WANTED, "-e", "settings_apply=false", "--limit", panel.name), changed=[panel.name])
        self.assertEqual(self.restarts(panel), 0)
        self.assert_run(self.play(self.WANTED, "--limit", panel.name), changed=[panel.name])
        self.assertEqual(self.restarts(panel), 1)
        self.assert_run(self.play(self.WANTED, "--limit", panel.name), changed=[])
        self.assertEqual(self.restarts(panel), 1)


class Application(FleetTest):
    def setUp(self):
        """Every panel has the old application, with the record that a roll-out leaves."""
        super().setUp()
        if not hasattr(Application, "record"):
            run = desk.play("application", "-e", "application_package=old.kpc", "-e", "rollout_batch=100%")
            self.assert_run(run, changed=self.names)
            Application.record = self.panel(1).shell("cat /home/dest/compile/.talmero-package")
        package = (desk.folder / "old.kpc").read_bytes()
        for panel in plant.panels:
            self.reset(panel, package)

    def reset(self, panel, package):
        if panel.application() != "old":
            subprocess.run(["nsenter", f"--target={panel.first}", "--mount", "tee", "/root/old.kpc"],
                           input=package, stdout=subprocess.DEVNULL, check=True)
            panel.shell("talmero-install /root/old.kpc; rm /root/old.kpc")
        panel.shell(f"printf %s '{self.record}' >/home/dest/compile/.talmero-package; rm -f /run/systemctl.log")

    def play(self, package="new.kpc", *arguments):
        return desk.play("application", "-e", f"application_package={package}", "-e", f"rollout_batch={BATCH}", *arguments)

    def have(self, application, panels):
        """Exactly these panels have an application; the others the old one."""
        names = {panel.name for panel in panels}
        self.assertEqual(plant.applications(),
                         {name: application if name in names else "old" for name in self.names})

    def nothing_is_left(self):
        for panel in plant.panels:
            self.assertEqual(panel.shell("find /tmp /home -name '*.kpc' -o -name 'talmero-bios.*'; find /tmp/.ansible -type f"
                                         " 2>/dev/null || true"), "", panel.name)

    def fill_disk(self, panel):
        panel.shell("cp -a /home/dest /root; mount -t tmpfs -o size=1m,mode=755 full /home/dest;"
                    "cp -a /root/dest/. /home/dest; rm -r /root/dest; head -c 2M /dev/zero >/home/dest/filler 2>/dev/null || true")

    def empty_disk(self, panel):
        panel.shell("rm /home/dest/filler; cp -a /home/dest /root; umount /home/dest; rm -rf /home/dest; mv /root/dest /home")

    def set_model(self, panel, model):
        panel.shell(f"echo {model} >/opt/talmero/bios/model")

    def when_copied(self, panel):
        """Lets the panel go away as soon as the package lies on it."""
        panel.shell("setsid bash -c 'until [ -e /tmp/talmero-fleet.kpc ]; do sleep 0.02; done; /usr/local/bin/end-ssh' >/dev/null 2>&1 &")

    def test_rehearsal_changes_nothing(self):
        before = plant.states()
        self.assert_run(self.play("new.kpc", "--check"), changed=self.names)
        self.assertEqual(plant.states(), before)

    def test_three_bad_panels(self):
        full, wrong, away = bad = [self.panel(3), self.panel(COUNT // 2), self.panel(COUNT - 1)]
        good = [panel for panel in plant.panels if panel not in bad]
        bad_names = [panel.name for panel in bad]
        self.fill_disk(full)
        self.set_model(wrong, "RV-K25T")
        before = {panel.name: panel.state() for panel in (full, wrong)}
        self.when_copied(away)
        run = self.play("new.kpc", "-e", "rollout_failures=3")
        self.assert_run(run, named=bad_names)
        self.have("new", good)
        self.assertEqual({panel.name: panel.state() for panel in (full, wrong)}, before)
        self.assertRegex(run.output, rf"fatal: \[{full.name}\].*MB are free for it")
        self.assertRegex(run.output, rf"fatal: \[{wrong.name}\].*RV-K25T")
        self.assertRegex(run.output, rf"fatal: \[{away.name}\].*UNREACHABLE")

        # Without mending, and then after it.
        states = plant.states()
        self.assert_run(self.play("new.kpc", "-e", "rollout_failures=3"), named=bad_names, changed=[])
        self.assertEqual(plant.states(), states)
        self.empty_disk(full)
        self.set_model(wrong, "RV-K21T")
        away.come_back()
        (desk.folder / "bad").write_text("\n".join(bad_names))
        self.assert_run(self.play("new.kpc", "--limit", "@bad"), changed=bad_names)
        self.have("new", plant.panels)
        self.nothing_is_left()
        states = plant.states()
        self.assert_run(self.play(), changed=[])
        self.assertEqual(plant.states(), states)

    def test_stops_after_the_batch_with_the_first_failure(self):
        bad = self.panel(3)
        self.set_model(bad, "RV-K25T")
        run = self.play()
        self.set_model(bad, "RV-K21T")
        self.assert_run(run, named=[bad.name])
        self.have("new", [panel for panel in plant.panels[:1 + BATCH] if panel is not bad])
        self.assertEqual(run.visited, self.names[:1 + BATCH])

    def test_stops_if_the_first_panel_fails(self):
        self.set_model(self.panel(1), "RV-K25T")
        run = self.play("new.kpc", "-e", "rollout_failures=1000")
        self.set_model(self.panel(1), "RV-K21T")
        self.assert_run(run, named=self.names[:1])
        self.have("new", [])

    def test_panel_that_goes_away_while_it_installs(self):
        """It completes the installation, and the next roll-out finds it in order."""
        away = self.panel(4)
        away.shell("mkdir -p /usr/local/bin; printf '#!/bin/sh\n/usr/local/bin/end-ssh\nexec /usr/bin/talmero-install \"$@\"\n'"
                   " >/usr/local/bin/talmero-install; chmod 755 /usr/local/bin/talmero-install")
        run = self.play()
        away.shell("rm /usr/local/bin/talmero-install")
        self.assert_run(run, named=[away.name])
        away.wait_until(lambda: away.application() == "new", "did not complete the installation")
        away.come_back()
        self.assert_run(self.play("new.kpc", "--limit", away.name))
        self.have("new", plant.panels[:1 + BATCH])

    def test_application_from_a_stick_is_replaced(self):
        desk.make_package("stick", {})
        panel = self.panel(2)
        self.assert_run(self.play("new.kpc", "--limit", panel.name), changed=[panel.name])
        subprocess.run(["nsenter", f"--target={panel.first}", "--mount", "tee", "/root/stick.kpc"],
                       input=(desk.folder / "stick.kpc").read_bytes(), stdout=subprocess.DEVNULL, check=True)
        panel.shell("talmero-install /root/stick.kpc; rm /root/stick.kpc")
        self.assert_run(self.play("new.kpc", "--limit", panel.name), changed=[panel.name])
        self.have("new", [panel])

    def test_incomplete_application_is_noticed(self):
        """tar cannot write one of the files, which talmero-install does not report."""
        panel = self.panel(2)
        panel.shell("rm -rf /home/dest/recipes; mkdir -p /home/dest/recipes/first/in-the-way")
        run = self.play("new.kpc", "--limit", panel.name)
        self.assert_run(run, named=[panel.name])
        self.assertIn("not complete: recipes/first", run.output)
        self.assertEqual(panel.shell("ls -A /home/dest/compile | grep record || true"), "")
        panel.shell("rm -r /home/dest/recipes")
        self.assert_run(self.play("new.kpc", "--limit", panel.name), changed=[panel.name])
        self.nothing_is_left()

    def test_busy_panel_is_named(self):
        panel = self.panel(2)
        panel.shell("setsid flock /run/talmero-install.lock sleep infinity >/dev/null 2>&1 & echo $! >/run/busy")
        run = self.play("new.kpc", "--limit", panel.name)
        panel.shell("kill -- -$(cat /run/busy)")
        self.assert_run(run, named=[panel.name])
        self.assertIn("another program is installing a package", run.output)
        self.have("new", [])

    def test_package_that_is_refused_at_the_desk(self):
        os.makedirs(desk.folder / "escaping/compile")
        os.symlink("/etc", desk.folder / "escaping/compile/link")
        states = plant.states()
        escaping = desk.make_package("escaping", {})
        firmware = desk.folder / "runtime.fmw"
        subprocess.run(["talmero-mkpackage", "make", "--kind", "firmware", "--version", "13", "--target", "TALMERO",
                        "--output", firmware, desk.folder / "old"], env=desk.environment, check=True)
        for package, reason in ((escaping, "leads out"), (firmware, "it is no application"), ("none.kpc", "exist")):
            run = self.play(str(package))
            self.assert_run(run, named=self.names[:1], changed=[])
            self.assertIn(reason, run.output)
        self.assertEqual(plant.states(), states)


if __name__ == "__main__":
    unittest.main(verbosity=2)
