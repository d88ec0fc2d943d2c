"""The factory window: what it saves, and its tests of the ports."""

import time

import panel as places
from machine import HARDWARE_ADDRESSES
from machinetest import MachineTest
from states import disk_of, main_page

NAMING_RULES = "/etc/udev/rules.d/70-persistent-net.rules"


class Factory(MachineTest):
    def factory(self, **options):
        stick = self.stick("factory", files=[("talmero_setup", b"")])
        return self.panel(disk_of(main_page()), sticks=[stick], **options)

    def save(self, panel):
        """Chooses the model K21 and the type with a session, and saves."""
        panel.choose(places.MODEL, places.MODEL_ROWS, 3, height=places.FACTORY_LIST_ROW)
        panel.choose(places.TYPE, places.TYPE_ROWS, 1, height=places.FACTORY_LIST_ROW)
        panel.tap(*places.FACTORY_SAVE)
        panel.wait_for(f"[ -s {NAMING_RULES} ]")
        panel.shell.run("sync")

    def test_naming_rules_after_a_restart(self):
        with self.factory(swap_ports=True) as panel:
            panel.open_factory_window()
            panel.wait_for_shell()
            self.save(panel)
            self.assertEqual(panel.file("/opt/talmero/bios/model").strip(), "K21")
            panel.pull_stick("stick0")
            panel.reset()
            time.sleep(5)
            panel.open_main_page()
            self.require_good_start(panel)
            found = [panel.file(f"/sys/class/net/eth{port}/address").strip() for port in (0, 1)]
            self.assertEqual(found, sorted(HARDWARE_ADDRESSES))

    def test_close_leads_back_to_a_countdown(self):
        with self.factory() as panel:
            panel.open_factory_window()
            panel.pull_stick("stick0")
            panel.tap(*places.FACTORY_CLOSE)
            panel.open_main_page()

    def test_ports(self):
        with self.factory() as panel:
            panel.open_factory_window()
            panel.wait_for_shell()
            panel.tap(*places.FACTORY_TEST)
            time.sleep(2)
            empty = panel.picture()
            # The second port is wired to the third, where this echoes.
            panel.shell.run("stty -F /dev/ttyS2 115200 raw -echo; cat /dev/ttyS2 >/dev/ttyS2 &")
            panel.tap(*places.SECOND_PORT)
            serial = self.wait_for_result(panel, empty)
            panel.wait_for("ip -4 address show dev eth1 | grep -q 'inet 192.168.0'")
            panel.tap(*places.FIRST_ETHER)
            self.wait_for_result(panel, serial)
            lines = panel.shell.run("journalctl -b --no-pager -o cat -u talmero-session")
            self.assertIn('"/dev/ttyS1" true', lines)

    def wait_for_result(self, panel, before):
        """Waits for a new text of four lines in the result view: payload, dashes, verdict."""
        is_new = (lambda picture: picture.difference(before, places.RESULT) > 0.005)
        return panel.wait_until("result", is_new, places.SAVE_LIMIT)
