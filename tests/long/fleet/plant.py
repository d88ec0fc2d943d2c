"""Many simulated panels at once, and the computer that looks after them.

Everything runs in a network namespace of its own, which fleet.sh makes. Each panel is a
simulator/panel with Debian's sshd; a bridge connects them.
"""

import contextlib
import os
import pathlib
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[3]
BRIDGE = "plant"
CONTROL_ADDRESS = "192.168.1.5"  # as in docs/many-panels.md
STARTING_AT_ONCE = 6
PANEL_ENVIRONMENT = {
    "PATH": "/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
    "LC_ALL": "C.UTF-8",
    "HOME": "/root",
}

# Where a panel keeps what a roll-out may change. The logs of logins change with each connection,
# and the doctor's question for fonts renews their cache.
WATCHED = "/opt /home /etc /var /tmp /usr/bin /usr/lib/talmero-bios"
UNWATCHED = (
    r"-path /var/log -o -path /var/cache/fontconfig -o -path /tmp/.ansible -o -path /etc/.pwd.lock"
)


def run(*command, **options):
    """Runs a command; fails with what it printed."""
    result = subprocess.run(command, capture_output=True, text=True, errors="replace", **options)
    if result.returncode != 0:
        raise AssertionError(
            f"{' '.join(command)}: status {result.returncode}\n{result.stdout}{result.stderr}"
        )
    return result.stdout


class Panel:
    """A simulated panel with sshd. number: from 1."""

    def __init__(self, number, build, files):
        self.name = f"panel-{number:02}"
        self.address = f"192.168.1.{10 + number}"  # as in fleet/example/inventory.yml
        self.cable = f"cable{number}"
        self.log = tempfile.TemporaryFile("w+")
        # It ends with us, however we end.
        simulator = ["setpriv", "--pdeathsig", "TERM", ROOT / "simulator/panel", "--build", build]
        self.process = subprocess.Popen(
            [*simulator, "--", ROOT / "tests/long/fleet/panel", files, self.address],
            stdin=subprocess.DEVNULL, stdout=self.log, stderr=subprocess.STDOUT,
        )
        self.first = None

    def find_first_process(self):
        """The panel's first process: the first one below ours in another network."""
        ours = os.readlink("/proc/self/ns/net")
        process = self.process.pid
        while True:
            if os.readlink(f"/proc/{process}/ns/net") != ours and pathlib.Path(
                f"/proc/{process}/cmdline"
            ).read_bytes().startswith(b"/bin/bash"):
                return process
            children = pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
            if not children:
                raise ProcessLookupError
            process = int(children[0])

    def wait_until(self, is_done, what):
        """Waits for a function to return something; fails if the panel ends."""
        for _ in range(1200):
            with contextlib.suppress(OSError):
                found = is_done()
                if found:
                    return found
            if self.process.poll() is not None:
                break
            time.sleep(0.05)
        self.log.seek(0)
        raise AssertionError(f"{self.name} {what}: {self.log.read()}")

    def plug_in(self):
        """Connects the panel with the plant."""
        self.first = self.wait_until(self.find_first_process, "does not start")
        peer = f"type veth peer name {BRIDGE} netns {self.first}"
        run("ip", "link", "add", self.cable, *peer.split())
        run("ip", "link", "set", self.cable, "master", BRIDGE, "up")
        self.wait_until(lambda: self.shell("cat /run/sshd.pid 2>/dev/null || true"), "has no sshd")

    def inside(self, *command, **options):
        """Runs a command as root in the panel, not by ssh. Result: what it printed."""
        enter = ["nsenter", f"--target={self.first}", "--all", "--wd=/"]
        return run(*enter, "--", *command, **options, env=PANEL_ENVIRONMENT)

    def shell(self, script):
        return self.inside("/bin/bash", "-euc", script)

    def put(self, source, path):
        """Copies a file into the panel."""
        with open(source, "rb") as file:
            self.inside("dd", f"of={path}", stdin=file)

    def install(self, package):
        """Installs a package as from a stick. package: its path outside the panel."""
        self.put(package, "/root/stick.kpc")
        self.shell("/usr/bin/talmero-install /root/stick.kpc; rm /root/stick.kpc")

    def state(self):
        """A digest of everything that a roll-out may change."""
        form = r"%p %y %m %U:%G %s %T@ %l\n"
        found = rf"find {WATCHED} \( {UNWATCHED} \) -prune -o ! -type d -printf '{form}'"
        return self.shell(f"{found} | sort | sha256sum")

    def application(self):
        """What the application says that it is."""
        return self.shell("cat /home/dest/compile/project 2>/dev/null || true").strip()

    def go_away(self):
        """Ends the panel's sshd with all its connections."""
        self.shell("/usr/local/bin/end-ssh")

    def come_back(self):
        """Starts the panel's sshd unless it runs."""
        self.shell("[ -e /run/sshd.pid ] || setsid /usr/sbin/sshd")

    def stop(self):
        self.process.terminate()
        self.process.wait()
        self.log.close()


class Plant:
    """Some panels, connected."""

    def __init__(self, count, build, files):
        self.panels = []
        run("ip", "link", "set", "lo", "up")
        run("ip", "link", "add", BRIDGE, "type", "bridge")
        run("ip", "address", "add", f"{CONTROL_ADDRESS}/16", "dev", BRIDGE)
        run("ip", "link", "set", BRIDGE, "up")
        for first in range(1, count + 1, STARTING_AT_ONCE):
            some = [
                Panel(number, build, files)
                for number in range(first, min(first + STARTING_AT_ONCE, count + 1))
            ]
            self.panels += some
            for panel in some:
                panel.plug_in()

    def states(self):
        return {panel.name: panel.state() for panel in self.panels}

    def applications(self):
        return {panel.name: panel.application() for panel in self.panels}

    def stop(self):
        for panel in self.panels:
            panel.stop()
