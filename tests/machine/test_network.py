"""Addresses over a restart."""

import time

import panel as places
from machinetest import INTERFACES_FILE, MachineTest


def addresses(panel, port):
    return panel.shell.run(f"ip -4 -o address show dev eth{port} | awk '{{ print $4 }}'").split()


class Network(MachineTest):
    def restart(self, panel):
        panel.shell.run("sync")
        panel.reset()
        time.sleep(5)
        panel.open_main_page()
        self.require_good_start(panel)

    def wait_for_address(self, panel, port, address):
        panel.wait_for(f"ip -4 address show dev eth{port} | grep -q 'inet {address}'")

    def test_fixed_address(self):
        with self.panel() as panel:
            panel.open_page("ethernet")
            panel.tap(*places.LAN[0]["manual"])
            panel.type_into(places.LAN[0]["address"], "192.168.5.77")
            panel.type_into(places.LAN[0]["mask"], "255.255.255.128")
            panel.leave_page()
            self.wait_for_address(panel, 0, "192.168.5.77")
            self.assertIn("address 192.168.5.77", panel.file(INTERFACES_FILE))
            self.restart(panel)
            self.wait_for_address(panel, 0, "192.168.5.77/25")

    def test_lease(self):
        with self.panel() as panel:
            panel.open_page("ethernet")
            panel.tap(*places.LAN[0]["disable"])
            panel.tap(*places.LAN[1]["dhcp"])
            panel.leave_page()
            self.wait_for_address(panel, 1, "192.168.0.15")
            self.restart(panel)
            self.wait_for_address(panel, 1, "192.168.0.15")
            self.assertEqual(addresses(panel, 0), [])

    def test_lease_after_the_cable_is_plugged_in(self):
        with self.panel() as panel:
            panel.plug_cable(1, False)
            panel.shell.run("ip address flush dev eth1")
            panel.plug_cable(1, True)
            panel.open_page("ethernet")
            panel.tap(*places.LAN[1]["dhcp"])
            panel.leave_page()
            self.wait_for_address(panel, 1, "192.168.0.15")
