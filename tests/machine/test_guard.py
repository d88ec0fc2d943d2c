"""What the guard does outside the program, where only a machine can show it."""

import time
import unittest

import screen
from machine import KIND
from machinetest import MachineTest
from states import disk_of, main_page

BOOT_ID = "/proc/sys/kernel/random/boot_id"
JOURNAL_LIMIT = 32  # MB, of guard/journald.conf
WATCHDOG_LIMIT = 30  # s, of guard/system.conf


class Guard(MachineTest):
    def test_keys_neither_restart_the_panel_nor_end_the_session(self):
        with self.panel() as panel:
            boot = panel.file(BOOT_ID)
            server = panel.shell.run("cat /tmp/.X0-lock")
            for keys in (("alt", "sysrq", "k"), ("alt", "sysrq", "b"), ("ctrl", "alt", "backspace"),
                         ("ctrl", "alt", "f2")):
                panel.press_keys(*keys)
                time.sleep(3)
                self.assertTrue(screen.shows_main_page(panel.picture()), keys)
            self.assertEqual(panel.shell.run("cat /tmp/.X0-lock"), server, "the X server is another")
            # Without an X server the keys reach the kernel's console.
            panel.shell.run("systemctl stop talmero-session")
            for _ in range(9):
                panel.press_keys("ctrl", "alt", "delete")
            time.sleep(10)
            self.assertEqual(panel.file(BOOT_ID), boot)
            self.assertEqual(panel.shell.run("systemctl list-jobs --no-legend").strip(), "")

    def test_journal_stays_small(self):
        with self.panel() as panel:
            # The image's disk has no room for a larger journal, so systemd limits it anyway.
            panel.shell.run("mount -t tmpfs -o size=2G journal /var/log/journal;"
                            " systemctl restart systemd-journald; journalctl --flush")
            panel.shell.run("head -c 45000000 /dev/urandom | base64 -w 40000 | systemd-cat", 600)
            panel.shell.run("journalctl --sync")
            used = int(panel.shell.run("du -sm /var/log/journal").split()[0])
            self.assertGreater(used, JOURNAL_LIMIT / 2, "the lines are not stored")
            self.assertLessEqual(used, JOURNAL_LIMIT)

    @unittest.skipUnless(KIND.has_bios, "this machine's watchdog is another one")
    def test_watchdog_restarts_a_panel_that_hangs(self):
        with self.panel(disk_of(main_page()), has_watchdog=True) as panel:
            panel.open_main_page()
            panel.wait_for_shell()
            panel.wait_for_end_of_start()
            boot = panel.file(BOOT_ID)
            panel.shell.run("kill -SEGV 1")  # systemd ends its work, and nothing else does
            time.sleep(WATCHDOG_LIMIT)
            panel.open_main_page()
            panel.wait_for_shell()
            self.assertNotEqual(panel.file(BOOT_ID), boot)
