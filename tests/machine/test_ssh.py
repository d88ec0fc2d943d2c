"""What an image with --ssh-key lets in. Skipped on an image without it.

The environment variable PANEL_SSH_KEY names the file of the private key.
"""

import contextlib
import os
import pathlib
import shutil
import socket
import subprocess
import tempfile

import sticks
from machinetest import RUNTIME, MachineTest

KEY = os.environ.get("PANEL_SSH_KEY", "")
HOST_KEY = "/etc/ssh/ssh_host_"
FLEET = pathlib.Path(__file__).resolve().parents[2] / "fleet"


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Ssh(MachineTest):
    def ssh(self, port, *options, key=KEY):
        command = ["ssh", "-F", "none", "-p", str(port), "-o", "UserKnownHostsFile=/dev/null",
                   "-o", "StrictHostKeyChecking=no", "-o", "BatchMode=yes", "-o", "ConnectTimeout=20",
                   "-o", "IdentitiesOnly=yes", "-i", key, *options, "root@127.0.0.1", "echo inside"]
        return subprocess.run(command, capture_output=True, text=True, timeout=120)

    def other_key(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = f"{folder.name}/key"
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", path], check=True)
        return path

    @contextlib.contextmanager
    def panel_with_ssh(self):
        """A panel whose sshd runs, and the ports of this machine that lead to it."""
        ports = (free_port(), free_port())
        with self.panel(forwarded=ports) as panel:
            if panel.shell.try_run("[ -e /usr/sbin/sshd ]")[0] != 0:
                self.skipTest("the image was made without --ssh-key")
            yield panel, ports

    def test_one_key_opens_the_panel_over_lan_1(self):
        with self.panel_with_ssh() as (panel, ports):
            self.assertEqual(panel.shell.run("systemctl is-active ssh nftables"), "active\nactive\n")
            self.assertEqual(panel.failed_units(), [])
            inside = self.ssh(ports[0])
            self.assertEqual(inside.stdout, "inside\n", inside.stderr)
            self.assertIn("Permission denied", self.ssh(ports[0], key=self.other_key()).stderr)
            methods = self.ssh(ports[0], "-o", "PreferredAuthentications=none").stderr
            self.assertIn("Permission denied (publickey)", methods)
            self.assertNotEqual(self.ssh(ports[1]).returncode, 0, "Lan 2 lets ssh in")

            # It is the firewall that closes Lan 2, not a missing route or server.
            panel.shell.run("nft flush ruleset")
            self.assertEqual(self.ssh(ports[1]).stdout, "inside\n")

    def desk(self, port):
        """A folder of the computer that looks after a panel, with an inventory of this one."""
        desk = self.folder / "desk"
        shutil.copytree(FLEET / "example", desk)
        inventory = (desk / "inventory.yml").read_text().partition("  children:")[0]
        shutil.copy(KEY, desk / "panels_key")
        (desk / "inventory.yml").write_text(
            f"{inventory}  hosts:\n    panel-01: {{ansible_host: 127.0.0.1, ansible_port: {port}}}\n")
        return desk

    def ansible(self, desk, *command):
        run = subprocess.run(command, cwd=desk, capture_output=True, text=True, timeout=1200,
                             env={"HOME": str(desk), "LC_ALL": "C.UTF-8", "PATH": f"{sticks.MKPACKAGE.parent}:{os.environ['PATH']}"})
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        return run.stdout

    def status(self, desk):
        """The panel's row. If a tool is too slow on the emulated processor, it is asked again."""
        for _ in range(5):
            self.ansible(desk, "ansible-playbook", "talmero.panels.status")
            text = (desk / "panels.csv").read_text()
            if "no answer within" not in text:
                break
        return text.split("\n", 1)[1]

    def test_panel_has_all_that_ansible_needs(self):
        with self.panel_with_ssh() as (panel, ports):
            desk = self.desk(ports[0])
            self.ansible(desk, "ansible-galaxy", "collection", "install", str(FLEET))
            (desk / "group_vars").mkdir()
            (desk / "group_vars/panels.yml").write_text("settings_wanted: {app.mouse: 1}\n")
            self.ansible(desk, "ansible-playbook", "talmero.panels.settings")
            self.assertEqual(self.settings(panel)["app.mouse"], "1")

            self.make_package(desk / "line1.kpc", [("compile/project", b"line 1")])
            roll_out = ["ansible-playbook", "talmero.panels.application", "-e", "application_package=line1.kpc",
                        "-e", "application_spare=0"]
            self.ansible(desk, *roll_out)
            self.assertEqual(panel.file("/home/dest/compile/project"), "line 1")
            self.assertIn("changed=0 ", self.ansible(desk, *roll_out))

            panel.shell.run(f"echo exit >{RUNTIME}")  # without it, the status is "errors"
            self.assertRegex(self.status(desk), '^"panel-01","panels","(ok|warnings)","RV-K21T",.*"line1.kpc"')
            panel.shell.run("python3 -c 'import apt'") # for Ansible's module apt

    def test_empty_host_key_is_made_again(self):
        with self.panel_with_ssh() as (panel, ports):
            other = panel.file(f"{HOST_KEY}rsa_key")
            panel.shell.run(f": >{HOST_KEY}ed25519_key; systemctl restart ssh")
            self.assertEqual(self.ssh(ports[0]).stdout, "inside\n")
            self.assertNotEqual(panel.file(f"{HOST_KEY}ed25519_key"), "")
            self.assertEqual(panel.file(f"{HOST_KEY}rsa_key"), other)
