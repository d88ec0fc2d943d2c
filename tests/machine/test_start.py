"""From the power button to the runtime, and what happens if something ends."""

import time

import panel as places
import screen
from machinetest import RUNTIME, MachineTest
from states import IMAGE, disk_of, main_page


def is_login(line):
    return any(word in line for word in ("getty", "login", "sshd"))


class Start(MachineTest):
    def test_bios_start_counts_down_to_the_runtime(self):
        with self.panel(IMAGE) as panel:
            self.assertGreater(panel.wait_for_countdown(), 2, "the count when it is first seen")
            self.require_good_start(panel)
            panel.wait_for_main_page()  # the runtime has ended, or there is none
            panel.shell.run(f"printf 'touch /run/runtime; sleep 3\\n' >{RUNTIME}")
            panel.tap(*places.RUN_APPLICATION)
            panel.wait_for("[ -e /run/runtime ]")
            panel.wait_for("! grep -qs [r]unapp.sh /proc/[0-9]*/cmdline")
            panel.open_page("ethernet")

    def test_uefi_start(self):
        with self.panel(IMAGE, uefi=True) as panel:
            panel.open_main_page()
            self.require_good_start(panel)
            panel.shell.run("[ -d /sys/firmware/efi ]")

    def test_start_without_cables(self):
        with self.panel(disk_of(main_page()), cables=(False, False)) as panel:
            panel.open_main_page()
            self.require_good_start(panel)

    def test_marker_at_power_on_opens_the_factory_window(self):
        stick = self.stick("factory", files=[("talmero_setup", b"")])
        with self.panel(disk_of(main_page()), sticks=[stick]) as panel:
            panel.open_factory_window()
            self.require_good_start(panel)

    def test_killed_program_and_server_come_back(self):
        with self.panel() as panel:
            for name in ("talmero-bios", "Xorg"):
                panel.kill(name)
                panel.open_main_page()
            self.assertEqual(panel.failed_units(), [])

    def test_nothing_to_log_in_to(self):
        with self.panel() as panel:
            processes = panel.shell.run("cat /proc/[0-9]*/comm").split()
            self.assertEqual([name for name in processes if is_login(name)], [])
            passwords = [line.split(":")[1] for line in panel.file("/etc/shadow").splitlines()]
            self.assertEqual([password for password in passwords if password[:1] not in "*!"], [])
            self.assertEqual(listening(panel), [])
            panel.press_keys("ctrl", "alt", "f1")
            time.sleep(3)
            self.assertTrue(screen.shows_main_page(panel.picture()), "a key switches the console")


def listening(panel):
    """The sockets that accept connections from outside, as lines of /proc/net/tcp*."""
    lines = [line.split() for line in panel.shell.run("cat /proc/net/tcp /proc/net/tcp6").splitlines()]
    return [line for line in lines if line[3] == "0A" and not line[1].startswith("0100007F")]
